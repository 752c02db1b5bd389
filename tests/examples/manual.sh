#!/usr/bin/env bash
# manual.sh SOURCE_DIR: the headers become a manual without a warning, and what stands in them stands in it.
set -euo pipefail
source=$1
command -v doxygen >/dev/null || { echo "skipped: no doxygen here (scripts/setup docs installs it)"; exit 77; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

"$source/scripts/docs" "$scratch"
# has FILE WORDS: a page says them.
has() { sed 's/<[^>]*>//g' "$scratch/html/$1" | tr -s ' \n' '  ' | grep -- "$2" >/dev/null || { echo "$1 lacks: $2"; exit 1; }; }
has axes_8h.html 'weighed by the source.*s alpha, exact where it is 0 or 255' # an enumerator of a list
has render__state_8h.html 'opaque white over any colour gives FE' # before a function
has structNfkOptions.html 'priority, 0 to 255' # after a field
has draws_8h.html 'is a part of the texture in texels' # on its own
has classnfk_1_1TextureRef.html 'cannot be deleted' # of C++
