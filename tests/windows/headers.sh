#!/usr/bin/env bash
# headers.sh SOURCE: the headers in C, as clang understands them when it stands in for Microsoft's compiler: C11 and C++17, 64 and 32
# bits. What Microsoft's compiler does not have, attributes among it, is an error. It has never been run itself.
set -euo pipefail
source=$1 here=$(dirname "$(realpath "$0")")
command -v clang >/dev/null || { echo "skipped: no clang here"; exit 77; }
count=0
for header in "$source"/include/ninefold/*.h "$source"/kit/include/ninefold/*.h "$source"/kit/include/ninefold/kit/*.h \
    "$source"/debug/include/ninefold/*.h "$source"/bands/include/ninefold/*.h; do
    for target in x86_64-pc-windows-msvc i686-pc-windows-msvc; do
        for language in c:c11 c++:c++17; do
            clang -target $target -x "${language%:*}" -std="${language#*:}" -fsyntax-only -ffreestanding -nostdlibinc -pedantic -Wall -Wextra \
                -Wshadow -Werror -Wno-empty-translation-unit -D'__attribute__(x)=error_gnu_attribute' -isystem "$here/stubs" \
                -I "$source/include" -I "$source/kit/include" -I "$source/debug/include" -I "$source/bands/include" -include "$header" - <<<""
            count=$((count + 1))
        done
    done
done
[ $count -ge 60 ] || { echo "only $count headers and languages"; exit 1; }
echo "$count: $((count / 4)) headers, 2 languages, 2 machines"
