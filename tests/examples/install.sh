#!/usr/bin/env bash
# install.sh CMAKE BUILD_DIR CC CXX: the installed examples build by find_package and, by the command in each, by pkg-config,
# and draw.
set -euo pipefail
cmake=$1 build=$2 cc=$3 cxx=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

"$cmake" --install "$build" --prefix "$scratch/prefix" >"$scratch/log" || { cat "$scratch/log"; exit 1; }
prefix=$scratch/prefix
libraries=$(dirname "$(find "$prefix" -name libninefold-kit.so)")
examples=$prefix/share/doc/ninefold/examples

echo "find_package"
"$cmake" -S "$examples" -B "$scratch/examples" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
    >"$scratch/log" && "$cmake" --build "$scratch/examples" >>"$scratch/log" || { cat "$scratch/log"; exit 1; }

echo "pkg-config"
export PKG_CONFIG_PATH=$libraries/pkgconfig
unset LD_LIBRARY_PATH
rpath='-Wl,-rpath,$(pkg-config --variable=libdir ninefold)' # as the README says
cd "$examples"
for file in sprites.c novel.cpp floor.c; do
    name=${file%.*}
    command=$(sed -n "s,^[ /*]*\(c++\|cc\)\( .*$file .*pkg-config.*\),\1\2,p" "$file")
    case $command in
    "cc "*) command="$cc -std=c11 -Wall -Wextra -Werror ${command#cc }" ;;
    "c++ "*) command="$cxx -Wall -Wextra -Werror ${command#c++ }" ;;
    *) echo "$file names no command"; exit 1 ;;
    esac
    eval "$command $rpath"
    "./$name" --frames 20 --picture "$scratch/$name.png"
    "$scratch/examples/$name" --frames 20 --picture "$scratch/$name-cmake.png"
    "$build/examples/$name" --frames 20 --picture "$scratch/$name-build.png"
    cmp "$scratch/$name.png" "$scratch/$name-cmake.png"
    cmp "$scratch/$name.png" "$scratch/$name-build.png"
done
