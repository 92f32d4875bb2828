#!/usr/bin/env bash
# Builds the benchmarks (Release) and runs them all, then prints the table:
# ours against the baseline measured in the same run, the ratio, the target.
# Figures, not pass/fail tests, and not part of CI.
#
# Everything runs twice. First with malloc's defaults, which is what the
# targets are for: blocks of many MiB are then mapped afresh for every call,
# and their pages first touched inside the timing (about 11 µs for each 4 KiB
# page on our machines; the library takes large room in 2 MiB pages). Then
# with an allocator that keeps the memory it is given back, as a host may
# configure it, for comparison only.
#
# Arguments go to every benchmark program (e.g. --benchmark_repetitions=3).
set -euo pipefail
cd "$(dirname "$0")/.."

# Not build/bench: that is the bench folder of a developer build in build/.
dir=build/release-bench
programs=(message_box_round_trip gui_round_trip large_reply base64 certificate_list log_growth desktop_first_paint
  document_memory)

cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Release -DORVEL_BUILD_BENCH=ON -DORVEL_BUILD_TESTS=OFF >/dev/null
cmake --build "$dir" -j "$(nproc)" --target orvel_benchmarks
mkdir -p "$dir/logs"
# Other work on the machine shows in every figure.
load_before=$(cut -d' ' -f1-3 /proc/loadavg)

# run_all <label> <file> [VAR=value...]: runs every program, keeps its full
# output in the logs folder and its table rows in <file>.
run_all() {
  local label=$1 rows=$2
  shift 2
  : >"$rows"
  for program in "${programs[@]}"; do
    echo "-- $program ($label)" >&2
    env "$@" "$dir/bench/bench_$program" "${extra[@]}" >"$dir/logs/$program-$label.txt" 2>&1
    grep '^ROW|' "$dir/logs/$program-$label.txt" >>"$rows"
  done
}

# One table: each row with malloc's defaults, then the ratio and verdict of
# the same row with memory kept.
print_table() {
  local defaults=$1 kept=$2
  echo
  echo "| What | Ours | Baseline | Ratio | Target | Met | Ratio, memory kept | Met, memory kept |"
  echo "|---|---|---|---|---|---|---|---|"
  awk -F'|' 'NR == FNR { ratio[FNR] = $5; met[FNR] = $7; next }
    { printf "| %s | %s | %s | %s | %s | %s | %s | %s |\n", $2, $3, $4, $5, $6, $7, ratio[FNR], met[FNR] }' \
    "$kept" "$defaults"
}

extra=("$@")
run_all default "$dir/logs/rows-default.txt"
run_all kept-memory "$dir/logs/rows-kept-memory.txt" \
  GLIBC_TUNABLES=glibc.malloc.mmap_max=0:glibc.malloc.trim_threshold=4294967295

echo
echo "Load average before the run: $load_before; after: $(cut -d' ' -f1-3 /proc/loadavg)"
print_table "$dir/logs/rows-default.txt" "$dir/logs/rows-kept-memory.txt"
echo
echo "Memory kept: GLIBC_TUNABLES=glibc.malloc.mmap_max=0:glibc.malloc.trim_threshold=4294967295."
echo "Full output: $dir/logs/"
