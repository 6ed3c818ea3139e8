// Whatever bytes arrive, the server answers with the protocol's errors or ignores them, and goes on: the
// replies are read back with vscode-jsonrpc's own message reader.
'use strict';
const test = require('node:test');
const assert = require('node:assert/strict');
const { spawn } = require('node:child_process');
const { VELKORC, proto } = require('./support.js');

const frame = (body) => `Content-Length: ${Buffer.byteLength(body)}\r\n\r\n${body}`;
const request = (id, method, params) => frame(JSON.stringify({ jsonrpc: '2.0', id, method, params }));
const notify = (method, params) => frame(JSON.stringify({ jsonrpc: '2.0', method, params }));

// Sends the bytes, then a final request with id "last"; returns every reply up to its answer.
function exchange(bytes) {
  return new Promise((resolve, reject) => {
    const server = spawn(VELKORC, ['lsp'], { stdio: ['pipe', 'pipe', 'inherit'] });
    const reader = new proto.StreamMessageReader(server.stdout);
    const replies = [];
    reader.listen((message) => {
      replies.push(message);
      if (message.id === 'last') {
        server.stdin.end(notify('exit'));
        resolve(replies);
      }
    });
    server.on('exit', (code) => reject(new Error(`the server ended (${code}) before answering`)));
    server.stdin.write(bytes);
    server.stdin.write(request('last', 'workspace/symbol', { query: '' }));
  });
}

const init = request(0, 'initialize', { processId: null, rootUri: null, capabilities: {} });
const uri = 'file:///nowhere/unit.pas';
const open = notify('textDocument/didOpen', { textDocument: { uri, languageId: 'velkor', version: 1, text: 'unit x;\nvar a;\n' } });

// Each case: the bytes after initialize and the errors (code by id) that must come back.
const cases = [
  ['a body that is not JSON', frame('{"jsonrpc": "2.0", "id": 1, "method": '), { null: proto.ErrorCodes.ParseError }],
  ['a body that is not an object', frame('[1, 2, 3]'), { null: proto.ErrorCodes.InvalidRequest }],
  ['an id that is neither number nor string', frame('{"jsonrpc":"2.0","id":{"a":1},"method":"shutdown"}'),
    { null: proto.ErrorCodes.InvalidRequest }],
  ['an unknown method', request(2, 'textDocument/unknownThing', {}), { 2: proto.ErrorCodes.MethodNotFound }],
  ['parameters of the wrong type', request(3, 'textDocument/hover', { textDocument: { uri }, position: 'here' }),
    { 3: proto.ErrorCodes.InvalidParams }],
  ['a document that is not open', request(4, 'textDocument/completion', { textDocument: { uri: 'file:///x' }, position: { line: 0, character: 0 } }),
    { 4: proto.ErrorCodes.InvalidParams }],
  ['missing parameters', request(5, 'textDocument/definition'), { 5: proto.ErrorCodes.InvalidParams }],
  ['a header without a length, then a good request', 'Content-Type: x\r\n\r\n' + request(6, 'workspace/symbol', { query: 'a' }), {}],
  ['a position far outside the text', open + request(7, 'textDocument/hover', { textDocument: { uri }, position: { line: 1e9, character: -5 } }), {}],
  ['an edit range outside the text', open + notify('textDocument/didChange', {
    textDocument: { uri, version: 2 }, contentChanges: [{ range: { start: { line: 99, character: 99 }, end: { line: -1, character: 0 } }, text: 'x' }],
  }) + request(8, 'textDocument/documentSymbol', { textDocument: { uri } }), {}],
  ['a notification with broken parameters', notify('textDocument/didOpen', { textDocument: 7 }), {}],
];

for (const [name, bytes, errors] of cases) {
  test(name, async () => {
    const replies = await exchange(init + bytes);
    for (const [id, code] of Object.entries(errors)) {
      const reply = replies.find((r) => String(r.id) === id);
      assert.ok(reply, `a reply for id ${id}`);
      assert.equal(reply.error?.code, code, JSON.stringify(reply));
    }
    // Every request with a good id got exactly one reply, and the last one its result.
    assert.ok(Array.isArray(replies.find((r) => r.id === 'last').result));
    for (const r of replies.filter((x) => x.id !== null && x.id !== undefined))
      assert.equal(replies.filter((x) => x.id === r.id).length, 1, `one reply for ${r.id}`);
  });
}
