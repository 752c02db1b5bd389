#!/usr/bin/env bash
# exports.sh LIBRARY INCLUDE_DIR: the kit exports exactly what its headers declare, all of it nfk...
set -euo pipefail
library=$1 include=$2
declared=$(sed 's/^#.*//' "$include"/ninefold/*.h "$include"/ninefold/kit/*.h | gcc -fpreprocessed -E -P -x c - | tr '\n' ' ' |
    grep -o 'NINEFOLD_KIT_API [^;]*;' | sed 's/ *(.*//; s/.*[ *]//' | sort -u)
exported=$(nm -D --defined-only "$library" | awk '{ print $NF }' | sort -u)
[ "$(wc -l <<<"$declared")" -gt 25 ] || { echo "only $(wc -l <<<"$declared") declarations found: the headers changed their form"; exit 1; }
if ! diff <(echo "$declared") <(echo "$exported"); then
    echo "names marked < are declared but not exported, names marked > the other way round"
    exit 1
fi
if grep -v '^nfk[A-Z]' <<<"$exported"; then echo "names without the prefix"; exit 1; fi
readelf -d "$library" | grep -q 'SONAME.*\[libninefold-kit\.so\.1\]' || { echo "soname is not libninefold-kit.so.1"; exit 1; }
readelf -d "$library" | grep -q 'NEEDED.*\[libninefold\.so\.1\]' || { echo "the kit does not load libninefold.so.1"; exit 1; }
echo "$(wc -l <<<"$exported") exports"
