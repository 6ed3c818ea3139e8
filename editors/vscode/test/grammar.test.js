// The TextMate grammars under vscode-textmate and vscode-oniguruma, the engine VS Code itself runs: the
// demo campaign's keywords, strings, numbers, comments and "#" commands get the scopes themes colour.
'use strict';
const test = require('node:test');
const assert = require('node:assert/strict');
const fs = require('node:fs');
const path = require('node:path');
const textmate = require('vscode-textmate');
const oniguruma = require('vscode-oniguruma');

const root = path.join(__dirname, '..');
const campaign = path.join(root, '..', '..', 'examples', 'campaign');
const grammars = {
  'source.velkor': path.join(root, 'syntaxes', 'velkor.tmLanguage.json'),
  'source.velkor-iff': path.join(root, 'syntaxes', 'velkor-iff.tmLanguage.json'),
};

const registry = new textmate.Registry({
  onigLib: (async () => {
    const wasm = fs.readFileSync(require.resolve('vscode-oniguruma/release/onig.wasm'));
    await oniguruma.loadWASM(wasm.buffer.slice(wasm.byteOffset, wasm.byteOffset + wasm.byteLength));
    return { createOnigScanner: (s) => new oniguruma.OnigScanner(s), createOnigString: (s) => new oniguruma.OnigString(s) };
  })(),
  loadGrammar: async (scope) => grammars[scope] &&
    textmate.parseRawGrammar(fs.readFileSync(grammars[scope], 'utf8'), grammars[scope]),
});

// Every token of a file: its text, line (from 1) and scopes.
async function tokens(scope, file) {
  const grammar = await registry.loadGrammar(scope);
  const out = [];
  let state = textmate.INITIAL;
  fs.readFileSync(file, 'latin1').split(/\r?\n/).forEach((line, i) => {
    const result = grammar.tokenizeLine(line, state);
    for (const t of result.tokens) out.push({ text: line.slice(t.startIndex, t.endIndex), line: i + 1, scopes: t.scopes });
    state = result.ruleStack;
  });
  return out;
}

// [file, line that holds the text (a substring), token text, scope it must have]
const cases = [
  ['source.velkor', 'patrol.pas', 'mission patrol;', 'mission', 'keyword.other.unit.velkor'],
  ['source.velkor', 'patrol.pas', 'include common;', 'include', 'keyword.other.unit.velkor'],
  ['source.velkor', 'patrol.pas', 'function PatrolMain;', 'function', 'storage.type.function.velkor'],
  ['source.velkor', 'patrol.pas', 'function PatrolMain;', 'PatrolMain', 'entity.name.function.velkor'],
  ['source.velkor', 'patrol.pas', 'objective ReachBeacons', 'ReachBeacons', 'entity.name.type.velkor'],
  ['source.velkor', 'patrol.pas', '  for beacon := 1 to 3 do', 'for', 'keyword.control.velkor'],
  ['source.velkor', 'patrol.pas', '  for beacon := 1 to 3 do', '3', 'constant.numeric.decimal.velkor'],
  ['source.velkor', 'patrol.pas', '  for beacon := 1 to 3 do', ':=', 'keyword.operator.velkor'],
  ['source.velkor', 'patrol.pas', '#SECTOR: "outpost.sec";', '#SECTOR', 'keyword.control.directive.velkor'],
  ['source.velkor', 'patrol.pas', '#SECTOR: "outpost.sec";', 'outpost.sec', 'string.quoted.double.velkor'],
  ['source.velkor', 'patrol.pas', '#IFDEF HARD', '#IFDEF', 'keyword.control.directive.velkor'],
  ['source.velkor', 'patrol.pas', '// The first mission', ' The first mission: fly the patrol route past the three beacons of the Outpost sector with a wingman,', 'comment.line.double-slash.velkor'],
  ['source.velkor', 'patrol.pas', 'counter: 3;', '3', 'constant.numeric.decimal.velkor'],
  ['source.velkor', 'common.pas', 'unit Common;', 'Common', 'entity.name.namespace.velkor'],
  ['source.velkor', 'patrol.pas', 'var beacon;', 'var', 'storage.type.velkor'],
  ['source.velkor', '../../editors/vscode/test/cases/literals.pas', 'Mask = $1F;', '$1F', 'constant.numeric.hex.velkor'],
  ['source.velkor', '../../editors/vscode/test/cases/literals.pas', 'Bits = %1010;', '%1010', 'constant.numeric.binary.velkor'],
  ['source.velkor', '../../editors/vscode/test/cases/literals.pas', 'Ratio = 0.25;', '0.25', 'constant.numeric.decimal.velkor'],
  ['source.velkor', '../../editors/vscode/test/cases/literals.pas', '/* Numbers', '/*', 'comment.block.velkor'],
  ['source.velkor', '../../editors/vscode/test/cases/literals.pas', 'inside a block comment', '   inside a block comment that spans lines. ', 'comment.block.velkor'],
  ['source.velkor', '../../editors/vscode/test/cases/literals.pas', 'Mask = $1F;', ' hexadecimal', 'comment.line.double-slash.velkor'],
  ['source.velkor-iff', 'campaign_eng.txt', 'IFF "campaign.eng"', 'IFF', 'keyword.control.velkor-iff'],
  ['source.velkor-iff', 'campaign_eng.txt', 'IFF "campaign.eng"', 'campaign.eng', 'string.quoted.double.velkor-iff'],
  ['source.velkor-iff', 'campaign_eng.txt', 'FORM "LANG"', 'FORM', 'keyword.control.velkor-iff'],
  ['source.velkor-iff', 'campaign_eng.txt', 'CHUNK "INFO"', 'CHUNK', 'keyword.control.velkor-iff'],
  ['source.velkor-iff', 'campaign_eng.txt', 'cstring "English"', 'cstring', 'storage.type.velkor-iff'],
  ['source.velkor-iff', 'campaign_eng.txt', 'long 35', '35', 'constant.numeric.decimal.velkor-iff'],
  ['source.velkor-iff', 'campaign_eng.txt', 'long 35', ' strings in TEXT, the padding included', 'comment.line.double-slash.velkor-iff'],
];

for (const [scope, name, lineText, text, expected] of cases) {
  test(`${name}: "${text.trim().slice(0, 30)}" is ${expected}`, async () => {
    const all = await tokens(scope, path.join(campaign, name));
    const line = all.find((t) => t.text && fs.readFileSync(path.join(campaign, name), 'latin1').split(/\r?\n/)[t.line - 1].includes(lineText))?.line;
    assert.ok(line, `a line with ${lineText}`);
    const token = all.find((t) => t.line === line && t.text === text);
    assert.ok(token, `token "${text}" on line ${line}: ${JSON.stringify(all.filter((t) => t.line === line).map((t) => t.text))}`);
    assert.ok(token.scopes.includes(expected), `${JSON.stringify(token.scopes)}`);
  });
}

test('every line of the demo campaign tokenizes, and no keyword of the language is left uncoloured', async () => {
  const words = /^(begin|end|if|then|else|while|do|until|for|to|var|const|function|object|objective|external|include)$/i;
  for (const name of fs.readdirSync(campaign).filter((n) => n.endsWith('.pas'))) {
    for (const t of await tokens('source.velkor', path.join(campaign, name))) {
      if (words.test(t.text)) assert.ok(t.scopes.length > 1, `${name}:${t.line} ${t.text}`);
    }
  }
});
