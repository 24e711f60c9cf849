#!/usr/bin/env bash
# Draws the default audience picture, resources/secondscreen.jpg (needs ImageMagick).
# The picture is committed; run this only to change it.
set -euo pipefail
out="$(dirname "$0")/../resources/secondscreen.jpg"
convert -size 1280x720 gradient:'#1a0b3d'-'#5b1a6e' \
  -fill '#ffffff20' -draw 'circle 1040,180 1040,420' -draw 'circle 200,620 200,760' \
  -font DejaVu-Sans-Bold -pointsize 120 -fill '#ffd54a' -gravity center -annotate +0-60 'Korvane' \
  -font DejaVu-Sans -pointsize 44 -fill '#ffffff' -gravity center -annotate +0+70 'Karaoke tonight' \
  -quality 88 "$out"
