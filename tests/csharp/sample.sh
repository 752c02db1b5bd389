#!/usr/bin/env bash
# sample.sh MCS MONO SOURCE LIBRARY_DIRECTORY KIT_DIRECTORY: compiles and runs the sample, and another that notices a record that
# lies elsewhere.
set -euo pipefail
mcs=$1 mono=$2 source=$3
export LD_LIBRARY_PATH=$4:$5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

"$source/scripts/bindings" --check
"$mcs" -unsafe -warnaserror -out:Sample.exe "$source/csharp/Ninefold.cs" "$source/csharp/Sample.cs"
[ "$("$mono" Sample.exe)" = sample.png ]
# The sample's own picture is a picture to it.
cp sample.png first.png
"$mono" Sample.exe first.png >/dev/null
cmp -s first.png sample.png && { echo "the sample draws the same with another picture" >&2; exit 1; }

said=$("$mono" Sample.exe absent.png 2>&1 >/dev/null) && { echo "the sample did not fail without its picture" >&2; exit 1; }
[[ $said == "sample: nfkLoadPicture: absent.png: "* ]] || { echo "unexpected: $said" >&2; exit 1; }

# One field more in front of the clip rectangle.
sed '0,/public int clipLeft;/s//public int other; public int clipLeft;/' "$source/csharp/Ninefold.cs" >Wrong.cs
cmp -s Wrong.cs "$source/csharp/Ninefold.cs" && { echo "nothing to exchange" >&2; exit 1; }
"$mcs" -unsafe -out:Wrong.exe Wrong.cs "$source/csharp/Sample.cs"
said=$("$mono" Wrong.exe 2>&1 >/dev/null) && { echo "the wrong layout went unnoticed" >&2; exit 1; }
[[ $said == "sample: RenderState"*" in the library" ]] || { echo "unexpected: $said" >&2; exit 1; }
