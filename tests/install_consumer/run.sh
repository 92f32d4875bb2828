#!/usr/bin/env bash
# Installs the build into a temporary prefix, then builds and runs a host
# project that finds the library there with find_package, and again with
# pkg-config; builds a plain C host from pkg-config's flags with libplist's
# headers out of reach; runs the installed tool with a decoy bundle where a
# build tree keeps it; checks that the tool's manual page and completion are
# there.
set -euo pipefail
build_dir=$1
flags=${2:-}
source_dir=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build_dir" --prefix "$prefix" >/dev/null
# No run path given: CMake adds the imported library's folder itself.
cmake -S "$source_dir" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="$flags" >/dev/null
cmake --build "$work/build" >/dev/null
"$work/build/consumer"

pc_file=$(find "$prefix" -name OrvelGUIDialogs.pc)
export PKG_CONFIG_PATH=$(dirname "$pc_file")
libdir=$(pkg-config --variable=libdir OrvelGUIDialogs)
gui_app=$(pkg-config --variable=guiapp OrvelGUIDialogs)
read -r -a pc_flags <<<"$(pkg-config --cflags --libs OrvelGUIDialogs)"
cc -std=c99 $flags -c "$source_dir/settings.c" -o "$work/settings.o" "${pc_flags[@]}"
c++ -std=c++20 $flags -DGUI_APP="\"$gui_app\"" "$source_dir/consumer.cpp" "$work/settings.o" -o "$work/consumer-pc" \
  "${pc_flags[@]}" -Wl,-rpath,"$libdir"
"$work/consumer-pc"

# libplist is the library's own affair: not linked into hosts, and its headers
# never needed by a C host (a plist/plist.h that stops the build comes first).
case " ${pc_flags[*]} " in *plist*) echo "FAILED: pkg-config hands hosts libplist: ${pc_flags[*]}"; exit 1 ;; esac
pkg-config --static --libs OrvelGUIDialogs | grep -q -- -lplist-2.0 || { echo "FAILED: no Requires.private"; exit 1; }
mkdir -p "$work/no-plist/plist"
echo '#error "libplist header included"' >"$work/no-plist/plist/plist.h"
read -r -a pc_cflags <<<"$(pkg-config --cflags OrvelGUIDialogs)"
read -r -a pc_libs <<<"$(pkg-config --libs OrvelGUIDialogs)"
cc -std=c99 $flags -I"$work/no-plist" "${pc_cflags[@]}" "$source_dir/host.c" -o "$work/c-host" "${pc_libs[@]}" \
  -Wl,-rpath,"$libdir"
# No terminal and no display: the GUI application answers 6 at once.
run_alone() { env -u DISPLAY -u WAYLAND_DISPLAY ORVEL_GUI_FRONTEND=terminal setsid -w "$@" </dev/null; }
run_alone "$work/c-host" "$gui_app"

# The installed tool takes its installed bundle and never one at the build
# tree's place beside it, which here would leave a mark.
decoy=$prefix/gui/OrvelGUI.app/Contents
mkdir -p "$decoy/MacOS"
cp "$gui_app/Contents/Info.plist" "$decoy/"
printf '#!/bin/sh\ntouch "%s"\necho "MessageBox -log "\n' "$work/decoy-ran" >"$decoy/MacOS/OrvelGUI"
chmod +x "$decoy/MacOS/OrvelGUI"
status=0
run_alone "$prefix/bin/orvel-dialogs" message --message m 2>/dev/null || status=$?
[ "$status" -eq 6 ] || { echo "FAILED: the installed tool gave $status, not 6"; exit 1; }
[ ! -e "$work/decoy-ran" ] || { echo "FAILED: the installed tool ran <prefix>/gui/OrvelGUI.app"; exit 1; }

for installed in share/man/man1/orvel-dialogs.1 share/bash-completion/completions/orvel-dialogs; do
  [ -s "$prefix/$installed" ] || { echo "not installed: $installed"; exit 1; }
done
grep -q 'ask to confirm a signature' "$prefix/share/man/man1/orvel-dialogs.1" || { echo "man page lacks the commands"; exit 1; }
echo "install consumer: all passed"
