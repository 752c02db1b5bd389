#!/usr/bin/env bash
# replay.sh LAUNCHER REPLAY PLAIN BROKEN NOVEL WRONG SOURCE: captures as their users meet them. NOVEL and WRONG are hosts, WRONG one
# that makes mistakes; BROKEN is a build of the library with a mistake.
set -euo pipefail
launcher=$1 replay=$2 plain=$3 broken=$4 novel=$5 wrong=$6 source=$7
unset NINEFOLD_DEBUG LD_PRELOAD
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
fail() { echo "$1"; cat said 2>/dev/null; exit 1; }
status_of() { local status=0; "$@" >said 2>&1 || status=$?; echo $status; }
expect() { # STATUS WORDS COMMAND...
    local wanted=$1 words=$2
    shift 2
    local status
    status=$(status_of "$@")
    [ "$status" = "$wanted" ] || fail "status $status instead of $wanted: $*"
    grep -q -- "$words" said || fail "it does not say '$words': $*"
}

# A scene of photographs: size and slowness.
photographs="$source/gallery/pictures/cat.bmp $source/gallery/pictures/coffee.bmp"
plain_seconds=$("$novel" . $photographs)
captured_seconds=$("$launcher" --summary off --capture novel.nfc "$novel" . $photographs)
pngs=$(cat photograph-*.png | wc -c)
limit=$((pngs * 13 / 10 + 60 * 20000))
[ "$(wc -c <novel.nfc)" -le $limit ] || fail "the capture has $(wc -c <novel.nfc) bytes, the limit is $limit"
echo "capture: $(wc -c <novel.nfc) bytes beside $pngs of PNG files; $captured_seconds s instead of $plain_seconds s"
expect 0 "2,610 draws in 60 frames as recorded" "$replay" verify novel.nfc
expect 0 "as recorded" "$replay" verify novel.nfc --lib "$plain"
expect 0 "60 frames, 2,610 draws" "$replay" novel.nfc

# Cut down, compared, timed, shown.
expect 0 "86 draws" "$replay" trim novel.nfc trimmed.nfc --frames 9..10
expect 0 "86 draws in 2 frames as recorded" "$replay" verify trimmed.nfc
expect 0 "3 draws" "$replay" trim trimmed.nfc three.nfc --draws 2..4
expect 0 "3 draws, all alike" "$replay" diff three.nfc three.nfc
expect 1 "draw 1 of frame 1" "$replay" diff three.nfc trimmed.nfc
expect 0 "the slowest draws" "$replay" time three.nfc --repeat 2 --html page.html
grep -q '<svg' page.html || fail "no timeline"
[ "$(grep -c '<tr>' page.html)" -ge 5 ] || fail "no tables of kernels and draws" # two headings, one kernel at least, three draws
expect 0 "2 frames in pictures" "$replay" frames trimmed.nfc --png pictures
[ "$(ls pictures)" = "frame-0001.png
frame-0002.png" ] || fail "other pictures: $(ls pictures)"
expect 0 "rs, where it is not 0" "$replay" draw trimmed.nfc 3 --png pictures
expect 0 "1 frame in one" "$replay" frames trimmed.nfc --png one --frames 2
cmp one/frame-0002.png pictures/frame-0002.png
expect 2 "none of number 3" "$replay" frames trimmed.nfc --png one --frames 3
[ "$(ls pictures | wc -l)" = 6 ] || fail "other pictures: $(ls pictures)"

# A mistake is found at its draw, brought down to it, and exported.
expect 1 "draw 4 of frame 1, rect.unit.point.add: the frame buffer differs" "$replay" verify "$source/tests/captures/blends.nfc" --lib "$broken"
expect 1 "first in row 1, pixel 31 from column 0: 01BB5DFE instead of 01BB5DFF" "$replay" verify "$source/tests/captures/blends.nfc" --lib "$broken"
expect 1 "one draw" "$replay" minimise "$source/tests/captures/blends.nfc" small.nfc --lib "$broken"
[ "$(wc -c <small.nfc)" -lt 10000 ] || fail "the smallest capture has $(wc -c <small.nfc) bytes"
expect 0 "1 draw in 1 frame as recorded" "$replay" verify small.nfc
expect 0 " of 2 x 1 at" "$replay" info small.nfc # the texture, which had 16 x 16
expect 0 ", 1 pixel in their reach" "$replay" info small.nfc
expect 1 "draw 1 of frame 1, rect.unit.point.add" "$replay" verify small.nfc --lib "$broken"
NINEFOLD_BROKEN=crash expect 1 "rect.unit.point.add crashes" "$replay" minimise "$source/tests/captures/blends.nfc" crash.nfc --lib "$broken"
expect 0 "both libraries draw the same" "$replay" minimise small.nfc none.nfc --lib "$plain"
# What the twin tells of draws.
"$launcher" --summary off --capture wrong.nfc "$wrong" 2>/dev/null
expect 1 "1 draw not made; first draw 3 of frame 3, rect.unit.point.constalpha: clip-outside" "$replay" verify wrong.nfc
expect 1 "draw 3 of frame 3, rect.unit.point.constalpha breaks the rule clip-outside" "$replay" minimise wrong.nfc clip.nfc --twin clip-outside
expect 1 "The draw was not made: clip-outside" "$replay" draw clip.nfc 1
expect 1 "draw 5 of frame 5, .* breaks the rule blend-alpha-range" "$replay" minimise wrong.nfc alpha.nfc --twin NF-0501
expect 0 "1 draw in 1 frame as recorded" "$replay" verify alpha.nfc
for file in clip.nfc alpha.nfc; do
    [ "$(wc -c <$file)" -lt 2500 ] || fail "$file has $(wc -c <$file) bytes"
done
expect 0 "no draw breaks the rule mosaic-size" "$replay" minimise wrong.nfc none.nfc --twin mosaic-size
expect 2 "no rule 'nonsense'" "$replay" minimise wrong.nfc none.nfc --twin nonsense
expect 2 "not one of draws" "$replay" minimise wrong.nfc none.nfc --twin code-unknown
expect 2 "wrong.nfc is the capture itself" "$replay" trim wrong.nfc ./wrong.nfc --frames 1
expect 2 "ends before it begins" "$replay" trim wrong.nfc none.nfc --frames 5..2
expect 2 "either --lib" "$replay" minimise wrong.nfc none.nfc

for number in 1 2 3 4 5; do
    expect 0 "draw-$number.c" "$replay" export "$source/tests/captures/blends.nfc" $number
    ${CC:-cc} -Wall -Wextra -Werror -I"$source/include" draw-$number.c "$plain" -o draw-$number
    LD_LIBRARY_PATH=$(dirname "$plain") expect 0 "as it was" ./draw-$number
done
LD_LIBRARY_PATH=$(dirname "$broken") expect 1 "dstPixels differs in row" ./draw-4

# Two draws side by side, in words.
expect 0 "four.nfc: 1 draw$" "$replay" trim "$source/tests/captures/blends.nfc" four.nfc --draws=4
expect 1 "rs.tex0 is 16 x 16, in the other 2 x 1" "$replay" diff four.nfc small.nfc
expect 1 "rs.color\[0\] is 4294967295 (0xFFFFFFFF), in the other 0 (0x0)" "$replay" diff "$source/tests/captures/colours.nfc" \
    "$source/tests/captures/shahei.nfc"

# What the file is called; programs that draw nothing, by themselves or because others do it for them.
"$launcher" --summary off --capture 'a,b, c.nfc' --repeat 0 "$wrong" 2>/dev/null
expect 1 "1 draw not made" "$replay" verify 'a,b, c.nfc'
NINEFOLD_DEBUG=capture=d,,e.nfc,repeat=0 "$launcher" "--capture=,f,.nfc" "$wrong" 2>/dev/null
[ -s ,f,.nfc ] && [ ! -e d,e.nfc ] && [ ! -e d ] || fail "other files: $(ls)"
NINEFOLD_DEBUG=capture=d,,e.nfc,repeat=0 "$launcher" "$wrong" 2>/dev/null
[ -s d,e.nfc ] || fail "no file d,e.nfc"
expect 0 "made no call of the shared library, so that nothing was written: nothing.nfc" "$launcher" --capture nothing.nfc true
[ ! -e nothing.nfc ] || fail "a capture of nothing"
touch -d '1 hour ago' nothing.nfc
expect 0 "made no call" "$launcher" --capture nothing.nfc true
expect 0 "captured 6 draws" "$launcher" --capture nothing.nfc sh -c '"$0"; true' "$wrong"
! grep -q "made no call" said || fail "a program that another one started was not seen"
printf '#include <ninefold/ninefold.h>\nint main(void) { MakeDrawFuncTable(); }\n' >idle.c
${CC:-cc} -I"$source/include" idle.c "$plain" -o idle
LD_LIBRARY_PATH=$(dirname "$plain") expect 0 "captured 0 draws in 0 frames" "$launcher" --capture idle.nfc ./idle
expect 0 "0 frames, 0 draws" "$replay" info idle.nfc
expect 0 "0 draws in 0 frames as recorded" "$replay" verify idle.nfc

# A file that is damaged before its first frame has one status in all commands.
cp small.nfc damaged.nfc
printf '\377' | dd of=damaged.nfc bs=1 seek=60 conv=notrunc 2>/dev/null
for command in "info damaged.nfc" "verify damaged.nfc" "verify damaged.nfc --sets" "verify damaged.nfc --threads 1" \
    "verify damaged.nfc --lib $plain" "frames damaged.nfc" "draw damaged.nfc 1" "time damaged.nfc" "time damaged.nfc --threads 1" \
    "diff damaged.nfc small.nfc" "diff small.nfc damaged.nfc" "trim damaged.nfc out.nfc --frames 1" \
    "trim damaged.nfc out.nfc --draws 1" "minimise damaged.nfc out.nfc --lib $plain" \
    "minimise damaged.nfc out.nfc --twin clip-outside" "export damaged.nfc 1"; do
    expect 3 "damaged.nfc: the .*; it goes up to draw 0 of frame 1" "$replay" $command
done
[ ! -e out.nfc ] || fail "a capture of a damaged one"

# Files that are none, end early, or are damaged; arguments that make no sense.
expect 3 "no capture file" "$replay" info "$source/README.md"
expect 3 "No such file" "$replay" info nowhere.nfc
head -c 100000 novel.nfc >cut.nfc
expect 3 "the file ends inside the chunk at byte" "$replay" verify cut.nfc
expect 3 "cannot load" "$replay" verify small.nfc --lib nowhere.so
expect 3 "cannot write" "$replay" trim small.nfc nowhere/out.nfc --draws 1
expect 2 "neither with" "$replay" verify small.nfc --sets --lib "$plain"
expect 2 "--html goes not" "$replay" time small.nfc --threads 2 --html page.html
expect 3 "no library of bands" "$replay" verify small.nfc --threads 2 --lib "$plain"
expect 2 "no command 'nonsense'" "$replay" nonsense small.nfc
expect 2 "no option '--nonsense'" "$replay" verify small.nfc --nonsense
expect 2 "needs a value" "$replay" verify small.nfc --lib
expect 2 "takes no value" "$replay" verify small.nfc --sets=all
expect 3 "cannot load" "$replay" verify small.nfc --lib=nowhere.so
expect 2 "a number from 1" "$replay" time small.nfc --repeat=
expect 2 "none of number 9" "$replay" draw small.nfc 9
expect 2 "a number from 1" "$replay" draw small.nfc none
expect 2 "either --frames" "$replay" trim small.nfc out.nfc
expect 0 "usage: ninefold-replay COMMAND" "$replay" --help
for command in info verify frames draw time diff trim minimise export; do
    expect 0 "usage: ninefold-replay $command" "$replay" $command --help
done
expect 2 "cannot write" "$launcher" --capture nowhere/game.nfc "$novel" . $photographs
