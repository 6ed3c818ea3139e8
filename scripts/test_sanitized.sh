#!/usr/bin/env bash
# Every test again, built by clang with AddressSanitizer and UndefinedBehaviorSanitizer into build-san/;
# there the fuzz targets are libFuzzer programs, so the suite fuzzes each one for a few seconds. Any
# sanitizer report fails the test that caused it.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/setup.sh --packages-only
# shellcheck source=scripts/sanitized_env.sh
. scripts/sanitized_env.sh
cmake --build build-san -j"$(nproc)"
ctest --test-dir build-san --output-on-failure -j"$(nproc)"
