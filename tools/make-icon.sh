#!/usr/bin/env bash
# Draws the 256 px program icon, resources/desktop/korvane.png, from the SVG
# beside it (needs rsvg-convert from librsvg2-bin). The PNG is committed; run
# this only after changing the SVG.
set -euo pipefail
dir="$(dirname "$0")/../resources/desktop"
rsvg-convert -w 256 -h 256 "$dir/korvane.svg" -o "$dir/korvane.png"
