#!/usr/bin/env bash
# Packages the VS Code extension (editors/vscode) into a .vsix with @vscode/vsce.
# Usage: scripts/package_vsix.sh [OUT.vsix]   (default: editors/vscode/velkor.vsix)
# Install it with: code --install-extension OUT.vsix
set -euo pipefail
out=$(realpath -m "${1:-editors/vscode/velkor.vsix}")
cd "$(dirname "$0")/../editors/vscode"
if [ ! -d node_modules ] || [ package-lock.json -nt node_modules/.package-lock.json ]; then
    npm ci --no-audit --no-fund
fi
npx --no-install vsce package --skip-license --allow-missing-repository --out "$out"
