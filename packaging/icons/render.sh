#!/bin/sh
# Renders the hicolor PNG sizes from orlet.svg (librsvg2-bin); run after changing the SVG and
# commit the PNGs.
set -eu
cd "$(dirname "$0")"
for size in 16 24 32 48 64 128 256; do
  rsvg-convert -w "$size" -h "$size" orlet.svg -o "orlet-$size.png"
done
