#!/usr/bin/env bash
# Renders the hicolor PNG icons from the drawn SVGs in resources/icons/hicolor/scalable. The PNGs
# are committed, so building needs no SVG renderer; run this after changing an SVG.
# Needs rsvg-convert (Debian package librsvg2-bin).
set -euo pipefail
cd "$(dirname "$0")/../resources/icons/hicolor"
for svg in scalable/*/*.svg; do
  context=$(basename "$(dirname "$svg")")
  name=$(basename "$svg" .svg)
  for size in 16 22 24 32 48 64 128 256; do
    mkdir -p "${size}x${size}/$context"
    rsvg-convert -w "$size" -h "$size" "$svg" -o "${size}x${size}/$context/$name.png"
  done
done
