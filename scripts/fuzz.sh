#!/usr/bin/env bash
# Coverage-guided fuzzing with libFuzzer (Debian's clang), AddressSanitizer and UndefinedBehaviorSanitizer.
# Builds the fuzz targets of tests/fuzz into build-san/, then runs each for SECONDS (default 60) over a
# working corpus in out/fuzz/corpus/<target> that starts from the seeds in tests/fuzz/corpus/<target> and
# keeps growing from run to run. A crash, leak, hang or sanitizer report is kept in out/fuzz/findings/ and
# fails the script. Each run's executions, coverage and corpus size are printed and appended to
# out/fuzz/runs.tsv, so the total time each target has been fuzzed can be read off there.
# Usage: scripts/fuzz.sh [SECONDS [TARGET...]]   (all targets when none is named)
# JOBS sets how many targets run at once (default: the number of cores).
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true

if ! command -v clang++ >/dev/null; then
    echo "clang++ is missing: run scripts/setup.sh first" >&2
    exit 2
fi

if [ $# -gt 0 ]; then
    targets=("$@")
else
    targets=()
    for src in tests/fuzz/fuzz_*.cpp; do targets+=("$(basename "$src" .cpp)"); done
fi

# shellcheck source=scripts/sanitized_env.sh
. scripts/sanitized_env.sh
cmake --build build-san -j"$(nproc)" --target "${targets[@]}"

out=$PWD/out/fuzz
mkdir -p "$out/findings" "$out/logs"
[ -f "$out/runs.tsv" ] || printf 'date\ttarget\tseconds\texecutions\tcoverage\tfeatures\tcorpus\tresult\n' >"$out/runs.tsv"

run_target() {
    local t=$1 corpus=$out/corpus/$1 log=$out/logs/$1.log rc=0
    mkdir -p "$corpus" "$out/findings/$t"
    cp -n tests/fuzz/corpus/"$t"/* "$corpus"/ 2>/dev/null || true
    "$PWD/build-san/tests/fuzz/$t" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -max_len=65536 -print_final_stats=1 -artifact_prefix="$out/findings/$t/" "$corpus" >"$log" 2>&1 || rc=$?
    local execs cov ft files result=ok
    execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
    cov=$(grep -oE 'cov: [0-9]+' "$log" | tail -1 | cut -d' ' -f2)
    ft=$(grep -oE 'ft: [0-9]+' "$log" | tail -1 | cut -d' ' -f2)
    files=$(find "$corpus" -type f | wc -l)
    [ "$rc" -eq 0 ] || result="FINDING (see $log)"
    printf '%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\n' "$(date -u +%FT%TZ)" "$t" "$seconds" "${execs:-?}" "${cov:-?}" \
        "${ft:-?}" "$files" "$result" >>"$out/runs.tsv"
    printf '%-22s %6ss  %12s execs  cov %6s  ft %7s  corpus %6s  %s\n' "$t" "$seconds" "${execs:-?}" \
        "${cov:-?}" "${ft:-?}" "$files" "$result"
    [ "$rc" -eq 0 ]
}

jobs=${JOBS:-$(nproc)}
failed=0
pids=()
for t in "${targets[@]}"; do
    run_target "$t" &
    pids+=($!)
    if [ "${#pids[@]}" -ge "$jobs" ]; then
        wait "${pids[0]}" || failed=1
        pids=("${pids[@]:1}")
    fi
done
for p in "${pids[@]}"; do wait "$p" || failed=1; done

echo
echo "Total time fuzzed per target (out/fuzz/runs.tsv):"
awk -F'\t' 'NR > 1 { s[$2] += $3; e[$2] += $4 } END { for (t in s) printf "  %-22s %7d s  %14d execs\n", t, s[t], e[t] }' \
    "$out/runs.tsv" | sort
exit "$failed"
