#!/usr/bin/env bash
# Installs the build into a temporary prefix, then builds and runs a host
# project that finds the library there with find_package, and again with
# pkg-config; checks that the tool's manual page and completion are there.
set -euo pipefail
build_dir=$1
flags=${2:-}
source_dir=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build_dir" --prefix "$prefix" >/dev/null
cmake -S "$source_dir" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_BUILD_RPATH="$prefix/lib" \
  -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="$flags" >/dev/null
cmake --build "$work/build" >/dev/null
"$work/build/consumer"

pc_file=$(find "$prefix" -name OrvelGUIDialogs.pc)
export PKG_CONFIG_PATH=$(dirname "$pc_file")
read -r -a pc_flags <<<"$(pkg-config --cflags --libs OrvelGUIDialogs)"
cc -std=c99 $flags -c "$source_dir/settings.c" -o "$work/settings.o" "${pc_flags[@]}"
c++ -std=c++20 $flags "$source_dir/consumer.cpp" "$work/settings.o" -o "$work/consumer-pc" "${pc_flags[@]}" \
  -Wl,-rpath,"$(pkg-config --variable=libdir OrvelGUIDialogs)"
"$work/consumer-pc"

for installed in share/man/man1/orvel-dialogs.1 share/bash-completion/completions/orvel-dialogs; do
  [ -s "$prefix/$installed" ] || { echo "not installed: $installed"; exit 1; }
done
grep -q 'ask to confirm a signature' "$prefix/share/man/man1/orvel-dialogs.1" || { echo "man page lacks the commands"; exit 1; }
