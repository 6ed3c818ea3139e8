#!/usr/bin/env bash
# velkorc.exe for 64-bit Windows, cross-built with Debian's MinGW-w64 into build-win/ and statically
# linked, so that it runs alone; out/windows/ then holds it with the library units beside it, as
# "$compiler$\lib" expects. The core's tests are built for Windows too.
# --test runs them under Wine, then the Windows tests of velkorc.exe (tests/windows/wine_test.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
test=0
for arg in "$@"; do
    case $arg in
        --test) test=1 ;;
        *) echo "usage: $0 [--test]" >&2; exit 2 ;;
    esac
done
./scripts/setup.sh --packages-only --windows

launcher=()
if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
fi
cmake -S . -B build-win -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake -DCMAKE_BUILD_TYPE=Release \
    "${launcher[@]}" >/dev/null
cmake --build build-win -j"$(nproc)"

out=out/windows
rm -rf "$out"
mkdir -p "$out"
cp build-win/velkorc.exe "$out/"
x86_64-w64-mingw32-strip "$out/velkorc.exe"
cp -r lib "$out/lib"
rm -f "$out/lib/README.md"
echo "velkorc.exe and its library units are in $out/"

if ((test)); then
    ./tests/windows/wine_test.sh "$out/velkorc.exe"
    # In the prefix wine_test.sh made, not the user's: the registry test adds keys of its own.
    # One server for the whole run: one that stops between two test programs can refuse the next start.
    # Its first program starts Wine's own services, which live as long as the server: started here,
    # they do not hold a test's output open, and ctest does not wait for them.
    export WINEPREFIX=$PWD/build-win/wine WINEDEBUG=-all
    wineserver -k 2>/dev/null || true
    wineserver -p
    "$(command -v wine || command -v wine64)" wineboot >/dev/null 2>&1 </dev/null
    trap 'wineserver -k 2>/dev/null || true' EXIT
    ctest --test-dir build-win --output-on-failure -j"$(nproc)"
fi
