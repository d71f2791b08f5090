#!/usr/bin/env bash
# Runs every fuzz harness of a fuzz build for N seconds, two at a time.
# A crash, leak or sanitizer report fails the run; the harness's input that
# caused it is left in build/fuzz/artifacts. Corpora grow in build/fuzz/corpus,
# seeded from fuzz/corpus/<harness>/ (kept regression inputs).
set -u
dir=$1
seconds=${2:-60}
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
mkdir -p "$dir/artifacts" "$dir/logs"
pids=()
names=()
for fuzzer in "$dir"/bin/fuzz_*; do
    [ -x "$fuzzer" ] || continue
    name=$(basename "$fuzzer")
    corpus="$dir/corpus/$name"
    mkdir -p "$corpus"
    seeds=()
    [ -d "$root/fuzz/corpus/$name" ] && seeds=("$root/fuzz/corpus/$name")
    echo "== fuzz: $name for ${seconds}s"
    "$fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -artifact_prefix="$dir/artifacts/$name-" -print_final_stats=1 \
        "$corpus" "${seeds[@]}" >"$dir/logs/$name.log" 2>&1 &
    pids+=($!)
    names+=("$name")
done
status=0
for i in "${!pids[@]}"; do
    if wait "${pids[$i]}"; then
        echo "== fuzz: ${names[$i]} ok ($(grep -E 'stat::number_of_executed_units' "$dir/logs/${names[$i]}.log" | awk '{print $2}') runs)"
    else
        echo "== fuzz: ${names[$i]} FAILED; last lines of its log:"
        tail -n 40 "$dir/logs/${names[$i]}.log"
        status=1
    fi
done
exit $status
