#!/usr/bin/env bash
# The main job: set up and build, then run velkorc over the bundled sample unit.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/setup.sh
./build/velkorc tokens examples/sample.pas
