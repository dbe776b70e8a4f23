#!/bin/bash
# Draws the icons anew from taksavaihe.svg; their results are kept with the sources. Run it after a
# change of the drawing. Needs librsvg2-bin and imagemagick.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
sizes=(16 24 32 48 64 128 256)
pictures=()
for size in "${sizes[@]}"; do
    rsvg-convert -w "$size" -h "$size" taksavaihe.svg -o "taksavaihe-$size.png"
    pictures+=("taksavaihe-$size.png")
done
convert "${pictures[@]}" taksavaihe.ico
