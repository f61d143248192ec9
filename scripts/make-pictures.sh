#!/usr/bin/env bash
# Draws the README's pictures of the controls, lists and menus open as a user sees them, in
# English and in Russian: docs/images/<control>-<en|ru>.png. Runs on Qt's offscreen platform, so
# no display is needed; today and the language are pinned, so only a change of the controls
# changes a picture.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build}
jobs=${2:-2}
[[ $build = /* ]] || build=$here/$build

cmake --build "$build" -j"$jobs" --target zelkon-pictures
mkdir -p "$here/docs/images"
for language in en ru; do
    QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES='qt.qpa.*=false;default.warning=false' LC_ALL=C.UTF-8 \
        "$build/docs/pictures/zelkon-pictures" "$here/docs/images" "$language"
done
