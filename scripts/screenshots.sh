#!/usr/bin/env bash
# Makes the README's pictures of the IDE (docs/ide-light.png, docs/ide-dark.png) from the screenshot test
# on a virtual X server. Run after a build: scripts/screenshots.sh [build folder]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
VELKOR_SCREENSHOT_DIR=$out QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1280x1024x24" \
    "$build/tests/ide/ide_tests" --gtest_filter=AppearanceScreenshotTest.ReadmePictures
for theme in light dark; do
    cp "$out/ide-$theme.png" "$root/docs/ide-$theme.png"
done
echo "docs/ide-light.png and docs/ide-dark.png written"
