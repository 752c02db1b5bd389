#!/usr/bin/env bash
# objects.sh OBJECT_LIST SET_OBJECT_LIST (files with an object a line).
# No object has code to run at load, and no set's object defines a symbol that the linker could merge with another set's: it would
# pick one for all, and a copy compiled for a newer machine would crash an older one.
set -euo pipefail
mapfile -t objects <"$1"
mapfile -t set_objects < <(grep . "$2")

status=0
for object in "${objects[@]}"; do
    sections=$(readelf -SW "$object")
    if grep -E '\.(pre)?init_array|\.fini_array|\.ctors|\.dtors' <<<"$sections"; then
        echo "$object: has a static initialiser"
        status=1
    fi
done
for object in "${set_objects[@]}"; do
    symbols=$(nm -C --defined-only "$object")
    if grep -E ' [VWuvw] ' <<<"$symbols"; then
        echo "$object: defines weak symbols"
        status=1
    fi
done
echo "${#objects[@]} objects, ${#set_objects[@]} of them of a set"
exit $status
