#!/usr/bin/env bash
# exports.sh LIBRARY INCLUDE_DIR: the library exports exactly the names that its headers declare.
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
echo "$(wc -l <<<"$exported") exports"
