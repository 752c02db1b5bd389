# In a bare system: /ninefold/tree is the source, ARCHITECTURE what is built for. cross.sh runs this.
set -euo pipefail
say() { echo "== $*"; }
fail() { echo "$*"; exit 1; }
cd /ninefold/tree
dpkg --add-architecture "$ARCHITECTURE"
apt-get update -q
apt-get install -q -y ccache "crossbuild-essential-$ARCHITECTURE" googletest "libstdc++6:$ARCHITECTURE" qemu-user
apt-get build-dep -q -y --arch-only --host-architecture "$ARCHITECTURE" --build-profiles cross,nocheck,pkg.ninefold.library ./
DEB_BUILD_OPTIONS="parallel=$JOBS" dpkg-buildpackage --host-arch "$ARCHITECTURE" --build-profiles=cross,nocheck,pkg.ninefold.library \
    --build=any --no-sign
package=$(echo /ninefold/libninefold1_*_"$ARCHITECTURE".deb)
say "$(basename "$package"): $(dpkg-deb -f "$package" Depends)"
apt-get install -q -y "$package"
[ -z "$(dpkg --verify "libninefold1:$ARCHITECTURE")" ] || fail "installed files are not as packed"

triplet=$(dpkg-architecture -a "$ARCHITECTURE" -q DEB_HOST_GNU_TYPE) processor=$(dpkg-architecture -a "$ARCHITECTURE" -q DEB_HOST_GNU_CPU)
library=$(echo "/usr/lib/$triplet"/libninefold.so.1)
[ -e "$library" ] || fail "no $library"
export PKG_CONFIG_LIBDIR=/usr/lib/$triplet/pkgconfig:/usr/share/pkgconfig
cmake -S . -B tests-built -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR="$processor" \
    -DCMAKE_C_COMPILER="$triplet-gcc" -DCMAKE_CXX_COMPILER="$triplet-g++" -DCMAKE_SKIP_RPATH=ON -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON \
    -DNINEFOLD_KIT=OFF -DNINEFOLD_GALLERY=OFF -DNINEFOLD_BENCH=OFF -DNINEFOLD_DEBUG_TWIN=OFF -DNINEFOLD_BANDS=OFF -DNINEFOLD_PAGE=OFF
cmake --build tests-built -j "$JOBS" --target golden_shared_test
# The installed library is the one that it finds.
"qemu-$processor" "$(command -v true)" 2>/dev/null && fail "qemu-$processor runs programs of this machine"
taken=$("qemu-$processor" -E LD_DEBUG=libs tests-built/tests/wine/golden_shared_test --gtest_list_tests 2>&1 | grep 'calling init: .*libninefold') || true
[[ $taken =~ ': '(/usr)?/lib/$triplet/libninefold.so.1$ ]] || fail "the tests take another library: $taken"
"qemu-$processor" tests-built/tests/wine/golden_shared_test --gtest_brief=1 >golden.log 2>&1 || { cat golden.log; fail "the golden sums"; }
grep -q 'PASSED  . [1-9]' golden.log || { cat golden.log; fail "the golden sums were not compared"; }
say "the golden sums of all codes, with the installed library under qemu-$processor"
