#!/usr/bin/env bash
# win32.sh WINE PROGRAM: the Win32 example's window under Wine, on a display of its own, shows what --picture writes; keys and the
# mouse change it. scripts/wine-test runs it.
set -euo pipefail
wine=$1 program_file=$2
. "$(dirname "$0")/../examples/display.sh"
cd "$scratch"
export WINEPREFIX=${WINEPREFIX:-$scratch/prefix} WINEDEBUG=${WINEDEBUG--all}

"$wine" "$program_file" --picture alone.bmp
test -s alone.bmp || { echo "win32: --picture wrote nothing"; exit 1; }
open win32 "$wine" "$program_file"
sleep 3

photograph seen.png
echo "window: $(identify -format '%wx%h pixels, %k' seen.png) colours"
[ -z "${KEEP_PICTURES-}" ] || cp seen.png "$KEEP_PICTURES/win32.png"
same seen.png alone.bmp || { echo "win32: the window shows something else than --picture"; exit 1; }

xdotool mousemove --window "$window" 100 100 click 1
sleep 1
photograph clicked.png
! same seen.png clicked.png || { echo "win32: a click changes nothing"; exit 1; }
xdotool key Right key Right
sleep 1
photograph moved.png
! same clicked.png moved.png || { echo "win32: keys change nothing"; exit 1; }
echo "win32: shown and driven"
