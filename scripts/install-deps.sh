#!/usr/bin/env bash
# Installs what building, testing and running Zelkon needs on Debian (12 or later), if missing.
set -euo pipefail

packages=(
    cmake make g++ pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-tools-dev libqt6opengl6-dev libqt6sql6-sqlite libqt6sql6-psql libgl-dev
    libbenchmark-dev postgresql fonts-dejavu-core xvfb xauth
    dpkg-dev file doxygen openbox x11-utils
)
# The fuzz build: clang with libFuzzer and the sanitizer runtimes.
packages+=(clang-14 libclang-rt-14-dev)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Run as root or install sudo to install: ${missing[*]}" >&2; exit 1; }
    sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -q
$sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
