#!/usr/bin/env bash
# abi.sh LIBRARY INCLUDE_DIR [--renew]: what the library exports has the types that abi.xml holds: signatures, records down to their
# last field, enumerators. The types come from the headers, by way of a small library with a pointer to each export and record: so no build
# with debug information is needed, and it makes no difference what the library was built by.
# --renew writes abi.xml anew, for a change of the interface that is meant, and never to make this test pass.
set -euo pipefail
library=$1 include=$(realpath "$2") mode=${3-}
baseline=$(dirname "$0")/abi.xml
command -v abidw >/dev/null && command -v abidiff >/dev/null || { echo "left out: no libabigail here"; exit 77; }
[ "$(uname -m)" = x86_64 ] || { echo "left out: abi.xml is that of x86-64"; exit 77; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

exports=$(nm -D --defined-only "$library" | awk '{ print $NF }' | sort -u)
records=$(sed -nE 's/^(typedef )?struct (\w+) \{$/\2/p' "$include"/ninefold/*.h | sort -u)
# One enumerator of each list; the whole list is its type.
enumerators=$(grep -A 1 '^#define NINEFOLD_.*(X)' "$include/ninefold/axes.h" | grep -oE '\bX\(NINEFOLD_\w+' | sed 's/.*(//')
[ "$(wc -w <<<"$exports")" -gt 50 ] && [ "$(wc -w <<<"$records")" -gt 5 ] && [ "$(wc -w <<<"$enumerators")" -gt 10 ] || { echo "the headers changed their form"; exit 1; }
{
    echo '#include <ninefold/ninefold.h>'
    for name in $exports; do echo "extern \"C\" decltype(&$name) const type_of_$name = nullptr;"; done
    for name in $records; do echo "extern \"C\" $name *const record_$name = nullptr;"; done
    for name in $enumerators; do echo "extern \"C\" decltype($name) const list_of_$name = $name;"; done
} >"$scratch/types.cpp"
# A class with virtual functions would otherwise be described only where they are.
(cd "$scratch" && g++ -std=c++17 -w -g -gdwarf-4 -femit-class-debug-always -fPIC -shared -nostdlib -I"$include" types.cpp -o types.so)
# Without what would tie the file to a machine: paths, lines, compilers.
abidw --no-corpus-path --no-comp-dir-path --no-show-locs --type-id-style hash "$scratch/types.so" |
    sed "s/ language='[^']*'//; s/ path='[^']*'//" >"$scratch/abi.xml"
[ "$mode" != --renew ] || cp "$scratch/abi.xml" "$baseline"
if ! abidiff --harmless "$baseline" "$scratch/abi.xml"; then
    echo "the binary interface is not that of abi.xml; if it is meant to change, see CONTRIBUTING.md"
    exit 1
fi
echo "$(wc -w <<<"$exports") exports, $(wc -w <<<"$records") records, $(wc -w <<<"$enumerators") lists"
