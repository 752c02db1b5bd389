#!/usr/bin/env bash
# twin.sh LAUNCHER TWIN PLAIN HOST GALLERY SOURCE: the twin as its users meet it.
set -euo pipefail
launcher=$1 twin=$2 plain=$3 host=$4 gallery=$5 source=$6
unset NINEFOLD_DEBUG LD_PRELOAD
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { echo "$1"; [ -f "$scratch/said" ] && cat "$scratch/said"; exit 1; }

# The library's names and soname, and one more name.
names() { nm -D --defined-only "$1" | awk '{ print $NF }' | sort; }
[ "$(comm -13 <(names "$plain") <(names "$twin"))" = ninefoldDebugCalls ] || fail "the twin exports other names"
[ -z "$(comm -23 <(names "$plain") <(names "$twin"))" ] || fail "the twin lacks names"
soname() { readelf -d "$1" | grep -o 'soname: .*'; }
[ "$(soname "$plain")" = "$(soname "$twin")" ] || fail "the twin has another soname"

# The calls of debug.h, with the twin and without.
"$host" plain || fail "the host under the plain library"
"$launcher" "$host" twin >"$scratch/out" 2>"$scratch/said" || { cat "$scratch/out"; fail "the host under the twin"; }
grep -q '^ninefold: error NF-0303 memory-small: draw 2, rect.unit.point.copy.plane (0x8369): rs.shaheiPlane, "plane of the window' "$scratch/said" ||
    fail "the message is another one"
grep -q '^ninefold: 2 draws, 1 errors, 0 warnings, 0 hints$' "$scratch/said" || fail "the summary is another one"

# Settings.
status=0
"$launcher" --status 7 --summary off --severity error --file "$scratch/file" "$host" twin >"$scratch/said" 2>&1 || status=$?
[ $status = 7 ] || fail "status $status instead of 7"
[ ! -s "$scratch/said" ] && [ "$(wc -l <"$scratch/file")" = 1 ] || fail "messages did not go to the file"
"$launcher" --format json "$host" twin 2>"$scratch/said"
grep -q '^{"rule":"NF-0303","name":"memory-small","severity":"error","draw":2,"count":1,"call":"rect.unit.point.copy.plane","code":"0x8369","text":' "$scratch/said" ||
    fail "JSON"
if command -v python3 >/dev/null; then
    python3 -c 'import json, sys; [json.loads(line) for line in sys.stdin]' <"$scratch/said" || fail "no JSON"
fi
"$launcher" --format=json "$host" twin 2>&1 >/dev/null | cmp -s - "$scratch/said" || fail "an option with an equals sign"
"$launcher" --stack on "$host" twin 2>"$scratch/said"
grep -q "^    at .*$(basename "$host")" "$scratch/said" || fail "the stack does not name the host"
NINEFOLD_DEBUG=repeat=0 "$launcher" "$host" twin 2>"$scratch/said"
! grep -q "error NF-0303 memory-small: draw" "$scratch/said" || fail "repeat=0 prints"
status=0
"$launcher" --action abort "$host" twin >"$scratch/said" 2>&1 || status=$?
[ $status = 134 ] || fail "status $status of an abort"
for wrong in "--nonsense 1 $host" "--severity" ""; do
    status=0
    "$launcher" $wrong >"$scratch/said" 2>&1 || status=$?
    [ $status = 2 ] || fail "status $status of 'ninefold-debug $wrong'"
done
status=0
"$launcher" --severity all "$host" twin >"$scratch/said" 2>&1 || status=$?
[ $status = 2 ] && grep -q "'severity=all' is no setting" "$scratch/said" || fail "a wrong value"
status=0
"$launcher" "$scratch/nowhere" >"$scratch/said" 2>&1 || status=$?
[ $status = 127 ] || fail "status $status of a program that is not there"
"$launcher" ls "$scratch" >/dev/null 2>"$scratch/said"
[ ! -s "$scratch/said" ] || fail "a program that draws nothing gets a summary"
"$launcher" --help | grep -q -- --severity || fail "no help"

# The page of all rules is current.
"$launcher" --rules --markdown | diff "$source/docs/debug-rules.md" - || fail "docs/debug-rules.md: ninefold-debug --rules --markdown > docs/debug-rules.md"

# No false alarm: the gallery, with the same pictures.
if [ -x "$gallery" ]; then
    "$gallery" --out "$scratch/plain" >/dev/null
    "$launcher" "$gallery" --out "$scratch/twin" >/dev/null 2>"$scratch/said"
    grep -q '^ninefold: [0-9]* draws, 0 errors, 0 warnings' "$scratch/said" || fail "the gallery"
    diff -r "$scratch/plain" "$scratch/twin" || fail "the gallery's pictures differ"
fi
