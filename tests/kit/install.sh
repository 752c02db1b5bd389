#!/usr/bin/env bash
# install.sh CMAKE BUILD_DIR SOURCE_DIR CC CXX: the installed kit serves hosts in C11 and C++17 by find_package and by pkg-config,
# shared and static.
set -euo pipefail
cmake=$1 build=$2 source=$3 cc=$4 cxx=$5
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# Staged and then moved: the installed files must find each other wherever they are.
"$cmake" --install "$build" --prefix "$scratch/staged" >"$scratch/log" || { cat "$scratch/log"; exit 1; }
prefix=$scratch/moved
mv "$scratch/staged" "$prefix"
libraries=$(dirname "$(find "$prefix" -name libninefold-kit.so)")

echo "find_package"
"$cmake" -S "$source/tests/kit/consumer" -B "$scratch/consumer" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$cc" \
    -DCMAKE_CXX_COMPILER="$cxx" >"$scratch/log" && "$cmake" --build "$scratch/consumer" >>"$scratch/log" || { cat "$scratch/log"; exit 1; }
for host in host host_cpp host_static; do "$scratch/consumer/$host"; done
if readelf -d "$scratch/consumer/host_static" | grep libninefold; then echo "host_static loads a shared library of ours"; exit 1; fi
readelf -d "$scratch/consumer/host" | grep -q libninefold-kit || { echo "host does not load the kit"; exit 1; }

echo "pkg-config"
export PKG_CONFIG_PATH=$libraries/pkgconfig
host=$source/tests/kit/host.c strict="-Wall -Wextra -Werror"
"$cc" -std=c11 $strict "$host" -o "$scratch/by_pkg_config" $(pkg-config --cflags --libs ninefold-kit)
LD_LIBRARY_PATH=$libraries "$scratch/by_pkg_config"
"$cxx" -std=c++17 $strict -x c++ "$host" -x none -o "$scratch/by_pkg_config" $(pkg-config --cflags --libs ninefold-kit)
LD_LIBRARY_PATH=$libraries "$scratch/by_pkg_config"

echo "pkg-config --static"
rm "$libraries"/libninefold.so* "$libraries"/libninefold-kit.so*
"$cc" -std=c11 $strict "$host" -o "$scratch/static" $(pkg-config --static --cflags --libs ninefold-kit)
"$scratch/static"
