#!/usr/bin/env bash
# run.sh PACKAGES [NAME...]: installs the packages of a folder in bare Debian systems and uses them there as their users would: lower
# versions of them first, then these. inside/ has what is done, NAME.sh for each system.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
packages=$(realpath "$1")
shift
. "$here/bare"

# What makes a package of a lower version of one: the same files, and one that the higher version has no longer.
lower()
{
    local tree=$scratch/lower
    dpkg-deb --raw-extract "$1" "$tree"
    sed -i -E 's/^(Version: .*)$/\1~lower/; /^Depends:/s/\(= ([^)]*)\)/(= \1~lower)/g; s/\(>= [^)]*\)//g' "$tree/DEBIAN/control"
    mkdir -p "$tree/usr/share/ninefold-gone"
    touch "$tree/usr/share/ninefold-gone/$(basename "$1")"
    dpkg-deb --root-owner-group -Znone --build "$tree" "$2" >/dev/null
    rm -rf "$tree"
}
mkdir -p "$scratch/files/lower" "$scratch/files/new"
for package in "$packages"/*.deb; do
    cp "$package" "$scratch/files/new"
    lower "$package" "$scratch/files/lower/$(basename "$package")"
done
for version in lower new; do (cd "$scratch/files/$version" && dpkg-scanpackages . >Packages 2>/dev/null); done
mkdir -p "$scratch/files/tests"
cp -a "$here" "$here/../interface" "$here/../kit" "$scratch/files/tests"

for script in "$here"/inside/*.sh; do
    name=$(basename "$script" .sh)
    [ $# = 0 ] || [[ " $* " = *" $name "* ]] || continue
    began=$SECONDS
    status=0
    in_bare tests/packages/inside/"$name".sh "$scratch/files" || status=$?
    if [ $status != 0 ]; then
        cat "$scratch/log"
        echo "$name: FAILED with status $status"
        exit 1
    fi
    grep '^== ' "$scratch/log" | sed 's/^== /   /'
    echo "$name: well, in $((SECONDS - began)) s"
    leave
done
