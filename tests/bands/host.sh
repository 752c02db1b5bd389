#!/usr/bin/env bash
# host.sh HOST PLAIN BANDS: bands as a host meets them.
set -euo pipefail
host=$1 plain=$2 bands=$3
unset LD_PRELOAD LD_LIBRARY_PATH
fail() { echo "$1"; exit 1; }

# The library's names and soname, and one more name.
names() { nm -D --defined-only "$1" | awk '{ print $NF }' | sort; }
[ "$(comm -13 <(names "$plain") <(names "$bands"))" = ninefoldBandsCalls ] || fail "bands export other names"
[ -z "$(comm -23 <(names "$plain") <(names "$bands"))" ] || fail "bands lack names"
soname() { readelf -d "$1" | grep -o 'soname: .*'; }
[ "$(soname "$plain")" = "$(soname "$bands")" ] || fail "bands have another soname"

# The same program and picture under both, and where a host loads the library itself.
sum=$("$host" plain) || fail "the host under the plain library: $sum"
other=$(LD_LIBRARY_PATH=$(dirname "$bands") "$host" bands) || fail "the host under bands: $other"
[ "$sum" = "$other" ] || fail "another picture: $sum, by bands $other"
if command -v python3 >/dev/null && [ -z "${NINEFOLD_SANITIZED-}" ]; then
    python3 -c "import ctypes; ctypes.CDLL('$bands').ninefoldBandsCalls" || fail "cannot be loaded by a program that runs"
fi
