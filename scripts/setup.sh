#!/usr/bin/env bash
# Installs every Debian package Vocabrix needs to build, test, fuzz, package and run.
# Idempotent: packages already present are left alone. Works as root, or with sudo.
set -euo pipefail

PACKAGES=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools libqt6core5compat6-dev qt6-l10n-tools
  libgl-dev libxkbcommon-dev
  libicu-dev
  libhunspell-dev hunspell-en-us hunspell-fr hunspell-de-de hunspell-es
  clang libclang-rt-14-dev
  libbenchmark-dev
  xvfb xauth imagemagick
  file desktop-file-utils appstream
)

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  if command -v sudo >/dev/null 2>&1; then SUDO="sudo"; else
    echo "setup: not root and sudo is missing; install these packages by hand: ${PACKAGES[*]}" >&2
    exit 1
  fi
fi

missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
else
  echo "setup: all packages present"
fi
