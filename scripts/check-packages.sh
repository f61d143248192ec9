#!/usr/bin/env bash
# Builds the Debian packages (make package), installs them into this machine, builds the package
# consumer (tests/package/consumer) against the installed files with CMake and with pkg-config,
# runs both, and removes the packages again so that later builds see only their own tree.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build}
jobs=${2:-2}
[[ $build = /* ]] || build=$here/$build
sudo=""
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "check-packages: run as root or install sudo" >&2; exit 1; }
    sudo="sudo"
fi

make -C "$here" package BUILD="$build" JOBS="$jobs"
debs=("$build"/packages/*.deb)
names=()
for deb in "${debs[@]}"; do
    names+=("$(dpkg-deb -f "$deb" Package)")
    echo "$(basename "$deb"): Depends: $(dpkg-deb -f "$deb" Depends)"
done
for want in libzelkon2 libzelkon-dev; do
    [[ " ${names[*]} " = *" $want "* ]] || { echo "check-packages: no $want package" >&2; exit 1; }
done
# The library's dependencies come from its ELF file, so a package without Qt in them was built
# without dpkg-shlibdeps.
dpkg-deb -f "$build"/packages/libzelkon2_*.deb Depends | grep -q libqt6widgets6 \
    || { echo "check-packages: libzelkon2 does not depend on Qt" >&2; exit 1; }

work=$(mktemp -d)
remove() {
    $sudo dpkg --purge "${names[@]}" >/dev/null || true
    rm -rf "$work"
}
trap remove EXIT
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get install -y -qq --no-install-recommends "${debs[@]}" >/dev/null

if [[ " ${names[*]} " = *" zelkon-designer-plugin "* ]]; then
    dpkg -L zelkon-designer-plugin | grep -q "^$(qtpaths6 --plugin-dir)/designer/" \
        || { echo "check-packages: the Designer plugin is not where Qt looks" >&2; exit 1; }
fi

consumer=$here/tests/package/consumer
export QT_QPA_PLATFORM=offscreen
echo "== consumer with CMake"
cmake -S "$consumer" -B "$work/cmake" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$work/cmake" -j"$jobs" >/dev/null
"$work/cmake/consumer" | tee "$work/cmake.out"
echo "== consumer with pkg-config"
# Qt's headers want position-independent code from every program that includes them.
g++ -std=c++20 -fPIC "$consumer/main.cpp" -o "$work/consumer-pc" \
    $(pkg-config --cflags --libs zelkon-test)
"$work/consumer-pc" | tee "$work/pc.out"
grep -q 'consumer: NumEdit 1,234.50' "$work/cmake.out"
grep -q 'consumer: NumEdit 1,234.50' "$work/pc.out"
echo "check-packages: ${names[*]} install and build"
