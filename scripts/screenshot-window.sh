#!/usr/bin/env bash
# Takes docs/screenshot-drawer.png (the document window with the Files drawer open, on the sample
# bundle translated with its previous release), docs/screenshot-todo.png (only the entries to do,
# counted per file, after two Find Next) and docs/screenshot-customize.png (the toolbar's
# customize dialog over it), from the build tree, on a virtual X screen without a window manager.
# Needs xvfb, xdotool and imagemagick.
set -euo pipefail
cd "$(dirname "$0")/.."
bin="${1:-build/bin}"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_DATA_HOME="$work/home/.local/share"
mkdir -p "$HOME"
"$bin/vocabrix-cli" job --from en --to fr --title Notekeeper --add samples/Notekeeper.app \
  --previous samples/Notekeeper-1.0.app --save "$work/Notekeeper.vocabrix" >/dev/null
xvfb-run -a -s "-screen 0 1280x800x24" bash -s "$bin/vocabrix" "$work/Notekeeper.vocabrix" <<'SCREEN'
set -euo pipefail
"$1" "$2" &
pid=$!
wid=$(timeout 30 xdotool search --sync --onlyvisible --name "Notekeeper" | head -1)
xdotool windowmove "$wid" 0 0 windowsize "$wid" 1280 800
sleep 2
# Without a window manager the keyboard follows the pointer.
xdotool mousemove 640 400 click 1
xdotool mousemove 80 131 click 1
sleep 1
import -window root docs/screenshot-drawer.png
# The work left across files, counted per file, and Find Next walking it.
xdotool key ctrl+shift+t
sleep 1
xdotool key ctrl+g ctrl+g
sleep 1
import -window root docs/screenshot-todo.png
xdotool key ctrl+shift+t
sleep 1
xdotool key alt+v
sleep 1
xdotool key Down Return
sleep 2
import -window root docs/screenshot-customize.png
kill "$pid"
SCREEN
echo "screenshots: docs/screenshot-drawer.png docs/screenshot-todo.png docs/screenshot-customize.png"
