// "velkorc lsp" through vscode-languageserver-protocol on the demo campaign: every capability, the
// lifecycle, and what the compiler says compared with what velkorc compile says about the same text.
'use strict';
const test = require('node:test');
const assert = require('node:assert/strict');
const { spawnSync } = require('node:child_process');
const fs = require('node:fs');
const path = require('node:path');
const { Session, scratchCampaign, uriOf, VELKORC, proto } = require('./support.js');

const dir = scratchCampaign();
const patrol = path.join(dir, 'patrol.pas');
const common = path.join(dir, 'common.pas');
const patrolText = fs.readFileSync(patrol, 'latin1');
const commonText = fs.readFileSync(common, 'latin1');

// What "velkorc compile --no-halt" reports for a text: [{line (from 0), severity, message}].
function compilerMessages(text, name = 'patrol.pas') {
  const file = path.join(dir, 'cli-' + name);
  fs.writeFileSync(file, text, 'latin1');
  const run = spawnSync(VELKORC, ['compile', '--no-halt', '-v', '0', file], { cwd: dir, stdio: 'pipe' });
  fs.unlinkSync(file);
  const stderr = run.stderr.toString('latin1');
  const kinds = { 'ERROR: ': 1, 'WARNING: ': 2, 'HINT: ': 3 };
  const out = [];
  for (const line of stderr.split('\n')) {
    const m = /^\[[^\]]*, (\d+)\] (ERROR: |WARNING: |HINT: )(.*)$/.exec(line);
    if (m) out.push({ line: Number(m[1]) - 1, severity: kinds[m[2]], message: m[3] });
  }
  return out;
}

const summary = (diagnostics) => diagnostics.map((d) => ({ line: d.range.start.line, severity: d.severity, message: d.message }));
const lineOf = (text, needle) => text.split(/\r?\n/).findIndex((l) => l.includes(needle));
const at = (uri, line, character) => ({ textDocument: { uri }, position: { line, character } });

test('lifecycle: not initialized, initialize once, shutdown, exit', async () => {
  const s = new Session();
  await assert.rejects(s.request(proto.HoverRequest.type, at('file:///x.pas', 0, 0)), { code: -32002 });
  const init = await s.initialize();
  assert.equal(init.capabilities.textDocumentSync.change, proto.TextDocumentSyncKind.Incremental);
  for (const p of ['completionProvider', 'hoverProvider', 'signatureHelpProvider', 'definitionProvider',
    'documentSymbolProvider', 'workspaceSymbolProvider', 'referencesProvider', 'semanticTokensProvider'])
    assert.ok(init.capabilities[p], p);
  await assert.rejects(s.initialize(), { code: proto.ErrorCodes.InvalidRequest });
  await assert.rejects(s.request('velkor/unknown', {}), { code: proto.ErrorCodes.MethodNotFound });
  assert.equal(await s.request(proto.ShutdownRequest.type), null);
  await assert.rejects(s.request(proto.HoverRequest.type, at('file:///x.pas', 0, 0)), { code: proto.ErrorCodes.InvalidRequest });
  await s.connection.sendNotification(proto.ExitNotification.type);
  assert.equal(await s.exited, 0);
});

test('exit without shutdown ends with status 1', async () => {
  const s = new Session();
  await s.initialize();
  await s.connection.sendNotification(proto.ExitNotification.type);
  assert.equal(await s.exited, 1);
});

test('diagnostics: the compiler\'s messages on their lines, on open, change and save', async () => {
  const s = new Session();
  await s.initialize({ debounceMilliseconds: 20 });
  const opened = await s.open(patrol, patrolText);
  assert.deepEqual(summary(opened.diagnostics), compilerMessages(patrolText));
  assert.ok(opened.diagnostics.every((d) => d.severity !== 1), 'the demo mission compiles');

  // An unknown name in PatrolMain and a missing semicolon further on.
  const broken = patrolText.replace('  OrderFollow(Alpha2, Alpha1);', '  OrderFollow(Alpha2, Nowhere);')
    .replace('  CameraOff;', '  CameraOff');
  const expected = compilerMessages(broken);
  assert.ok(expected.some((d) => d.severity === 1), 'the broken text has errors');
  const changed = await s.change(opened.uri, 2, [{ text: broken }]);
  assert.deepEqual(summary(changed), expected);
  assert.equal(changed.find((d) => d.severity === 1).range.start.line, expected.find((d) => d.severity === 1).line);

  // A ranged edit that repairs the first error.
  const line = lineOf(broken, 'Nowhere');
  const column = broken.split(/\r?\n/)[line].indexOf('Nowhere');
  const repaired = await s.change(opened.uri, 3, [{
    range: { start: { line, character: column }, end: { line, character: column + 'Nowhere'.length } }, text: 'Alpha1',
  }]);
  assert.deepEqual(summary(repaired), compilerMessages(broken.replace('Nowhere', 'Alpha1')));

  const saved = s.nextDiagnostics(opened.uri);
  await s.connection.sendNotification(proto.DidSaveTextDocumentNotification.type, { textDocument: { uri: opened.uri } });
  assert.deepEqual(summary((await saved).diagnostics), summary(repaired));
  assert.equal(await s.close(), 0);
});

test('an include open in the editor is compiled from the editor\'s text, and its errors show in it', async () => {
  const s = new Session();
  await s.initialize({ debounceMilliseconds: 0 });
  const brokenCommon = commonText.replace('function FlyTo(ship, nav, closeEnough);', 'function FlyTo(ship, nav, closeEnough)');
  const commonUri = uriOf(common);
  const { uri } = await s.open(patrol, patrolText);
  const inCommon = s.nextDiagnostics(commonUri, (p) => p.diagnostics.some((d) => d.severity === 1));
  await s.connection.sendNotification(proto.DidOpenTextDocumentNotification.type, {
    textDocument: { uri: commonUri, languageId: 'velkor', version: 1, text: brokenCommon },
  });
  const errors = (await inCommon).diagnostics.filter((d) => d.severity === 1);
  const line = lineOf(brokenCommon, 'function FlyTo(');
  assert.ok(errors.some((d) => Math.abs(d.range.start.line - line) <= 1), JSON.stringify(errors));
  assert.equal(fs.readFileSync(common, 'latin1'), commonText, 'the file on disk is untouched');
  assert.ok(s.diagnostics.get(uri).diagnostics.every((d) => d.severity !== 1), 'the mission itself has no error');
  // Closed, the include is read from disk again: its error goes.
  const cleared = s.nextDiagnostics(commonUri, (p) => p.diagnostics.every((d) => d.severity !== 1));
  await s.connection.sendNotification(proto.DidCloseTextDocumentNotification.type, { textDocument: { uri: commonUri } });
  await cleared;
  await s.close();
});

test('completion: names of the unit and its includes, game functions, keywords, string-table lines', async () => {
  const s = new Session();
  await s.initialize();
  const text = patrolText.replace('  CameraOff;', '  Fly\n  x := Campaign["Patrol\n  Wait\n  Whi');
  const { uri } = await s.open(patrol, text);
  const lines = text.split(/\r?\n/);
  const complete = async (needle) => {
    const line = lines.findIndex((l) => l.endsWith(needle));
    return (await s.request(proto.CompletionRequest.type, at(uri, line, lines[line].length))).items;
  };
  const fly = await complete('  Fly');
  assert.ok(fly.some((i) => i.label === 'FlyTo' && i.kind === proto.CompletionItemKind.Function && /3 parameters/.test(i.detail)));
  const wait = await complete('  Wait');
  const waitSeconds = wait.find((i) => i.label === 'WaitSeconds');
  assert.equal(waitSeconds.detail, 'Game function, 1 parameter');
  assert.ok(!wait.some((i) => i.kind === proto.CompletionItemKind.Keyword));
  assert.ok((await complete('  Whi')).some((i) => i.label === 'while' && i.kind === proto.CompletionItemKind.Keyword));
  const strings = await complete('Campaign["Patrol');
  const patrolName = strings.find((i) => i.label === 'Patrol the Outer Beacons');
  assert.ok(patrolName, JSON.stringify(strings.slice(0, 5)));
  assert.equal(patrolName.textEdit.newText, '"Patrol the Outer Beacons"');
  await s.close();
});

test('hover, signature help, definition and references across the include', async () => {
  const s = new Session();
  await s.initialize();
  const { uri } = await s.open(patrol, patrolText);
  const lines = patrolText.split(/\r?\n/);
  const call = lines.findIndex((l) => l.includes('FlyTo(Alpha1, Beacon1, 1000)'));
  const column = lines[call].indexOf('FlyTo') + 2;
  const flyToLine = lineOf(commonText, 'function FlyTo(');

  const hover = await s.request(proto.HoverRequest.type, at(uri, call, column));
  assert.match(hover.contents.value, /FlyTo\(ship, nav, closeEnough\)/);
  assert.match(hover.contents.value, new RegExp(`common\\.pas \\(${flyToLine + 1}\\)`));

  const signature = await s.request(proto.SignatureHelpRequest.type,
    at(uri, call, lines[call].indexOf('Beacon1') + 2));
  assert.equal(signature.signatures[0].label, 'FlyTo(ship, nav, closeEnough)');
  assert.equal(signature.activeParameter, 1);
  const [from, to] = signature.signatures[0].parameters[1].label;
  assert.equal(signature.signatures[0].label.slice(from, to), 'nav');

  // A game function's parameters come from its declaration in the library unit.
  const wait = lines.findIndex((l) => /WaitSeconds\(\d/.test(l));
  const gameSignature = await s.request(proto.SignatureHelpRequest.type,
    at(uri, wait, lines[wait].indexOf('WaitSeconds(') + 'WaitSeconds('.length));
  assert.equal(gameSignature.signatures[0].label, 'WaitSeconds(seconds)');
  assert.equal(gameSignature.activeParameter, 0);

  const definition = await s.request(proto.DefinitionRequest.type, at(uri, call, column));
  assert.equal(definition.uri, uriOf(common));
  assert.equal(definition.range.start.line, flyToLine);
  assert.equal(commonText.split(/\r?\n/)[flyToLine].slice(definition.range.start.character, definition.range.end.character), 'FlyTo');

  const references = await s.request(proto.ReferencesRequest.type, { ...at(uri, call, column), context: { includeDeclaration: true } });
  const inPatrol = lines.filter((l) => /\bFlyTo\b/.test(l.replace(/\/\/.*/, ''))).length;
  assert.equal(references.filter((r) => r.uri === uri).length, inPatrol);
  assert.ok(references.some((r) => r.uri === uriOf(common) && r.range.start.line === flyToLine));
  const withoutDeclaration = await s.request(proto.ReferencesRequest.type, { ...at(uri, call, column), context: { includeDeclaration: false } });
  assert.equal(withoutDeclaration.length, references.length - 1);
  await s.close();
});

test('document symbols, workspace symbols and semantic tokens', async () => {
  const s = new Session();
  const init = await s.initialize();
  const { uri } = await s.open(patrol, patrolText);
  const symbols = await s.request(proto.DocumentSymbolRequest.type, { textDocument: { uri } });
  const byName = new Map(symbols.map((x) => [x.name, x]));
  const expect = [['PatrolMain', proto.SymbolKind.Function, 'function PatrolMain;'],
    ['Alpha1', proto.SymbolKind.Object, 'object Alpha1'], ['ReachBeacons', proto.SymbolKind.Event, 'objective ReachBeacons'],
    ['BeaconsReached', proto.SymbolKind.Variable, '  BeaconsReached = 0']];
  for (const [name, kind, declaration] of expect) {
    assert.equal(byName.get(name)?.kind, kind, name);
    assert.equal(byName.get(name).selectionRange.start.line, lineOf(patrolText, declaration), name);
  }
  assert.ok(!byName.has('FlyTo'), 'symbols of the include are not the document\'s');

  const found = await s.request(proto.WorkspaceSymbolRequest.type, { query: 'raider' });
  const names = found.map((x) => x.name);
  assert.ok(names.includes('RaiderAttack') && names.includes('RaiderCount'), JSON.stringify(names));
  assert.equal(found.find((x) => x.name === 'RaiderCount').location.uri, uriOf(common));

  const legend = init.capabilities.semanticTokensProvider.legend;
  const { data } = await s.request(proto.SemanticTokensRequest.type, { textDocument: { uri } });
  const lines = patrolText.split(/\r?\n/);
  const tokens = [];
  for (let i = 0, line = 0, start = 0; i < data.length; i += 5) {
    line += data[i];
    start = data[i] ? data[i + 1] : start + data[i + 1];
    tokens.push({ text: lines[line].substr(start, data[i + 2]), type: legend.tokenTypes[data[i + 3]], modifiers: data[i + 4] });
  }
  const typeOf = (t) => tokens.find((x) => x.text === t)?.type;
  assert.equal(typeOf('FlyTo'), 'function');
  assert.equal(typeOf('Alpha1'), 'class');
  assert.equal(typeOf('BeaconsReached'), 'variable');
  assert.ok(tokens.some((x) => x.text === 'WaitSeconds' && x.modifiers & 4), 'game functions are the default library');
  await s.close();
});

test('symbols of a text with errors come from it, and from the last good compile for what it lost', async () => {
  const s = new Session();
  await s.initialize({ debounceMilliseconds: 0 });
  const { uri } = await s.open(patrol, patrolText);
  // RaiderAttack's body broken: the names declared after it are still found.
  const broken = patrolText.replace('function PatrolMain;', 'function PatrolMain(;').replace('var\n  BeaconsReached', 'var\n  NewCounter = 0;\n  BeaconsReached');
  const diagnostics = await s.change(uri, 2, [{ text: broken }]);
  assert.ok(diagnostics.some((d) => d.severity === 1));
  const symbols = (await s.request(proto.DocumentSymbolRequest.type, { textDocument: { uri } })).map((x) => x.name);
  assert.ok(symbols.includes('NewCounter') && symbols.includes('WingmanDown'), JSON.stringify(symbols));
  const lines = broken.split(/\r?\n/);
  const call = lines.findIndex((l) => l.includes('FlyTo(Alpha1, Beacon1, 1000)'));
  const hover = await s.request(proto.HoverRequest.type, at(uri, call, lines[call].indexOf('FlyTo')));
  assert.match(hover.contents.value, /FlyTo/);
  await s.close();
});

test('cancelled requests are answered as cancelled or answered in full; the server goes on', async () => {
  const s = new Session();
  await s.initialize();
  const { uri } = await s.open(patrol, patrolText);
  const sources = [];
  const pending = [];
  for (let i = 0; i < 20; i++) {
    const source = new proto.CancellationTokenSource();
    sources.push(source);
    pending.push(s.request(proto.CompletionRequest.type, at(uri, 130, 2), source.token).then(
      (r) => ({ ok: r }), (e) => ({ error: e })));
  }
  for (const source of sources) source.cancel();
  for (const outcome of await Promise.all(pending)) {
    if (outcome.error) assert.equal(outcome.error.code, proto.LSPErrorCodes.RequestCancelled);
    else assert.ok(outcome.ok.items.length > 0);
  }
  const after = await s.request(proto.CompletionRequest.type, at(uri, 130, 2));
  assert.ok(after.items.length > 0);
  await s.close();
});
