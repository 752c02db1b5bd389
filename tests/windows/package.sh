#!/usr/bin/env bash
# package.sh ZIP ARCHITECTURE BUILD SOURCE REPLAY: the zip as its users meet it, unpacked into a folder of its own, under Wine: what is in
# it, what the DLLs want, hosts linked with its import libraries, the example's window, all golden sums, the debug twin, captures, the
# kit, bands.
# BUILD has the test programs, which find the zip's DLLs; REPLAY is ninefold-replay of this system, for captures from the other.
# scripts/windows builds them and runs this.
set -euo pipefail
zip=$(realpath "$1") architecture=$2 build=$(realpath "$3") source=$(realpath "$4") replay=$(realpath "$5")
kit_tests="kit_codes_test kit_draws_test kit_error_test kit_handles_test kit_pictures_test kit_screen_test kit_show_test kit_windows_text"
triplet=$architecture-w64-mingw32 here=$source/tests/windows
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { echo "package: $1"; exit 1; }
say() { echo "package $architecture: $1"; }

unzip -q "$zip" -d "$scratch/unpacked here"
package=$(echo "$scratch/unpacked here"/*)
for file in README.txt licenses/ninefold.txt bin/libninefold.dll bin/libninefold-kit.dll bin/ninefold-debug.exe bin/ninefold-replay.exe bin/win32.exe \
    lib/ninefold/debug/libninefold.dll lib/ninefold/bands/libninefold.dll lib/libninefold.dll.a lib/libninefold-kit.dll.a lib/ninefold.lib lib/ninefold-kit.lib include/ninefold/ninefold.h \
    include/ninefold/kit.h include/ninefold/debug.h include/ninefold/bands.h examples/win32.c lib/cmake/ninefold/ninefoldConfig.cmake; do
    [ -s "$package/$file" ] || fail "no $file"
done
! grep -n '@' "$package/README.txt" || fail "README.txt has something left to fill in"
! grep -rIl "$source" "$package" || fail "names of this machine's folders"

"$here/imports.sh" $triplet-objdump "$package"/bin/*.dll "$package"/bin/*.exe "$package"/lib/ninefold/*/*.dll
exports() { $triplet-objdump -p "$1" | awk '/^\[Ordinal\/Name/ { on = 1; next } on && /^\t\[/ { print $NF } on && !/\[/ { on = 0 }' | sort; }
exports "$package/bin/libninefold.dll" >"$scratch/exports"
declared=$(sed -nE 's/^NINEFOLD_API [^(;]*[ *]([A-Za-z0-9_]+)(\(|;).*/\1/p' "$package"/include/ninefold/*.h | sort -u)
diff "$scratch/exports" <(echo "$declared") || fail "the library exports other names"
for companion in debug:ninefoldDebugCalls bands:ninefoldBandsCalls; do
    [ "$(exports "$package/lib/ninefold/${companion%:*}/libninefold.dll" | comm -3 "$scratch/exports" - | tr -d '\t')" = "${companion#*:}" ] ||
        fail "${companion%:*} exports other names"
done
say "$(wc -l <"$scratch/exports") exports, nothing wanted but what Windows has"

export WINEDEBUG=-all
if [ $architecture = x86_64 ]; then
    wine=$(PATH=$PATH:/usr/lib/wine type -P wine64)
    export WINEPREFIX=$source/build-wine/prefix
else
    wine=$source/scripts/wine32
    export WINEPREFIX=$source/build-wine/prefix32 # its own
    "$wine" || { say "not run: no 32-bit Wine here"; exit 0; }
fi
mkdir -p "$WINEPREFIX"
# First, as Wine's desktop stays with the display that it began with.
WINEPATH=$package/bin "$source/tests/wine/win32.sh" "$wine" "$package/bin/win32.exe"
"$wine" wineboot --init
# It waits for its input until this script ends: with the last program Wine's services end, which take seconds to start.
exec {waiting}> >("$wine" cmd >/dev/null 2>&1)
export WINEPATH=$package/bin
# Wine has no fonts in the folder of Windows' own.
mkdir -p "$WINEPREFIX/drive_c/windows/Fonts"
cp /usr/share/fonts/truetype/dejavu/DejaVuSans.ttf "$WINEPREFIX/drive_c/windows/Fonts/"

# A host linked as the README says, for MinGW and for Microsoft's linker; both leave the same status.
$triplet-gcc-posix "$package/examples/win32.c" -I "$package/include" -L "$package/lib" -lninefold -lgdi32 -mwindows -o "$scratch/win32.exe"
cmp <(cd "$scratch" && "$wine" win32.exe --picture own.bmp && cat own.bmp) \
    <(cd "$scratch" && "$wine" "$package/bin/win32.exe" --picture theirs.bmp && cat theirs.bmp) || fail "the example draws something else"
$triplet-gcc-posix "$here/host.c" -I "$package/include" -L "$package/lib" -lninefold-kit -lninefold -o "$scratch/mingw.exe"
target=$architecture-pc-windows-msvc
clang -target $target -ffreestanding -nostdlibinc -O2 -fno-stack-protector -I "$package/include" -c "$here/host.c" -DNO_RUNTIME -o "$scratch/host.obj"
lld-link /nologo /nodefaultlib /subsystem:console /entry:start "/libpath:$package/lib" ninefold.lib ninefold-kit.lib \
    "/out:$scratch/microsoft.exe" "$scratch/host.obj"
for program in mingw microsoft; do
    status=0
    "$wine" "$scratch/$program.exe" || status=$?
    [ $status = 42 ] || fail "$program.exe ends with $status"
done
say "hosts linked by MinGW and by lld in the place of Microsoft's linker run"

# Wine can fail to start a program and report success, so each has to say what it did.
run() {
    local says=$1
    shift
    local status=0
    timeout 600 "$wine" "$@" >"$scratch/output" 2>&1 || status=$?
    [ $status = 0 ] || { tail -n 30 "$scratch/output"; fail "$1: status $status"; }
    grep -q "$says" "$scratch/output" || { tail -n 30 "$scratch/output"; fail "$1 did not say '$says'"; }
}
run 'PASSED  . [1-9]' "$build/tests/wine/golden_shared_test.exe" --gtest_brief=1
say "the golden sums of all codes, with the DLL"
for test in $kit_tests; do run 'PASSED  . [1-9]' "$build/tests/kit/$test.exe" --gtest_brief=1; done
say "the kit: $kit_tests"

run 'PASSED  . [1-9]' "$build/tests/debug/debug_rules_test.exe" --gtest_brief=1
run '^[1-9][0-9]* scenes' "$build/tests/debug/twin_scenes.exe" --every 7
"$source/tests/wine/twin.sh" "$wine" "$package/bin/ninefold-debug.exe" "$build/tests/debug/debug_host.exe" \
    "$build/tests/debug/debug_mistakes.exe" "$package/bin"
say "the debug twin"

# Captures from here and there. A DLL beside a program would go before the twin, so programs of another folder are recorded.
run 'PASSED  . [1-9]' "$build/tests/replay/capture_test.exe" --gtest_brief=1
(cd "$scratch" && run '^[1-9][0-9]* draws, 0 failures' "$build/tests/replay/replay_scenes.exe" scenes.nfc --every 31)
(cd "$scratch" && "$wine" "$package/bin/ninefold-debug.exe" --summary off --capture window.nfc ./win32.exe --picture captured.bmp)
cmp "$scratch/own.bmp" "$scratch/captured.bmp" || fail "captured, the example draws something else"
(cd "$scratch" && "$wine" "$package/bin/ninefold-debug.exe" --summary off --capture kit.nfc "$build/tests/kit/kit_draws_test.exe" >/dev/null)
for capture in window kit; do
    "$replay" verify "$scratch/$capture.nfc" >"$scratch/output" || { cat "$scratch/output"; fail "a capture of Windows, drawn here"; }
    cat "$scratch/output"
    (cd "$scratch" && run 'as recorded' "$package/bin/ninefold-replay.exe" verify $capture.nfc)
    (cd "$scratch" && run 'as recorded' "$package/bin/ninefold-replay.exe" verify $capture.nfc --lib "$package/bin/libninefold.dll")
done
say "captures of Windows, drawn again there and here"
for capture in "$source"/tests/captures/*.nfc; do run 'as recorded' "$package/bin/ninefold-replay.exe" verify "$capture"; done
say "captures of Linux, drawn again"

for test in rules frames scenes; do run 'PASSED  . [1-9]' "$build/tests/bands/bands_${test}_test.exe" --gtest_brief=1; done
plain=$("$wine" "$build/tests/bands/bands_host.exe" plain) || fail "the host of bands under the plain library: $plain"
banded=$(WINEPATH="$package/lib/ninefold/bands" "$wine" "$build/tests/bands/bands_host.exe" bands) || fail "the host under bands: $banded"
[ "$plain" = "$banded" ] || fail "another picture by bands"
for capture in "$scratch"/kit.nfc "$source"/tests/captures/*.nfc; do
    run 'as recorded on 3 threads' "$package/bin/ninefold-replay.exe" verify "$capture" --threads 1..3
done
say "bands, captures too"
