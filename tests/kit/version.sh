#!/usr/bin/env bash
# version.sh CC SOURCE_DIR LIBRARY KIT: nfkStart refuses a library of another major version, which lies under the name of the right
# one; and it starts with the right one, also in a program at a fixed address that takes the functions' addresses itself.
set -euo pipefail
cc=$1 root=$2 library=$3 kit=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
includes="-I$root/include -I$root/kit/include"

cat >"$scratch/host.c" <<'END'
#include <ninefold/kit.h>
#include <stdio.h>
DrawFunc (*volatile taken)(unsigned long) = SearchDrawFunc;
int main(void)
{
    const int started = nfkStart();
    puts(started ? "started" : nfkError());
    return !started != !taken(0x369);
}
END
# The smallest library of another version: every name of ours, under another soname.
{
    for name in $(nm -D --defined-only "$library" | awk '$2 == "T" { print $3 }'); do echo "void *$name(void) { return 0; }"; done
    echo "char rs[$(nm -DS --defined-only "$library" | awk '$4 == "rs" { print "0x" $2 }')];"
} >"$scratch/other.c"
mkdir "$scratch/right" "$scratch/wrong"
cp "$library" "$scratch/right/libninefold.so.1"
$cc -shared -fPIC -Wl,-soname,libninefold.so.2 "$scratch/other.c" -o "$scratch/wrong/libninefold.so.1"
cp "$kit" "$scratch/libninefold-kit.so.1"

for kind in "-fPIE -pie" "-fno-pie -no-pie"; do
    $cc $kind $includes "$scratch/host.c" -o "$scratch/host" "$scratch/libninefold-kit.so.1" "$scratch/right/libninefold.so.1"
    for which in right wrong; do
        said=$(LD_LIBRARY_PATH=$scratch/$which:$scratch "$scratch/host")
        echo "$kind, $which: $said"
        case $which:$said in
        right:started | wrong:nfkStart:*libninefold.so.2*libninefold.so.1*) ;;
        *) exit 1 ;;
        esac
    done
done
