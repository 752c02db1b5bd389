#!/usr/bin/env bash
# exports.sh LIBRARY INCLUDE_DIR: the library exports exactly the names that its headers declare, and runs nothing when it is loaded.
set -euo pipefail
library=$1 include=$2

# Each declaration runs from NINEFOLD_API to its semicolon; its name stands before the first parenthesis or the semicolon.
declared=$(sed 's/^#.*//' "$include"/ninefold/*.h | gcc -fpreprocessed -E -P -x c - | tr '\n' ' ' |
    grep -o 'NINEFOLD_API [^;]*;' | sed 's/ *[(;].*//; s/.*[ *]//' | sort -u)
exported=$(nm -D --defined-only "$library" | awk '{ print $NF }' | sort -u)

[ "$(wc -l <<<"$declared")" -gt 50 ] || { echo "only $(wc -l <<<"$declared") declarations found: the headers changed their form"; exit 1; }
if ! diff <(echo "$declared") <(echo "$exported"); then
    echo "names marked < are declared but not exported, names marked > the other way round"
    exit 1
fi
grep -q 'SONAME.*\[libninefold\.so\.1\]' <<<"$(readelf -d "$library")" || { echo "soname is not libninefold.so.1"; exit 1; }

# What was linked, the compiler's runtime included, has no code for load and unload but the one entry that the compiler's start-up
# file brings to each of the two lists.
pointer=$(readelf -h "$library" | awk '/Class:/ { print $2 == "ELF64" ? 8 : 4 }')
for list in INIT:__frame_dummy_init_array_entry FINI:__do_global_dtors_aux_fini_array_entry; do
    size=$(readelf -dW "$library" | awk -v "tag=(${list%:*}_ARRAYSZ)" '$2 == tag { print $3 }')
    start=$(readelf -dW "$library" | awk -v "tag=(${list%:*}_ARRAY)" '$2 == tag { print substr($3, 3) }')
    if [ "$size" != "$pointer" ] || ! nm "$library" | grep -q "^0*$start . ${list#*:}$"; then
        echo "the library has code of its own in ${list%:*}_ARRAY ($size bytes, not $pointer)"
        exit 1
    fi
done
echo "$(wc -l <<<"$exported") exports"
