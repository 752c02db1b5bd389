#!/usr/bin/env bash
# threads.sh PROGRAM BANDS: on several threads the example draws the same picture.
set -euo pipefail
program=$1 bands=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
unset DISPLAY WAYLAND_DISPLAY LD_PRELOAD LD_LIBRARY_PATH

"$program" --frames 40 --click 10 --picture plain.png
for threads in 1 2 5; do
    LD_LIBRARY_PATH=$(dirname "$bands") "$program" --frames 40 --click 10 --picture bands.png --threads $threads
    cmp plain.png bands.png
done
status=0
"$program" --threads 2 --picture none.png 2>output || status=$?
[ $status = 1 ] && grep -q "wants the library of bands" output || { echo "without the library: status $status"; cat output; exit 1; }
