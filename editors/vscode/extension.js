// Starts "velkorc lsp" for the mission sources of the workspace and hands it the search path setting.
'use strict';
const vscode = require('vscode');
const { LanguageClient } = require('vscode-languageclient/node');

let client;

function activate(context) {
  const config = vscode.workspace.getConfiguration('velkor');
  const server = { command: config.get('serverPath', 'velkorc'), args: ['lsp'] };
  client = new LanguageClient('velkor', 'Velkor', { run: server, debug: server }, {
    documentSelector: [{ scheme: 'file', language: 'velkor' }, { scheme: 'untitled', language: 'velkor' }],
    initializationOptions: { searchPath: config.get('searchPath', []) },
    synchronize: { configurationSection: 'velkor' },
  });
  context.subscriptions.push(client);
  return client.start();
}

function deactivate() {
  return client ? client.stop() : undefined;
}

module.exports = { activate, deactivate };
