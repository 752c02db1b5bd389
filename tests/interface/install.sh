#!/usr/bin/env bash
# install.sh CMAKE BUILD_DIR SOURCE_DIR CXX: the installed library serves a host that uses find_package, pkg-config or neither.
set -euo pipefail
cmake=$1 build=$2 source=$3 cxx=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
host=$source/tests/interface/host.c
flags="-x c++ -std=c++17 -Wall -Wextra -Werror $host -x none"

# Staged and then moved: the installed files must find each other wherever they are.
"$cmake" --install "$build" --prefix "$scratch/staged" >"$scratch/log" || { cat "$scratch/log"; exit 1; }
prefix=$scratch/moved
mv "$scratch/staged" "$prefix"
libraries=$(dirname "$(find "$prefix" -name libninefold.so)")

echo "find_package"
"$cmake" -S "$source/tests/interface/consumer" -B "$scratch/consumer" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$cxx" \
    >"$scratch/log" && "$cmake" --build "$scratch/consumer" >>"$scratch/log" || { cat "$scratch/log"; exit 1; }
"$scratch/consumer/host"

export LD_LIBRARY_PATH=$libraries
echo "pkg-config"
export PKG_CONFIG_PATH=$libraries/pkgconfig
"$cxx" $flags -o "$scratch/by_pkg_config" $(pkg-config --cflags --libs ninefold)
"$scratch/by_pkg_config"
[ "$(pkg-config --modversion ninefold)" = "$(sed -n 's/^project(ninefold VERSION \([0-9.]*\).*/\1/p' "$source/CMakeLists.txt")" ]

echo "compiler alone"
"$cxx" $flags -o "$scratch/by_hand" -I"$prefix/include" -L"$libraries" -lninefold
"$scratch/by_hand"
