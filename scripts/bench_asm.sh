#!/usr/bin/env bash
# Throughput of `velkorc asm` on a large generated text of "BYTE [16]" rows, measured beside `xxd -r -p`
# turning the same bytes, written as plain hexadecimal, back into binary. Both outputs are compared.
# Usage: scripts/bench_asm.sh [ROWS]   (default 400000 rows, about 30 MB of text)
# VELKORC names the binary (default build/velkorc).
set -euo pipefail
cd "$(dirname "$0")/.."
velkorc=$(realpath "${VELKORC:-build/velkorc}")
rows=${1:-400000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

python3 - "$work" "$rows" <<'PY'
import random, sys
work, rows = sys.argv[1], int(sys.argv[2])
data = random.Random(1).randbytes(16 * rows)
h = data.hex().upper()
with open(f"{work}/bench.txt", "w", newline="") as t, open(f"{work}/bench.hex", "w") as x:
    t.write('IFF "bench.iff"\r\n{\r\n  form "BNCH"\r\n  {\r\n    chunk "DATA"\r\n    {\r\n')
    lines = []
    for r in range(rows):
        row = h[32 * r:32 * r + 32]
        lines.append("      BYTE [16] " + " ".join("$" + row[i:i + 2] for i in range(0, 32, 2)) + "\r\n")
    t.write("".join(lines))
    t.write("    }\r\n  }\r\n}\r\n")
    x.write("\n".join(h[i:i + 32] for i in range(0, len(h), 32)) + "\n")
PY

now() { date +%s.%N; }
rate() { python3 -c "import sys; print(f'{int(sys.argv[1]) / 1e6 / float(sys.argv[2]):.1f}')" "$1" "$2"; }

text_size=$(stat -c %s "$work/bench.txt")
hex_size=$(stat -c %s "$work/bench.hex")

run_asm() {
    local label=$1
    shift
    local t0 t1
    t0=$(now)
    (cd "$work" && "$velkorc" asm "$@" bench.txt >/dev/null)
    t1=$(now)
    local secs
    secs=$(python3 -c "print(f'{$t1 - $t0:.3f}')")
    echo "velkorc asm ($label): $text_size bytes of text in $secs s = $(rate "$text_size" "$secs") MB/s"
    tail -c +21 "$work/bench.iff" | cmp -s - "$work/xxd.bin" || { echo "output differs from xxd's" >&2; exit 1; }
}

t0=$(now)
xxd -r -p "$work/bench.hex" "$work/xxd.bin"
t1=$(now)
secs=$(python3 -c "print(f'{$t1 - $t0:.3f}')")
echo "xxd -r -p: $hex_size bytes of hex in $secs s = $(rate "$hex_size" "$secs") MB/s"

run_asm TScanner
run_asm TFastScanner --fast-scanner
