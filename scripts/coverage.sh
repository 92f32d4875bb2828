#!/usr/bin/env bash
# Builds the tree with gcov instrumentation, runs the tests (all but the soak
# runs) and prints the line and branch coverage of the library and the GUI
# application. A change to the tests should not lower either figure.
#   scripts/coverage.sh [build-dir]   (default build/coverage)
# JOBS sets the build's parallelism (default: the core count).
set -euo pipefail
cd "$(dirname "$0")/.."

dir=${1:-build/coverage}
jobs=${JOBS:-$(nproc)}

cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DORVEL_BUILD_TESTS=ON \
  -DCMAKE_C_FLAGS=--coverage -DCMAKE_CXX_FLAGS=--coverage \
  -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage >/dev/null
cmake --build "$dir" -j "$jobs"
# Counts from an earlier run would add to this one's.
find "$dir" -name '*.gcda' -delete
ctest --test-dir "$dir" -j "$jobs" --output-on-failure --timeout 600 -LE soak
gcovr -r . --object-directory "$dir" --filter 'src/' --filter 'gui/src/' \
  --exclude-directories '.*/CMakeFiles/[0-9.]+/.*' --exclude-unreachable-branches --exclude-throw-branches \
  --print-summary >"$dir/coverage.txt"
tail -n 3 "$dir/coverage.txt"
