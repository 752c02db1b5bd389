#!/usr/bin/env bash
# cross.sh ARCHIVE ARCHITECTURE OUT: builds the package of the library for another architecture from the source archive, by Debian's
# cross compiler in a bare system, where it does not meet g++-multilib, and runs the golden sums with it under qemu
# (cross/package.sh). The package comes to lie in the folder OUT.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
archive=$(realpath "$1") architecture=$2 out=$3
. "$here/bare"
mkdir -p "$scratch/files/tree" "$out"
tar -xf "$archive" -C "$scratch/files/tree" --strip-components=1
cp -a "$scratch/files/tree/packaging/debian" "$scratch/files/tree/debian"
cp "$here/cross/package.sh" "$scratch/files/"
ccache=$(dirname "$archives")/ccache-$architecture

status=0
in_bare package.sh "$scratch/files" ARCHITECTURE="$architecture" || status=$?
cp "$scratch/log" "$out/build.log"
if [ $status != 0 ]; then
    tail -n 40 "$scratch/log"
    echo "cross: FAILED with status $status; the whole log is $out/build.log"
    exit 1
fi
grep '^== ' "$scratch/log" | sed 's/^== /   /'
cp "$root"/ninefold/*.{deb,changes,buildinfo} "$out/"
leave
