#!/usr/bin/env bash
# twin.sh WINE LAUNCHER HOST MISTAKES LIBRARY: the debug twin for Windows under Wine as its users meet it: by ninefold-debug.exe, and
# as the DLL beside a program. LIBRARY is the folder of the plain DLL.
set -euo pipefail
here=$(dirname "$(realpath "$0")")
wine=$1 launcher=$2 host=$3 mistakes=$4 library=$5
unset NINEFOLD_DEBUG NINEFOLD_DEBUG_LIBRARY
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { echo "twin: $1"; [ -f "$scratch/said" ] && cat "$scratch/said"; exit 1; }

# Programs that look like native ones: Wine runs them, and no line ends in a carriage return.
under() { # NAME COMMAND...
    printf '#!/usr/bin/env bash\nset -o pipefail\n{ %s "$@" 2>&3 | tr -d "\\r"; } 3> >(tr -d "\\r" >&2)\nstatus=$?\nwait\nexit $status\n' \
        "$(printf '%q ' "${@:2}")" >"$scratch/$1"
    chmod +x "$scratch/$1"
}
export WINEPATH=$library
under launcher "$wine" "$launcher"
under host "$wine" "$host"
"$scratch/host" plain >"$scratch/said" 2>&1 || fail "the host under the plain library"

"$scratch/launcher" "$host" twin >"$scratch/out" 2>"$scratch/said" || fail "the host under the twin: $(cat "$scratch/out")"
grep -q '^ninefold: error NF-0303 memory-small: draw 2, rect.unit.point.copy.plane (0x8369): rs.shaheiPlane, "plane of the window' "$scratch/said" ||
    fail "the message is another one"
grep -q '^ninefold: 2 draws, 1 errors, 0 warnings, 0 hints$' "$scratch/said" || fail "the summary is another one"

status=0
"$scratch/launcher" --status 7 --summary off --severity error "$host" twin >"$scratch/said" 2>&1 || status=$?
[ $status = 7 ] || fail "status $status instead of 7"
"$scratch/launcher" --stack on "$host" twin 2>"$scratch/said"
grep -q "^    at .*$(basename "$host")" "$scratch/said" || fail "the stack does not name the host"
status=0
"$scratch/launcher" "$scratch/nowhere.exe" >"$scratch/said" 2>&1 || status=$?
[ $status = 127 ] || fail "status $status of a program that is not there"
"$scratch/launcher" --rules --markdown | diff "$here/../../docs/debug-rules.md" - || fail "--rules prints another page"
"$scratch/launcher" --help | grep -q -- --severity || fail "no help"

# Arguments reach the program as they are.
mkdir "$scratch/with space"
cp "$host" "$scratch/with space/host.exe"
"$scratch/launcher" "$scratch/with space/host.exe" twin 'a "b" \' >"$scratch/said" 2>&1 || fail "a path with a space in it"

# The library beside a program goes before: the launcher says so, and the twin in its place is taken.
cp "$library/libninefold.dll" "$scratch/with space/"
status=0
"$scratch/launcher" "$scratch/with space/host.exe" twin >"$scratch/said" 2>&1 || status=$?
[ $status = 1 ] && grep -q 'beside the program' "$scratch/said" || fail "status $status of a program with the library beside it"
cp "$(dirname "$launcher")"/lib/ninefold/debug/libninefold.dll "$scratch/with space/" 2>/dev/null ||
    cp "$(dirname "$launcher")"/../lib/ninefold/debug/libninefold.dll "$scratch/with space/"
(cd "$scratch/with space" && "$wine" host.exe twin) >"$scratch/said" 2>&1 || fail "the twin beside the program"
grep -q 'NF-0303 memory-small' "$scratch/said" || fail "the twin beside the program says nothing"

# Every mistake has its message.
names=$scratch/names
"$wine" "$mistakes" | tr -d '\r' >"$names"
cat >"$scratch/mistakes" <<END
#!/usr/bin/env bash
cat "$names"
END
cat >"$scratch/mistaken" <<END
#!/usr/bin/env bash
args=("\$@")
for k in "\${!args[@]}"; do [ "\${args[k]}" != "$scratch/mistakes" ] || args[k]="$mistakes"; done
exec "$scratch/launcher" "\${args[@]}"
END
chmod +x "$scratch/mistakes" "$scratch/mistaken"
"$here/../debug/mistakes.sh" "$scratch/mistaken" "$scratch/mistakes"
