# Programs and the package for Python, without a compiler.
. /ninefold/tests/packages/steps
installs_upgrades libninefold-bands1 ninefold-debug ninefold-tools python3-ninefold
cd /tmp
version=$(dpkg-query -W -f '${Version}' libninefold1)

for program in ninefold-bench ninefold-debug ninefold-gallery ninefold-replay; do
    [ "$($program --version)" = "$program ${version%-*}" ] || fail "$program --version says $($program --version)"
    $program --help | grep -q "^usage: $program" || fail "$program --help says no usage"
    page=$(zcat /usr/share/man/man1/$program.1.gz | sed 's/\\f.//g; s/\\-/-/g')
    for option in $($program --help | grep -o '^  --[a-z0-9]*'); do
        grep -q -- "$option" <<<"$page" || fail "$program's manual page lacks $option"
    done
done
say "--version, --help and manual pages that agree"

ninefold-gallery --out sheets unit wipes
[ -s sheets/unit.png ] && [ -s sheets/index.html ] || fail "no sheets"
ninefold-bench --check cutouts # which it reads the gallery's pictures for
ninefold-bench --quick --out=sheets startup
[ -s sheets/bench.html ] || fail "no report of the benchmark"
say "gallery and benchmark"

cat >draws.py <<'END'
import importlib.metadata, sys
import ninefold as nf
assert importlib.metadata.version("ninefold") == nf.__version__ == sys.argv[1], nf.__version__
screen = nf.Screen(64, 48)
screen.clear(0xFF102040)
nf.rectangle((8, 8, 16, 16), 0xFF80FF80, blend="copy")
assert screen.pixels[8, 8] == 0xFF80FF80 and screen.pixels[7, 7] == 0xFF102040
nf.Font("DejaVu Sans", 20).write("Ninefold", 10, 10)
screen.save("draws.png")
assert (nf.load("draws.png").pixels[8, 8] & 0xFFFFFF) == 0x80FF80
END
python3 draws.py "${version%-*}"
say "Python draws, writes text, and reads its picture again"

sed 's/^nf.rectangle/with nf.threads(2): nf.rectangle/' draws.py >bands.py
NINEFOLD_LIBRARY=$(echo /usr/lib/*/ninefold/bands/libninefold.so.1) python3 bands.py "${version%-*}"
say "Python draws by bands"

ninefold-debug --summary off --capture draws.nfc python3 draws.py "${version%-*}"
ninefold-replay verify draws.nfc --threads 2 | grep "as recorded on 2 threads" || fail "ninefold-replay does not draw again what Python drew"
ninefold-bench --check --capture draws.nfc capture
say "what Python draws is captured, drawn again, and a job of the benchmark"

cat >wrong.py <<'END'
import ninefold as nf
screen = nf.Screen(64, 48)
nf.state.clipRight = 4096
nf.rectangle((0, 0, 8, 8), 0xFFFFFFFF)
END
ninefold-debug --status 7 python3 wrong.py 2>said && fail "the twin found nothing" || status=$?
[ $status = 7 ] && grep -q NF-0107 said || { cat said; fail "the twin did not tell of the clip rectangle, status $status"; }
say "the twin tells a host what is wrong"
removes_all
