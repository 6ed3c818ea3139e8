#!/usr/bin/env bash
# The Debian package as a user gets it, on this machine (root, as in CI): installed with dpkg -i; its
# files where Debian wants them and its Depends computed; velkorc from /usr/bin, run by an ordinary user,
# builds the demo campaign into files equal to the golden ones, which needs the installed library units
# found through $compiler$; the file types known to the desktop; the IDE started under Xvfb with its
# window, caption and icon; then dpkg -P removes every file again.
# Usage: tests/packaging/install_test.sh DEB
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
deb=$(realpath "${1:?usage: $0 DEB}")
if [ "$(id -u)" -ne 0 ]; then
    echo "installing a package needs root" >&2
    exit 2
fi
if dpkg-query -W -f='${Status}' velkor 2>/dev/null | grep -q "install ok installed"; then
    echo "velkor is installed already; remove it first (dpkg -P velkor)" >&2
    exit 2
fi

failures=0
fail() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}
pass() { echo "ok   $*"; }
check() { # check WHAT COMMAND...
    local what=$1
    shift
    if "$@" >/dev/null 2>&1; then pass "$what"; else fail "$what"; fi
}

work=$(mktemp -d)
chmod 755 "$work"
xvfb_pid=
ide_pid=
cleanup() {
    set +e
    [ -n "$ide_pid" ] && kill "$ide_pid" 2>/dev/null
    [ -n "$xvfb_pid" ] && kill "$xvfb_pid" 2>/dev/null
    dpkg -P velkor >/dev/null 2>&1
    rm -rf "$work"
}
trap cleanup EXIT

echo "== dpkg -i $(basename "$deb")"
dpkg -i "$deb"

depends=$(dpkg-query -W -f='${Depends}' velkor)
for lib in libc6 libstdc++6 zlib1g libqt6widgets6 libqscintilla2-qt6 libqt6svg6; do
    # The name, or the name with its library version (libqscintilla2-qt6-15).
    if [[ ", $depends," =~ ,\ "$lib"(-[0-9]+)?[\ ,] ]]; then pass "Depends: $lib"; else
        fail "Depends lacks $lib: $depends"; fi
done

for file in /usr/bin/velkor /usr/bin/velkorc /usr/lib/velkor/velkorc /usr/lib/velkor/lib/gamefuncs.pas \
    /usr/lib/velkor/docs/help/objects.html /usr/lib/velkor/sample_extension.so \
    /usr/include/velkor/ide/velkor_extension.h /usr/lib/cmake/VelkorExtension/VelkorExtensionConfig.cmake \
    /usr/share/man/man1/velkorc.1.gz /usr/share/man/man1/velkor.1.gz \
    /usr/share/bash-completion/completions/velkorc /usr/share/applications/org.velkor.Velkor.desktop \
    /usr/share/icons/hicolor/scalable/apps/velkor.svg /usr/share/mime/packages/velkor.xml \
    /usr/share/metainfo/org.velkor.Velkor.metainfo.xml /usr/share/doc/velkor/copyright; do
    check "installed: $file" test -e "$file"
done
check "velkorc(1) lists the commands" sh -c 'zcat /usr/share/man/man1/velkorc.1.gz | grep -q "decode.*FILE"'
check "velkorc(1) explains the named folders" sh -c 'zcat /usr/share/man/man1/velkorc.1.gz | grep -qF "\$compiler\$"'
check "velkor(1) names the program's options" sh -c 'zcat /usr/share/man/man1/velkor.1.gz | grep -qF "\-\-version"'

# --- velkorc from /usr/bin, run by an ordinary user whose home holds the settings
user=nobody
home=$work/home
mkdir -p "$home" "$work/demo"
cp "$root"/examples/campaign/* "$work/demo/"
chown -R "$user" "$home" "$work/demo"
as_user() { runuser -u "$user" -- env -i PATH=/usr/bin:/bin HOME="$home" "$@"; }
check "velkorc is found on PATH and prints its version" sh -c \
    "runuser -u $user -- env -i PATH=/usr/bin:/bin velkorc --version | grep -qx '1.0 R24d'"
(
    cd "$work/demo"
    as_user velkorc asm campaign_eng.txt >/dev/null
    for unit in frontier outpost patrol escort; do as_user velkorc build -v 0 -I . "$unit.pas" >/dev/null; done
) || fail "building the demo campaign with the installed velkorc"
for file in "$root"/tests/golden/campaign/*; do
    name=$(basename "$file")
    [ -f "$file" ] && [ "$name" != README.md ] || continue
    if cmp -s "$file" "$work/demo/$name"; then pass "demo campaign: $name equals the golden file"; else
        fail "demo campaign: $name differs from the golden file"; fi
done
check "nothing was written into the installed folder" \
    sh -c '[ -z "$(find /usr/lib/velkor -newer '"$deb"' -name "*.ini")" ]'

# --- the file types, as the desktop's file managers see them (the package's triggers updated the cache)
printf 'FORM\0\0\0\4MISS' >"$work/type.mis"
printf 'FORM\0\0\0\4SECT' >"$work/no_extension"
printf 'mission m;\r\n' >"$work/mission_unit"
printf 'unit u;\ninterface\n' >"$work/plain.pas"
mime_of() { gio info -a standard::content-type "$1" | sed -n 's/^ *standard::content-type: //p'; }
for pair in type.mis=application/x-velkor-mission no_extension=application/x-velkor-iff \
    mission_unit=text/x-velkor-unit plain.pas=text/x-pascal; do
    file=${pair%%=*} want=${pair#*=}
    got=$(mime_of "$work/$file")
    if [ "$got" = "$want" ]; then pass "file type of $file: $want"; else fail "file type of $file: $got, not $want"; fi
done
check "the desktop entry opens mission files" grep -q 'application/x-velkor-mission=.*org.velkor.Velkor.desktop' \
    /usr/share/applications/mimeinfo.cache

# --- the installed IDE under a real X server, opening a binary file as a double-click would
display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
xvfb_pid=$!
cp "$root/tests/golden/campaign/patrol.mis" "$work/demo/opened.mis"
chown "$user" "$work/demo/opened.mis"
(cd "$work/demo" && exec runuser -u "$user" -- env -i PATH=/usr/bin:/bin HOME="$home" DISPLAY="$display" \
    velkor opened.mis) >"$work/ide.log" 2>&1 &
ide_pid=$!
window=
for _ in $(seq 1 120); do
    window=$(xwininfo -display "$display" -root -tree 2>/dev/null |
        sed -n 's/^ *\(0x[0-9a-f]*\) "Velkor Console 3.0d (Compiler: 1.0 R24d)[^"]*".*/\1/p' | head -1) || true
    [ -n "$window" ] && break
    kill -0 "$ide_pid" 2>/dev/null || break
    sleep 0.5
done
if [ -n "$window" ]; then
    pass "the installed IDE shows its main window"
    xprop -display "$display" -id "$window" _NET_WM_ICON >"$work/icon.txt" 2>&1 || true
    # xprop draws the icon ("Icon (128 x 128):") or, older, lists its numbers.
    if grep -qE '_NET_WM_ICON\(CARDINAL\) = .*(Icon \([0-9]|[0-9])' "$work/icon.txt"; then
        pass "the window has the Velkor icon"
    else
        fail "the window has no icon"
    fi
else
    fail "the installed IDE showed no main window: $(cat "$work/ide.log")"
fi
kill "$ide_pid" 2>/dev/null
wait "$ide_pid" 2>/dev/null || true
ide_pid=

# --- removal
dpkg -P velkor >/dev/null
for path in /usr/lib/velkor /usr/bin/velkorc /usr/bin/velkor /usr/include/velkor /usr/lib/cmake/VelkorExtension \
    /usr/share/doc/velkor /usr/share/mime/packages/velkor.xml; do
    check "removed: $path" test ! -e "$path"
done
check "dpkg knows no velkor any more" sh -c '! dpkg-query -W -f="\${Status}" velkor 2>/dev/null | grep -q installed'

if ((failures)); then
    echo "$failures package test(s) failed" >&2
    exit 1
fi
echo "the package installs, works and is removed cleanly"
