#!/usr/bin/env bash
# clean.sh LAUNCHER PROGRAM [ARGUMENT]...: a program that does nothing wrong ends as it would alone and gets no error and no warning.
set -euo pipefail
launcher=$1
shift
unset NINEFOLD_DEBUG LD_PRELOAD
said=$(mktemp)
trap 'rm -f "$said"' EXIT
"$launcher" --file "$said" "$@"
grep -q '^ninefold: [1-9][0-9]* draws, 0 errors, 0 warnings, ' "$said" || { cat "$said"; exit 1; }
