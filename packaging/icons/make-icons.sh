#!/bin/bash
# Renders the icons from taksavaihe.svg; the results are kept in the repository. Run it after changing
# the drawing. Needs librsvg2-bin and imagemagick.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
sizes=(16 24 32 48 64 128 256)
pictures=()
for size in "${sizes[@]}"; do
    rsvg-convert -w "$size" -h "$size" taksavaihe.svg -o "taksavaihe-$size.png"
    pictures+=("taksavaihe-$size.png")
done
convert "${pictures[@]}" taksavaihe.ico
