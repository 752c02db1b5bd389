#!/usr/bin/env bash
# root.sh [ARCHITECTURE]: makes a bare Debian system, no more than apt, unless one was made in the last fortnight, and prints its folder.
# Packages come from where this system has its own, and stay for the next time.
set -euo pipefail
architecture=${1-$(dpkg --print-architecture)}
cache=${XDG_CACHE_HOME:-$HOME/.cache}/ninefold
. /etc/os-release
root=$cache/$VERSION_CODENAME-$architecture
if [ ! -d "$root" ] || [ -n "$(find "$root" -maxdepth 0 -mtime +14)" ]; then
    rm -rf "$root" "$root.new"
    mkdir -p "$cache/archives"
    sources=/etc/apt/sources.list
    [ ! -e /etc/apt/sources.list.d/debian.sources ] || sources=/etc/apt/sources.list.d/debian.sources
    # A mirror may be a frozen one.
    mmdebstrap --mode=root --variant=apt --architectures="$architecture" --aptopt='Acquire::Check-Valid-Until "false"' \
        --aptopt='Acquire::Check-Date "false"' --aptopt='Acquire::Languages "none"' --aptopt='APT::Keep-Downloaded-Packages "true"' \
        --aptopt='APT::Install-Recommends "false"' --dpkgopt=force-unsafe-io --skip=cleanup/apt/lists "$VERSION_CODENAME" "$root.new" "$sources" >&2
    mv "$root.new" "$root"
    touch "$root"
fi
echo "$root"
