#!/usr/bin/env bash
# Takes docs/screenshot-drawer.png (the document window with the Files drawer open, the sample
# bundle added) and docs/screenshot-customize.png (the toolbar's customize dialog) from the
# build tree's application on a virtual X screen. Needs xvfb, xdotool and imagemagick.
set -euo pipefail
cd "$(dirname "$0")/.."
app="${1:-build/bin/vocabrix}"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_DATA_HOME="$work/home/.local/share"
mkdir -p "$HOME"
xvfb-run -a -s "-screen 0 1280x800x24" bash -s "$app" <<'SCREEN'
set -euo pipefail
"$1" samples/Notekeeper.app &
pid=$!
# The previous-version panel comes first: no previous release for this picture.
panel=$(timeout 30 xdotool search --sync --onlyvisible --name "Notekeeper|previous|Select" | head -1)
sleep 1
xdotool windowactivate --sync "$panel" key Escape || true
sleep 2
wid=$(timeout 30 xdotool search --sync --onlyvisible --name "Vocabrix" | head -1)
xdotool windowmove "$wid" 0 0 windowsize "$wid" 1280 800
sleep 2
import -window root docs/screenshot-drawer.png
xdotool windowactivate --sync "$wid" key alt+v
sleep 1
xdotool key Down Return
sleep 2
import -window root docs/screenshot-customize.png
kill "$pid"
SCREEN
echo "screenshots: docs/screenshot-drawer.png docs/screenshot-customize.png"
