#!/usr/bin/env bash
# run.sh GALLERY CHECK: every sheet is drawn, and what cannot work fails with a message.
set -euo pipefail
gallery=$1 check=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

"$gallery" --list >"$scratch/list"
"$gallery" --out "$scratch/all"
"$check" "$scratch/all" <"$scratch/list"
while read -r name _; do
    grep -q "id=\"$name\"" "$scratch/all/index.html" || { echo "the page lacks $name"; exit 1; }
done <"$scratch/list"

# The same pictures when drawn alone, whatever was drawn before.
"$gallery" --out "$scratch/some" wipes unit
[ "$(ls "$scratch/some" | sort | xargs)" = "index.html unit.png wipes.png" ]
cmp "$scratch/all/unit.png" "$scratch/some/unit.png"
cmp "$scratch/all/wipes.png" "$scratch/some/wipes.png"

# fails STATUS WORDS ARGUMENTS...: exits with STATUS and says WORDS.
fails() {
    local expected=$1 words=$2 status=0
    shift 2
    "$gallery" "$@" >"$scratch/output" 2>&1 || status=$?
    [ $status = "$expected" ] && grep -q -- "$words" "$scratch/output" ||
        { echo "gallery $*: status $status instead of $expected, said:"; cat "$scratch/output"; exit 1; }
}
fails 2 "no sheet 'nonsense'" nonsense
fails 2 "no option '--nonsense'" --nonsense
fails 2 "needs a folder" --out
fails 1 "cannot load $scratch/nowhere/" --out "$scratch/more" --pictures "$scratch/nowhere"
touch "$scratch/file"
fails 1 "$scratch/file" --out "$scratch/file"
fails 1 "$scratch/file/under" --out "$scratch/file/under"
mkdir -p "$scratch/busy/unit.png" "$scratch/page/index.html"
fails 1 "cannot write $scratch/busy/unit.png" --out "$scratch/busy" unit
fails 1 "cannot write $scratch/page/index.html" --out "$scratch/page" unit
