#!/usr/bin/env python3
"""Parses the SVG maps velkorc draws with an XML parser and checks what they show.

Usage: check_map_svg.py VELKORC SOURCE_DIR BUILT_README_MAP
"""
import os
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET

SVG = "{http://www.w3.org/2000/svg}"


def run(velkorc, args, cwd):
    result = subprocess.run([velkorc] + args, cwd=cwd, capture_output=True)
    if result.returncode != 0:
        sys.exit(f"velkorc {' '.join(args)} failed ({result.returncode}): {result.stderr.decode()}")
    return result.stdout


def parse(data, what):
    try:
        return ET.fromstring(data)
    except ET.ParseError as error:
        sys.exit(f"{what}: not well-formed XML: {error}")


def check(condition, message):
    if not condition:
        sys.exit(message)


def objects_of(root):
    return [g for g in root.iter(SVG + "g") if g.get("class") == "object"]


def main():
    velkorc, source, built = (os.path.abspath(a) for a in sys.argv[1:4])
    campaign = os.path.join(source, "examples", "campaign")
    with tempfile.TemporaryDirectory() as folder:
        run(velkorc, ["asm", "--out-dir", folder, os.path.join(campaign, "campaign_eng.txt")], folder)
        patrol = os.path.join(campaign, "patrol.pas")
        names = {"Alpha1", "Alpha2", "Raider1", "Raider2", "Raider3", "LaunchCam"}
        for extra, panels in (([], 2), (["--dark"], 2), (["--view", "top"], 1), (["--view", "side"], 1)):
            what = "map of patrol.pas " + " ".join(extra)
            root = parse(run(velkorc, ["map", "-v", "0", "-I", folder, patrol] + extra, folder), what)
            check(root.tag == SVG + "svg", f"{what}: the root is {root.tag}, not svg")
            check(len(root.findall(f"{SVG}defs/{SVG}clipPath")) == panels, f"{what}: not {panels} panels")
            groups = objects_of(root)
            # Every object is drawn once in every panel, with its name beside its symbol.
            check(len(groups) == len(names) * panels, f"{what}: {len(groups)} object groups")
            drawn = {g.find(SVG + "text").text for g in groups}
            check(drawn == names, f"{what}: names {sorted(drawn)}")
            for g in groups:
                title = g.find(SVG + "title").text
                check(title.split("\n")[0] in names and "x " in title, f"{what}: title {title!r}")
            texts = [t.text for t in root.iter(SVG + "text")]
            check(any(t and t.endswith(" units") for t in texts), f"{what}: no scale bar")
            check("ship (4)" in texts and "camera (1)" in texts, f"{what}: legend {texts}")
            background = root.find(SVG + "rect").get("fill")
            check(background == ("#1e1f22" if "--dark" in extra else "#ffffff"), f"{what}: background")

        # The binary mission shows the same objects at the same places, named by their hashes.
        binary = parse(run(velkorc, ["map", os.path.join(source, "tests", "golden", "campaign", "patrol.mis")],
                           folder), "map of patrol.mis")
        check(len(objects_of(binary)) == len(names) * 2, "patrol.mis: object count")

    with open(built, "rb") as f:
        built_map = f.read()
    parse(built_map, built)
    with open(os.path.join(source, "docs", "maps", "patrol.svg"), "rb") as f:
        check(f.read() == built_map, f"{built} differs from docs/maps/patrol.svg: the README shows an old map")
    print("every map parses and shows its objects")


if __name__ == "__main__":
    main()
