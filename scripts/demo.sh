#!/usr/bin/env bash
# The main job: installs what is missing, builds the library, the reference
# GUI application and the host tool (ready for cmake --install), then asks a
# yes/no question in this terminal. Extra arguments replace the question:
#   scripts/demo.sh --lang cs message --message Hotovo
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake -S . -B build/demo -G Ninja -DCMAKE_BUILD_TYPE=Release -DORVEL_BUILD_TESTS=OFF >/dev/null
# Everything, so that `cmake --install build/demo --prefix P` finds what it
# installs (the library, the bundle and its plug-ins, the tool, its manual).
cmake --build build/demo -j "$(nproc)"

if [ $# -eq 0 ]; then
  set -- --lang en yesno --message "Sign the document contract.pdf?" --info "Certificate: CN=Jan Novák"
fi
status=0
build/demo/tools/orvel-dialogs --log "$@" || status=$?
echo "orvel-dialogs exited with $status"
exit "$status"
