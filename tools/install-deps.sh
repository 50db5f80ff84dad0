#!/usr/bin/env bash
# Installs what building and testing Marlowan needs on Debian 12, only what is missing.
set -euo pipefail
pkgs=(g++ make cmake pkg-config qt6-base-dev libqt6opengl6-dev libgl-dev libgdal-dev gdal-bin libgeos-dev
      libgtest-dev googletest libtomlplusplus-dev poppler-utils xdg-utils fonts-dejavu-core fonts-dejavu-extra)
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
