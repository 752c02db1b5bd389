#!/usr/bin/env bash
# objects.sh OBJECT_LIST SET_OBJECT_LIST (files with an object a line).
# No object has code to run at load, and no set's object defines a symbol that the linker could merge with another set's: it would
# pick one for all, and a copy compiled for a newer machine would crash an older one.
set -euo pipefail

status=0
while read -r object; do
    if readelf -SW "$object" | grep -E '\.(pre)?init_array|\.fini_array|\.ctors|\.dtors'; then
        echo "$object: has a static initialiser"
        status=1
    fi
done <"$1"
while read -r object; do
    if nm -C --defined-only "$object" | grep -E ' [VWuvw] '; then
        echo "$object: defines weak symbols"
        status=1
    fi
done <"$2"
echo "$(wc -l <"$1") objects, $(wc -l <"$2") of them of a set"
exit $status
