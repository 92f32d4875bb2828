#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test twice: a normal
# build with warnings as errors, and one under AddressSanitizer and
# UndefinedBehaviorSanitizer.
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
