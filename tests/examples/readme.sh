#!/usr/bin/env bash
# readme.sh SOURCE_DIR BUILD_DIR CC: the README's programs, by the kit and by hand, show the same picture, and nothing black.
set -euo pipefail
source=$1 build=$2 cc=$3
. "$(dirname "$0")/display.sh"
cd "$scratch"

export LD_LIBRARY_PATH=$build
for name in kit hand; do
    # The fenced block whose window has that title.
    awk -v title="CreateWindow(\"$name\"" '/^```/ { if (inside && index(block, title)) { printf "%s", block; exit }
        inside = !inside; block = ""; next } inside { block = block $0 "\n" }' "$source/README.md" >"$name.c"
    [ -s "$name.c" ] || { echo "README.md has no program with a window '$name'"; exit 1; }
    "$cc" -std=c11 -Wall -Wextra -Werror -I"$source/include" -I"$source/kit/include" "$name.c" -o "$name" -L"$build" -lninefold-kit \
        -lninefold $(pkg-config --cflags --libs sdl2)
    open "$name" "./$name" "$source/gallery/pictures/cat.bmp"
    sleep 1
    photograph "$name.png"
    kill "$program"
    wait "$program" || { echo "$name: status $?"; exit 1; }
    colors=$(identify -format '%k' "$name.png")
    echo "$name: $colors colours"
    [ "$colors" -gt 1000 ] || { echo "$name: that is no photograph of a cat"; exit 1; }
    [ -z "${KEEP_PICTURES-}" ] || cp "$name.png" "$KEEP_PICTURES/readme-$name.png"
done
same kit.png hand.png || { echo "the two pictures differ"; exit 1; }
