#!/usr/bin/env bash
# The whole set-up on a Debian 12 machine: installs the Debian packages the build needs when they are
# missing, then configures and builds into build/. Safe to run again; it only does what is left to do.
# --packages-only stops after the packages; --bench also installs what scripts/bench.py compares with;
# --windows also installs the MinGW-w64 cross compiler and Wine (scripts/build_windows.sh); --package what
# building and checking the Debian package takes (scripts/package.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
build=1
bench=0
windows=0
package=0
for arg in "$@"; do
    case $arg in
        --packages-only) build=0 ;;
        --bench) bench=1 ;;
        --windows) windows=1 ;;
        --package) package=1 ;;
        *) echo "usage: $0 [--packages-only] [--bench] [--windows] [--package]" >&2; exit 2 ;;
    esac
done

packages=(
    cmake make g++ pkg-config zlib1g-dev     # core and velkorc
    libgtest-dev libgmock-dev                # tests
    qt6-base-dev libgl-dev libqscintilla2-qt6-dev fonts-dejavu-core  # the IDE
    libqt6svg6                               # the IDE's SVG icon
    help2man gzip                            # manual pages
    desktop-file-utils appstream shared-mime-info libglib2.0-bin bash-completion  # desktop files and tests
    xvfb xauth                               # GUI tests under a real X server
    clang libclang-rt-14-dev                 # libFuzzer and sanitizer builds
    libbenchmark-dev xxd time                # benchmarks (time: peak memory in scripts/bench.py)
    python3                                  # tests that parse the SVG maps as XML
    nlohmann-json3-dev                       # the language server's JSON
    neovim                                   # the language server under Neovim's own client
)
# Node for the editor integrations' tests; a Node installed some other way (nodesource, nvm) is kept.
if ! command -v node >/dev/null || ! command -v npm >/dev/null; then packages+=(nodejs npm); fi
if ((bench)); then packages+=(fp-compiler); fi
if ((windows)); then
    packages+=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine wine64)
fi
if ((package)); then
    packages+=(dpkg-dev file lintian x11-utils)
fi
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
    sudo=""
    if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
    echo "Installing: ${missing[*]}"
    $sudo apt-get update
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
fi

# The npm packages the tests of the editor integrations use, exactly as the lock files name them.
for folder in tests/lsp editors/vscode; do
    if [ -f "$folder/package-lock.json" ] && { [ ! -d "$folder/node_modules" ] ||
        [ "$folder/package-lock.json" -nt "$folder/node_modules/.package-lock.json" ]; }; then
        (cd "$folder" && npm ci --no-audit --no-fund)
    fi
done

if ((build)); then
    cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
    cmake --build build -j"$(nproc)"
fi
