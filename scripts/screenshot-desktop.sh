#!/usr/bin/env bash
# Takes docs/screenshot-desktop.png: Vocabrix, installed from its package, started by the desktop
# the way a file manager does it (gio open on a .vocabrix document, which goes through the
# installed desktop entry and document type), on a virtual X screen.
# Needs the package installed (scripts/package.sh, then apt-get install ./build/vocabrix_*.deb),
# and xvfb, xdotool, imagemagick and libglib2.0-bin.
set -euo pipefail
cd "$(dirname "$0")/.."
out="${1:-docs/screenshot-desktop.png}"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_DATA_HOME="$work/home/.local/share"
mkdir -p "$HOME"
vocabrix-cli job --from en --to fr --title Notekeeper --add samples/Notekeeper.app \
  --previous samples/Notekeeper-1.0.app --export-to "$work/out" --save "$work/Notekeeper.vocabrix" >/dev/null
echo "screenshot: documents open with $(gio mime application/x-vocabrix-document | head -1)"

xvfb-run -a -s "-screen 0 1200x760x24" bash -s "$work/Notekeeper.vocabrix" "$out" <<'SCREEN'
set -euo pipefail
gio open "$1"
wid=$(timeout 30 xdotool search --sync --onlyvisible --name Notekeeper | head -1)
pid=$(xdotool getwindowpid "$wid")
xdotool windowmove "$wid" 0 0 windowsize "$wid" 1200 760
sleep 2
import -window root "$2"
kill "$pid"
SCREEN
echo "screenshot: $out"
