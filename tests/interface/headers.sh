#!/usr/bin/env bash
# headers.sh CC CXX SOURCE_DIR [FLAG...]: each public header alone, and the layout of the records, as C11 and as C++17,
# once for each FLAG that selects a target ("" for the compiler's own).
set -euo pipefail
cc=$1 cxx=$2 root=$3
shift 3

strict="-Wall -Wextra -Wshadow -pedantic -Werror -fsyntax-only -I$root/include"
status=0
for target; do
    for file in "$root"/include/ninefold/*.h "$root"/tests/interface/layout.c; do
        name=$(basename "$file")
        unit="#include <ninefold/$name>"
        [ "$name" = layout.c ] && unit="#include \"$file\""
        $cc $target -x c -std=c11 -Wstrict-prototypes $strict - <<<"$unit" || { echo "$name: fails as C11 ${target}"; status=1; }
        $cxx $target -x c++ -std=c++17 $strict - <<<"$unit" || { echo "$name: fails as C++17 ${target}"; status=1; }
    done
done
exit $status
