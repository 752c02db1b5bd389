#!/usr/bin/env bash
# docs.sh RULES_H PAGE: the page has every rule, in the words of the list.
set -euo pipefail
rules=$(sed -n 's/^ *X(\([a-zA-Z]*\), "\(.*\)").*/| `\1` | \2 |/p' "$1")
[ "$(wc -l <<<"$rules")" -gt 10 ] || { echo "the list changed its form"; exit 1; }
while IFS= read -r line; do
    grep -qxF -- "$line" "$2" || { echo "missing in $2: $line"; exit 1; }
done <<<"$rules"
