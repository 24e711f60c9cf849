#!/usr/bin/env bash
# Installs the Debian packages Korvane needs to build, run and test, when they are missing.
set -euo pipefail
packages=(cmake ninja-build g++ pkg-config make qt6-base-dev qt6-qpa-plugins libqt6sql6-sqlite libsqlite3-dev
          libzip-dev libcsv-dev libxcb1-dev zip mpv xvfb xauth x11-utils fonts-dejavu-core clang-format desktop-file-utils)
missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing missing packages: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
