// Starts "velkorc lsp" and talks to it through vscode-jsonrpc, the library VS Code's own client uses; makes
// a scratch copy of the demo campaign with its string file assembled.
'use strict';
const { spawn, execFileSync } = require('node:child_process');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');
const { pathToFileURL } = require('node:url');
// The protocol library's own jsonrpc (its dependency), so that message types and connection agree.
const proto = require('vscode-languageserver-protocol/node');

const VELKORC = process.env.VELKORC || path.join(__dirname, '..', '..', 'build', 'velkorc');
const SOURCE_DIR = process.env.VELKOR_SOURCE_DIR || path.join(__dirname, '..', '..');

// The demo campaign in a scratch folder, campaign.eng beside the units.
function scratchCampaign() {
  const dir = fs.mkdtempSync(path.join(os.tmpdir(), 'velkor-lsp-'));
  const from = path.join(SOURCE_DIR, 'examples', 'campaign');
  for (const name of fs.readdirSync(from)) fs.copyFileSync(path.join(from, name), path.join(dir, name));
  execFileSync(VELKORC, ['asm', '--out-dir', dir, path.join(dir, 'campaign_eng.txt')], { stdio: 'pipe' });
  return dir;
}

function uriOf(file) {
  return pathToFileURL(file).href;
}

class Session {
  constructor(args = ['lsp']) {
    this.process = spawn(VELKORC, args, { stdio: ['pipe', 'pipe', 'pipe'] });
    this.stderr = '';
    this.process.stderr.on('data', (d) => { this.stderr += d; });
    this.exited = new Promise((resolve) => this.process.on('exit', (code) => resolve(code)));
    this.connection = proto.createProtocolConnection(
      new proto.StreamMessageReader(this.process.stdout), new proto.StreamMessageWriter(this.process.stdin));
    this.diagnostics = new Map(); // uri -> the last publishDiagnostics params
    this.waiters = [];
    this.connection.onNotification(proto.PublishDiagnosticsNotification.type, (params) => {
      this.diagnostics.set(params.uri, params);
      this.waiters = this.waiters.filter((w) => !w(params));
    });
    this.connection.listen();
  }

  async initialize(options = {}, capabilities = {}) {
    return this.connection.sendRequest(proto.InitializeRequest.type, {
      processId: process.pid, rootUri: null, capabilities, initializationOptions: options,
    }).then(async (result) => {
      await this.connection.sendNotification(proto.InitializedNotification.type, {});
      return result;
    });
  }

  // The next diagnostics for `uri` that `accept` takes (by default: any for the given version).
  nextDiagnostics(uri, accept = () => true) {
    return new Promise((resolve) => {
      this.waiters.push((params) => {
        if (params.uri !== uri || !accept(params)) return false;
        resolve(params);
        return true;
      });
    });
  }

  async open(file, text = fs.readFileSync(file, 'latin1'), version = 1) {
    const uri = uriOf(file);
    const published = this.nextDiagnostics(uri, (p) => p.version === version);
    await this.connection.sendNotification(proto.DidOpenTextDocumentNotification.type, {
      textDocument: { uri, languageId: 'velkor', version, text },
    });
    return { uri, diagnostics: (await published).diagnostics };
  }

  async change(uri, version, contentChanges) {
    const published = this.nextDiagnostics(uri, (p) => p.version === version);
    await this.connection.sendNotification(proto.DidChangeTextDocumentNotification.type, {
      textDocument: { uri, version }, contentChanges,
    });
    return (await published).diagnostics;
  }

  request(type, params, token) {
    return this.connection.sendRequest(type, params, token);
  }

  async close() {
    await this.connection.sendRequest(proto.ShutdownRequest.type);
    await this.connection.sendNotification(proto.ExitNotification.type);
    const code = await this.exited;
    this.connection.dispose();
    return code;
  }
}

module.exports = { Session, scratchCampaign, uriOf, VELKORC, SOURCE_DIR, proto };
