#!/usr/bin/env bash
# mistakes.sh LAUNCHER HOST: every mistake of the host gets its message at the first call that is wrong, and none where it is not
# made. Calls with errors are left out, so that all programs come to their end.
set -euo pipefail
launcher=$1 host=$2
unset NINEFOLD_DEBUG LD_PRELOAD
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0 made=0
fail() { echo "$1"; cat "$scratch/said"; failed=1; }

while read -r name rule; do
    made=$((made + 1))
    status=0
    "$launcher" --action skip "$host" "$name" wrong >"$scratch/draw" 2>"$scratch/said" || status=$?
    [ $status = 0 ] || fail "$name: status $status"
    draw=$(cat "$scratch/draw")
    grep -q "^ninefold: [a-z]* $rule [a-z0-9-]*: draw $draw, " "$scratch/said" || fail "$name: no $rule at draw $draw"
    if awk -v draw="$draw" 'match($0, /: draw [0-9]+,/) && substr($0, RSTART + 7, RLENGTH - 8) + 0 < draw { found = 1 } END { exit !found }' \
        "$scratch/said"; then
        fail "$name: something before draw $draw"
    fi
    status=0
    "$launcher" --action skip "$host" "$name" right >"$scratch/draw" 2>"$scratch/said" || status=$?
    [ $status = 0 ] || fail "$name, not made: status $status"
    grep -q ' 0 errors, 0 warnings, 0 hints$' "$scratch/said" || fail "$name, not made: a message"
done < <("$host")
[ "$made" -gt 0 ] || { echo "no mistakes"; exit 1; }
echo "$made mistakes"
exit $failed
