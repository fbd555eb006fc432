#!/usr/bin/env bash
# Takes docs/screenshot-progress.png: the progress panel while a large generated bundle is added
# (400 string tables of 1,500 pairs each), from the build tree, on a virtual X screen.
set -euo pipefail
cd "$(dirname "$0")/.."
bin="${1:-build/bin}"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_DATA_HOME="$work/home/.local/share"
mkdir -p "$HOME" "$work/Big.app/Contents/Resources/en.lproj" "$work/Big-old.app/Contents/Resources/fr.lproj"
python3 - "$work/Big.app/Contents/Resources/en.lproj" <<'PY'
import sys
for f in range(400):
    with open(f"{sys.argv[1]}/Table{f:03}.strings", "w") as out:
        for i in range(1500):
            out.write(f'/* Item {i} */\n"key.{i}" = "Text number {i} of table {f}";\n\n')
PY
xvfb-run -a -s "-screen 0 1280x800x24" bash -s "$bin/vocabrix" "$work" <<'SCREEN'
set -euo pipefail
"$1" --add "$2/Big.app" --previous "$2/Big-old.app" &
pid=$!
wid=$(timeout 30 xdotool search --sync --onlyvisible --name "Vocabrix" | head -1)
xdotool windowmove "$wid" 0 0 windowsize "$wid" 1280 800 || true
timeout 60 xdotool search --sync --onlyvisible --name "Working" >/dev/null
sleep 1
import -window root docs/screenshot-progress.png
kill "$pid"
SCREEN
echo "screenshot: docs/screenshot-progress.png"
