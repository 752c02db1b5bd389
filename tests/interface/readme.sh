#!/usr/bin/env bash
# readme.sh README CC INCLUDE_DIR LIBRARY_DIR: the README's host program without the kit compiles without a warning, and ends well.
set -euo pipefail
readme=$1 cc=$2 include=$3 libraries=$4
pkg-config --exists sdl2 || { echo "skipped: SDL2 not found (package libsdl2-dev; scripts/setup kit installs it)"; exit 77; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# The fenced block that includes ninefold.h.
awk '/^```/ { if (inside && block ~ /<ninefold\/ninefold.h>/) { printf "%s", block; exit } inside = !inside; block = ""; next }
    inside { block = block $0 "\n" }' "$readme" >"$scratch/host.c"
[ -s "$scratch/host.c" ] || { echo "$readme has no fenced block with ninefold.h"; exit 1; }
cd "$scratch"
"$cc" -std=c11 -Wall -Wextra -Werror -I"$include" host.c -L"$libraries" -lninefold $(pkg-config --cflags --libs sdl2) -o host
export LD_LIBRARY_PATH=$libraries SDL_VIDEODRIVER=dummy
if ./host nowhere.bmp 2>said || ! grep -q "no picture" said; then echo "a picture that is not there is not missed"; exit 1; fi
# SDL makes a closed window of the signal.
status=0
timeout --preserve-status 3 ./host "$(dirname "$readme")/gallery/pictures/cat.bmp" || status=$?
[ $status = 0 ] || { echo "the program ends with $status"; exit 1; }
