#!/usr/bin/env bash
# readme.sh README CXX INCLUDE_DIR LIBRARY_DIR: the host program of the README compiles without a warning and runs.
set -euo pipefail
readme=$1 cxx=$2 include=$3 libraries=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# The first fenced block with a main.
awk '/^```/ { if (inside && block ~ /int main\(/) { printf "%s", block; exit } inside = !inside; block = ""; next } inside { block = block $0 "\n" }' \
    "$readme" >"$scratch/host.cpp"
[ -s "$scratch/host.cpp" ] || { echo "$readme has no fenced block with int main("; exit 1; }
cd "$scratch"
"$cxx" -std=c++17 -Wall -Wextra -Werror -I"$include" host.cpp -L"$libraries" -lninefold -o host
LD_LIBRARY_PATH=$libraries ./host
