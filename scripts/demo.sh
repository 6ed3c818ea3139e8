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
dec="$out/decoded"
mkdir -p "$dec/assembled"
for file in "$out"/*.*; do
    name=$(basename "$file")
    cp "$file" "$dec/$name"
    (cd "$dec" && "$velkorc" decode --exact-floats "$name" && "$velkorc" asm --out-dir assembled "$name.pas" >/dev/null)
    rm "$dec/$name"
    cmp "$dec/assembled/$name" "$file"
    printf '%-13s -> %-17s -> the same %d bytes\n' "$name" "$name.pas" "$(stat -c %s "$file")"
done
rm -rf "$dec/assembled"

echo
echo "== The map of the mission patrol.pas ($out/maps/patrol.svg, the picture the README shows)"
mkdir -p "$out/maps"
"$velkorc" map -v 0 -I "$out" "$src/patrol.pas" -o "$out/maps/patrol.svg"
cmp "$out/maps/patrol.svg" docs/maps/patrol.svg
echo "the same picture as docs/maps/patrol.svg"
