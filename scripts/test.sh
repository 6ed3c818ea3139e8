#!/usr/bin/env bash
# Every test: set up and build, then run the whole suite with CTest.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/setup.sh
ctest --test-dir build --output-on-failure -j"$(nproc)"
