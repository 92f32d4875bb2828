#!/usr/bin/env bash
# Builds the benchmarks (Release) and runs them all, then prints the table:
# ours against the baseline measured in the same run, the ratio, the target.
# Figures, not pass/fail tests, and not part of CI.
#
# Everything runs twice. First with malloc's defaults: blocks of many MiB are
# then mapped afresh for every call, and their pages first touched inside the
# timing, which on our machines costs about 11 µs a page. Then with an
# allocator that keeps the memory it is given back, as a host may configure
# it, which shows what the code itself costs.
#
# Arguments go to every benchmark program (e.g. --benchmark_repetitions=3).
set -euo pipefail
cd "$(dirname "$0")/.."

# Not build/bench: that is the bench folder of a developer build in build/.
dir=build/release-bench
programs=(message_box_round_trip large_reply base64 certificate_list log_growth desktop_first_paint)

cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Release -DORVEL_BUILD_BENCH=ON -DORVEL_BUILD_TESTS=OFF >/dev/null
cmake --build "$dir" -j "$(nproc)" --target orvel_benchmarks
mkdir -p "$dir/logs"

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

print_table() {
  local title=$1 rows=$2
  echo
  echo "## $title"
  echo
  echo "| What | Ours | Baseline | Ratio | Target | Met |"
  echo "|---|---|---|---|---|---|"
  awk -F'|' '{ printf "| %s | %s | %s | %s | %s | %s |\n", $2, $3, $4, $5, $6, $7 }' "$rows"
}

extra=("$@")
run_all default "$dir/logs/rows-default.txt"
run_all kept-memory "$dir/logs/rows-kept-memory.txt" \
  GLIBC_TUNABLES=glibc.malloc.mmap_max=0:glibc.malloc.trim_threshold=4294967295

print_table "malloc's defaults" "$dir/logs/rows-default.txt"
print_table "an allocator that keeps freed memory (GLIBC_TUNABLES: mmap_max=0, trim_threshold=4 GiB)" \
  "$dir/logs/rows-kept-memory.txt"
echo
echo "Full output: $dir/logs/"
