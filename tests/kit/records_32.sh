#!/usr/bin/env bash
# records_32.sh CXX SOURCE_DIR: the records as data, for 32-bit programs.
set -euo pipefail
cxx=$1 root=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
echo 'int main() {}' | $cxx -m32 -x c++ - -o "$scratch/any" 2>/dev/null && "$scratch/any" || { echo "left out: no 32-bit programs here"; exit 77; }
$cxx -m32 -std=c++20 -Wall -Wextra -Werror -I"$root/include" -I"$root/kit/include" -I"$root/kit" "$root/tests/kit/records.cpp" "$root/kit/fields.cpp" -o "$scratch/records"
"$scratch/records"
