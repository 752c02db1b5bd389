#!/usr/bin/env bash
# install.sh CMAKE BUILD_DIR SOURCE_DIR CXX: the installed library, shared and static, serves a host that uses find_package,
# pkg-config or neither.
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
"$scratch/consumer/host_static"
if readelf -d "$scratch/consumer/host_static" | grep libninefold; then echo "host_static loads the shared library"; exit 1; fi

export LD_LIBRARY_PATH=$libraries
echo "pkg-config"
export PKG_CONFIG_PATH=$libraries/pkgconfig
"$cxx" $flags -o "$scratch/by_pkg_config" $(pkg-config --cflags --libs ninefold)
"$scratch/by_pkg_config"
version=$(sed -n 's/^#define NINEFOLD_VERSION_\(MAJOR\|MINOR\|PATCH\) //p' "$source/include/ninefold/axes.h" | paste -sd .)
[ "$(pkg-config --modversion ninefold)" = "$version" ] || { echo "pkg-config does not say version $version"; exit 1; }

echo "compiler alone"
"$cxx" $flags -o "$scratch/by_hand" -I"$prefix/include" -L"$libraries" -lninefold
"$scratch/by_hand"

# Where both libraries lie side by side the linker takes the shared one, so that goes.
echo "pkg-config --static"
unset LD_LIBRARY_PATH
rm "$libraries"/libninefold.so*
"$cxx" $flags -o "$scratch/static" $(pkg-config --static --cflags --libs ninefold)
"$scratch/static"
