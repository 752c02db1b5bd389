#!/usr/bin/env bash
# capture.sh PROGRAM LAUNCHER REPLAY: what the example draws in its window is captured, and drawn again it is what the window showed.
set -euo pipefail
program_file=$1 launcher=$2 replay=$3 name=$(basename "$1")
. "$(dirname "$0")/display.sh"
unset NINEFOLD_DEBUG LD_PRELOAD
cd "$scratch"

# The program has written its picture so many times.
stands() { [ "$(grep -c "wrote $name.png" program.log)" = "$1" ]; }

open "$name" "$launcher" --summary off --capture game.nfc "$program_file"
sleep 0.5
stood=() turn=0
# Until something has moved: in the first frames, or on a busy machine, that takes a while.
until [ $turn -ge 3 ] && ! same seen-1.png seen-$turn.png; do
    [ $turn -lt 30 ] || { echo "$name: all frames are the same: nothing was compared"; exit 1; }
    turn=$((turn + 1))
    xdotool key p
    until_true 60 stands $turn
    sleep 0.3
    stood+=("$(sed -n "s/.*wrote $name.png, \([0-9]*\) frames/\1/p" program.log | tail -n 1)")
    photograph "seen-$turn.png"
    xdotool key p mousemove --window "$window" 320 240 click 1
    sleep 1
done
xdotool key Escape
wait "$program"

"$replay" verify game.nfc
for turn in 1 2 $turn; do
    frame=${stood[turn - 1]}
    "$replay" frames game.nfc --frames "$frame" --png frames >/dev/null
    picture=frames/frame-$(printf %04d "$frame").png
    [ -z "${KEEP_PICTURES-}" ] || cp "$picture" "$KEEP_PICTURES/$name-captured-$turn.png"
    same "seen-$turn.png" "$picture" ||
        { echo "$name: frame $frame of the capture is not what the window showed: $(compare -metric AE "seen-$turn.png" "$picture" null: 2>&1) pixels differ"; exit 1; }
    echo "frame $frame: the same picture"
done
