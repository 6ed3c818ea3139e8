#!/usr/bin/env bash
# velkorc.exe under Wine, as a Windows user runs it: the version, the demo campaign built into files equal
# to the golden ones, every file decoded and assembled back to the same bytes, the compiled text on stdout
# byte for byte, and the named folders read from the Windows registry through the Windows API: one a user
# defines under HKLM\Software\velkor (found by $name$), and the games' "Installed To:" values (found by
# $wcp$ and $wcso$), both written with Wine's own reg.exe.
# Usage: tests/windows/wine_test.sh VELKORC_EXE   (the library units in lib/ beside it)
# The tests add and delete registry keys, so they run in a Wine prefix of their own, build-win/wine (made
# on first use), never in the user's.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
exe=$(realpath "${1:?usage: $0 VELKORC_EXE}")
export WINEDEBUG=-all
# No dialogs offering to download Mono or Gecko: nothing here needs them.
export WINEDLLOVERRIDES="mscoree,mshtml="
export WINEPREFIX=$root/build-win/wine
wine=$(command -v wine || command -v wine64)
if [ ! -f "$WINEPREFIX/system.reg" ]; then
    echo "Making the Wine prefix $WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    DISPLAY= "$wine" wineboot --init >/dev/null 2>&1
    wineserver -w
fi

# The keys the tests add, in both views, so that each run starts without them.
forget_keys() {
    local view
    for view in /reg:32 /reg:64; do
        "$wine" reg delete 'HKLM\Software\velkor' $view /f >/dev/null 2>&1 || true
        "$wine" reg delete 'HKLM\Software\Origin Systems' $view /f >/dev/null 2>&1 || true
    done
}
work=$(mktemp -d)
trap 'forget_keys; rm -rf "$work"' EXIT
forget_keys

failures=0
fail() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}
pass() { echo "ok   $*"; }
# The Windows form of a path on this machine: Wine shows the root as drive Z:.
winpath() { local p; p=$(realpath -m "$1"); echo "Z:${p//\//\\}"; }
velkorc() { "$wine" "$exe" "$@"; }
golden=$root/tests/golden/campaign
src=$root/examples/campaign

# --- the version
version=$(velkorc --version)
if [ "$version" = "1.0 R24d" ]; then pass "--version"; else fail "--version printed '$version'"; fi

# --- the demo campaign, as scripts/demo.sh builds it; the sources named by Windows paths with "\"
out=$work/demo
mkdir -p "$out"
(cd "$work" && velkorc asm --out-dir demo "$(winpath "$src/campaign_eng.txt")" >/dev/null)
for unit in frontier outpost patrol escort; do
    (cd "$work" && velkorc build -v 0 -I demo --out-dir demo "$(winpath "$src/$unit.pas")" >/dev/null) ||
        fail "building $unit.pas"
done
for file in "$golden"/*; do
    name=$(basename "$file")
    [ -f "$file" ] && [ "$name" != README.md ] || continue
    if cmp -s "$file" "$out/$name"; then pass "demo campaign: $name equals the golden file"; else
        fail "demo campaign: $name differs from the golden file"; fi
done

# --- every file decoded into text and assembled again
dec=$work/decoded
mkdir -p "$dec/assembled"
for file in "$out"/*; do
    name=$(basename "$file")
    cp "$file" "$dec/$name"
    if (cd "$dec" && velkorc decode --exact-floats "$name" && velkorc asm --out-dir assembled "$name.pas") \
        >/dev/null && cmp -s "$dec/assembled/$name" "$file"; then
        pass "decode round trip: $name"
    else
        fail "decode round trip: $name"
    fi
done

# --- the linked text on stdout is the same bytes as the file written by -o (no CR added before LF)
(cd "$work" && velkorc compile -v 0 -I demo "$(winpath "$src/patrol.pas")" >stdout.txt &&
    velkorc compile -v 0 -I demo -o file.txt "$(winpath "$src/patrol.pas")")
if cmp -s "$work/stdout.txt" "$work/file.txt" && grep -q $'\r$' "$work/file.txt" &&
    ! grep -q $'\r\r' "$work/file.txt"; then
    pass "compile: stdout equals -o, lines end in CR LF"
else
    fail "compile: stdout differs from -o or its line breaks are wrong"
fi

# --- named folders from the registry. patrol.pas alone in a folder: "include common" finds common.pas
# only through the search path entry "$NAME$", so building it proves the lookup.
alone=$work/alone
mkdir -p "$alone" "$work/shared" "$work/games/wcp/units" "$work/games/so/units"
cp "$src/patrol.pas" "$alone/"
for d in "$work/shared" "$work/games/wcp/units" "$work/games/so/units"; do cp "$src/common.pas" "$d/"; done

# build_alone SEARCH_FOLDER: builds patrol.pas from its lonely folder; true when it equals the golden file.
build_alone() {
    rm -rf "$work/alone_out"
    mkdir -p "$work/alone_out"
    (cd "$work" && velkorc build -v 0 -I "$1" -I demo --out-dir alone_out "$(winpath "$alone/patrol.pas")") \
        >/dev/null 2>&1 && cmp -s "$golden/patrol.mis" "$work/alone_out/patrol.mis"
}
# check_named NAME SEARCH_FOLDER REG_ARGS...: not found before the registry value is added, found after.
check_named() {
    local what=$1 folder=$2
    shift 2
    if build_alone "$folder"; then
        fail "$what: found before it was defined"
        return
    fi
    "$wine" reg add "$@" /f >/dev/null
    if build_alone "$folder"; then pass "$what"; else fail "$what: not found after 'reg add $*'"; fi
}
check_named 'user folder $Shared$ from HKLM\Software\velkor' '$Shared$' \
    'HKLM\Software\velkor' /v Shared /d "$(winpath "$work/shared")\\"
check_named 'game folder $wcp$ from the 32-bit Prophecy key' '$wcp$\units' \
    'HKLM\Software\Origin Systems\Wing Commander Prophecy' /reg:32 /v 'Installed To:' \
    /d "$(winpath "$work/games/wcp")\\"
check_named 'game folder $wcso$ from the 32-bit Secret Ops key' '$WCSO$\Units' \
    'HKLM\Software\Origin Systems\Wing Commander Secret Ops' /reg:32 /v 'Installed To:' \
    /d "$(winpath "$work/games/so")\\"

if ((failures)); then
    echo "$failures Windows test(s) failed" >&2
    exit 1
fi
echo "velkorc.exe passed every test under Wine"
