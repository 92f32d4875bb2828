#!/usr/bin/env bash
# Installs what building and testing need, from Debian's packages. Installs
# nothing that is already there; needs root (or sudo) only when it installs.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  libplist-dev libssl-dev openssl libcli11-dev help2man libutf8proc-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  clang libclang-rt-14-dev
  python3 locales gcovr
  qt6-base-dev libgl-dev libxcb1-dev qt6-translations-l10n
  xvfb xauth xdotool fonts-dejavu-core
  # The Xvfb run: xprop and xmessage; dbus-launch, which would autolaunch a
  # session bus if the windows let it.
  x11-utils dbus-x11
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$package")
  fi
done

if ((${#missing[@]})); then
  echo "Installing: ${missing[*]}"
  sudo_cmd=()
  if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get update -qq
  "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

# A single-byte locale lets the tests check how Base64 treats bytes above 0x7F
# that a locale calls alphanumeric.
if ! locale -a 2>/dev/null | grep -qi '^de_DE\.iso88591$'; then
  sudo_cmd=()
  if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
  "${sudo_cmd[@]}" localedef -i de_DE -f ISO-8859-1 de_DE.ISO-8859-1 || true
fi
