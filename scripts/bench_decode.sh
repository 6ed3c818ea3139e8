#!/usr/bin/env bash
# Throughput of `velkorc decode` (MB of binary input per second) on a large generated IFF file of random
# chunk data, decoded inline as byte rows with the decode limit raised, measured beside `xxd -p` writing the
# same file as plain hexadecimal. The decoded text is assembled again and compared with the input.
# Usage: scripts/bench_decode.sh [MEGABYTES]   (default 50)
# VELKORC names the binary (default build/velkorc).
set -euo pipefail
cd "$(dirname "$0")/.."
velkorc=$(realpath "${VELKORC:-build/velkorc}")
megabytes=${1:-50}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

python3 - "$work/bench.iff" "$megabytes" <<'PY'
import random, struct, sys
path, megabytes = sys.argv[1], int(sys.argv[2])
rng = random.Random(1)
chunks = []
total = megabytes * 1000 * 1000
while total > 0:
    size = min(total, rng.randrange(1, 4 * 1000 * 1000))
    data = rng.randbytes(size)
    chunks.append(b"DATA" + struct.pack(">I", size) + data + (b"\0" if size % 2 else b""))
    total -= size
body = b"BNCH" + b"".join(chunks)
with open(path, "wb") as f:
    f.write(b"FORM" + struct.pack(">I", len(body)) + body)
PY

now() { date +%s.%N; }
size=$(stat -c %s "$work/bench.iff")
report() { python3 -c "import sys; s=float(sys.argv[3]); print(f'{sys.argv[1]}: {int(sys.argv[2])} bytes in {s:.3f} s = {int(sys.argv[2]) / 1e6 / s:.1f} MB/s')" "$@"; }

t0=$(now)
xxd -p "$work/bench.iff" > "$work/bench.hex"
t1=$(now)
report "xxd -p" "$size" "$(python3 -c "print($t1 - $t0)")"

t0=$(now)
(cd "$work" && "$velkorc" decode --max-decode-size 100000000 bench.iff)
t1=$(now)
report "velkorc decode" "$size" "$(python3 -c "print($t1 - $t0)")"

mv "$work/bench.iff" "$work/original.iff"
(cd "$work" && "$velkorc" asm --fast-scanner bench.iff.pas > /dev/null)
cmp -s "$work/bench.iff" "$work/original.iff" || { echo "the decoded text does not assemble to the input" >&2; exit 1; }
echo "round trip: identical"
