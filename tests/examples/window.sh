#!/usr/bin/env bash
# window.sh PROGRAM: the example's window shows, pixel by pixel, what the kernels draw without one, and keys and the mouse change it.
set -euo pipefail
program_file=$1 name=$(basename "$1")
. "$(dirname "$0")/display.sh"
cd "$scratch"

# stand: P, and the picture stands; $frames is how many were drawn.
stand() {
    rm -f "$name.png"
    xdotool key p
    until_true 60 grep -q "wrote $name.png" program.log
    frames=$(sed -n "s/.*wrote $name.png, \([0-9]*\) frames/\1/p" program.log)
    sleep 0.3
    photograph seen.png
    same seen.png "$name.png" || { echo "$name: the window shows something else than its screen"; exit 1; }
    "$program_file" --frames "$frames" --picture alone.png >/dev/null
}

# driven WHAT COMMAND...: in a new window the command changes what there is to see.
driven() {
    local what=$1
    shift
    open "$name" "$program_file"
    sleep 0.5
    "$@"
    sleep 1
    stand
    [ -z "${KEEP_PICTURES-}" ] || cp seen.png "$KEEP_PICTURES/$name-${what// /-}.png"
    ! same seen.png alone.png || { echo "$name: $what changes nothing"; exit 1; }
    echo "$what: $(compare -metric AE seen.png alone.png null: 2>&1 || true) pixels differ after $frames frames"
    xdotool key Escape
    wait "$program"
}
hold() { xdotool keydown "$1"; sleep 0.5; xdotool keyup "$1"; }
click() { xdotool mousemove --window "$window" "$1" "$2" click 1; }

open "$name" "$program_file"
sleep 1
stand
same seen.png alone.png || { echo "$name: the window shows something else than --picture after $frames frames"; exit 1; }
echo "untouched: the same picture after $frames frames"
xdotool key p
sleep 1
xdotool key Escape
wait "$program"
rate=$(sed -n 's/.*frames, \([0-9.]*\) a second/\1/p' program.log)
echo "$rate frames a second"
awk "BEGIN { exit !($rate > 0 && $rate < 61) }" || { echo "$name: not 60 frames a second at most"; exit 1; }

twice() { "$@"; sleep 0.3; "$@"; }
case $name in
sprites)
    driven "a click" click 320 400
    driven "a key" hold Left
    ;;
novel) # the first ends the line, the second begins the next one
    driven "a click" twice click 320 400
    driven "the space bar" twice xdotool key space
    ;;
floor)
    driven "a click" click 320 400
    driven "a key" hold Down
    ;;
esac
