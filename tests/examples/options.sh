#!/usr/bin/env bash
# options.sh PROGRAM: without a display the example writes its picture, the same each time; and what cannot work fails with a message.
set -euo pipefail
program=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
unset DISPLAY WAYLAND_DISPLAY

"$program" --frames 30 --picture first.png
"$program" --frames 30 --picture again.png
"$program" --frames 31 --click 10 --picture later.png
cmp first.png again.png
! cmp -s first.png later.png || { echo "frames and clicks change nothing"; exit 1; }

# fails STATUS WORDS ARGUMENTS...: exits with STATUS and says WORDS.
fails() {
    local expected=$1 words=$2 status=0
    shift 2
    "$program" "$@" >output 2>&1 || status=$?
    [ $status = "$expected" ] && grep -q -- "$words" output && ! grep "ERROR: " output || { echo "$*: status $status instead of $expected, said:"; cat output; exit 1; }
}
fails 0 "usage: " --help
fails 2 "'--nonsense'" --nonsense
fails 2 "'--frames'" --frames none
fails 1 "nowhere" --pictures "$scratch/nowhere" --picture a.png
fails 1 "no/folder" --picture "$scratch/no/folder/a.png"
SDL_VIDEODRIVER=x11 DISPLAY=:987654 fails 1 "$(basename "$program"): "
