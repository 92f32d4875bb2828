#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test twice: a normal
# build with warnings as errors, and one under AddressSanitizer and
# UndefinedBehaviorSanitizer. Then the soak tests once, on the normal build,
# and each fuzzer for a short while (clang, libFuzzer).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh

jobs=$(nproc)
run_suite() {
  local dir=$1; shift
  cmake -S . -B "$dir" -G Ninja -DORVEL_BUILD_TESTS=ON -DORVEL_WERROR=ON "$@" >/dev/null
  cmake --build "$dir" -j "$jobs"
  ctest --test-dir "$dir" -j "$jobs" --output-on-failure --timeout 600 -LE soak
}

echo "== normal build =="
run_suite build/ci-release -DCMAKE_BUILD_TYPE=RelWithDebInfo
echo "== AddressSanitizer and UndefinedBehaviorSanitizer =="
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  run_suite build/ci-sanitize -DCMAKE_BUILD_TYPE=Debug -DORVEL_SANITIZE=ON

echo "== soak (normal build) =="
ctest --test-dir build/ci-release --output-on-failure --timeout 3600 -L soak

echo "== fuzzers =="
# Only the fuzzers: the rest of the tree is built and tested above.
fuzz_dir=build/ci-fuzz
CC=clang CXX=clang++ cmake -S . -B "$fuzz_dir" -G Ninja -DORVEL_FUZZ=ON -DORVEL_WERROR=ON \
  -DORVEL_BUILD_TESTS=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$fuzz_dir" -j "$jobs" --target orvel_fuzzers
# Every corpus input once, then each target for a short while on a scratch
# copy of its corpus. An input that fails lands in $fuzz_dir/artifacts: keep it
# in fuzz/corpus/<target>/ once the fault is fixed.
ctest --test-dir "$fuzz_dir/fuzz" --output-on-failure --timeout 600
mkdir -p "$fuzz_dir/artifacts"
fuzz_briefly() {
  local target=$1 scratch status=0
  scratch=$(mktemp -d)
  "$fuzz_dir/fuzz/fuzz_$target" -max_total_time=25 -print_final_stats=1 \
    -artifact_prefix="$fuzz_dir/artifacts/$target-" "$scratch" "fuzz/corpus/$target" \
    >"$fuzz_dir/fuzz-$target.log" 2>&1 || status=$?
  rm -rf "$scratch"
  if ((status != 0)); then
    echo "fuzz_$target found a fault:" >&2
    tail -n 40 "$fuzz_dir/fuzz-$target.log" >&2
    return 1
  fi
  echo "fuzz_$target: $(grep -m1 '^stat::number_of_executed_units' "$fuzz_dir/fuzz-$target.log" | awk '{print $2}') runs"
}
failed=0
running=0
for source in fuzz/*_fuzzer.cpp; do
  target=$(basename "$source" _fuzzer.cpp)
  fuzz_briefly "$target" &
  running=$((running + 1))
  if ((running >= jobs)); then
    wait -n || failed=1
    running=$((running - 1))
  fi
done
while ((running > 0)); do
  wait -n || failed=1
  running=$((running - 1))
done
exit "$failed"
