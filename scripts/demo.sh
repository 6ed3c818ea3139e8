#!/usr/bin/env bash
# The main job: set up and build, then build the demo campaign of examples/campaign into out/demo/ the
# way a mission author would (the string file first, then every unit), list the files written, and
# decode each one back into text and assemble that again, to the same bytes.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/setup.sh

velkorc="$PWD/build/velkorc"
src=examples/campaign
out=out/demo
rm -rf "$out"
mkdir -p "$out"

echo
echo "== The string file"
"$velkorc" asm --out-dir "$out" "$src/campaign_eng.txt"

echo
echo "== The units (-I $out: the missions find campaign.eng there)"
for unit in frontier outpost patrol escort; do
    echo "-- $unit.pas"
    "$velkorc" build -v 0 -I "$out" --out-dir "$out" "$src/$unit.pas"
done

echo
echo "== The same campaign at once, through the project unit build_all.pas and its #FILE list"
mkdir -p "$out/all"
"$velkorc" build -v 0 -I "$out/all" --out-dir "$out/all" "$src/build_all.pas" >/dev/null
for file in "$out"/all/*; do
    cmp "$file" "$out/$(basename "$file")"
done
echo "every file equals the one built unit by unit"
rm -rf "$out/all"

echo
echo "== Files written to $out"
for file in "$out"/*; do
    printf '%8d bytes  %s\n' "$(stat -c %s "$file")" "$file"
done

echo
echo "== Decoded into text and assembled again ($out/decoded)"
# A unit's file holds the game's form and, behind it, the editor form; the IFF reader (and so the
# decoder) takes one top-level form per file. Such a file is cut into its forms, each form is decoded and
# assembled on its own, and the pieces are joined again.
dec="$out/decoded"
mkdir -p "$dec/assembled"
for file in "$out"/*.*; do
    name=$(basename "$file")
    total=$(stat -c %s "$file")
    pieces=()
    offset=0
    while [ "$offset" -lt "$total" ]; do
        size=$((16#$(od -An -tx1 -j $((offset + 4)) -N4 "$file" | tr -d ' \n') + 8))
        pieces+=("$offset:$size")
        offset=$((offset + size))
    done
    parts=()
    if [ "${#pieces[@]}" -eq 1 ]; then
        cp "$file" "$dec/$name"
        parts=("$name")
    else
        n=0
        for piece in "${pieces[@]}"; do
            n=$((n + 1))
            tail -c +$((${piece%:*} + 1)) "$file" | head -c "${piece#*:}" >"$dec/$name.form$n"
            parts+=("$name.form$n")
        done
    fi
    for part in "${parts[@]}"; do
        (cd "$dec" && "$velkorc" decode --exact-floats "$part" && "$velkorc" asm --out-dir assembled "$part.pas" >/dev/null)
        rm "$dec/$part"
    done
    (cd "$dec/assembled" && cat "${parts[@]}") | cmp - "$file"
    texts=$(printf '%s.pas, ' "${parts[@]}")
    printf '%-13s -> %s -> the same %d bytes\n' "$name" "${texts%, }" "$total"
done
rm -rf "$dec/assembled"
