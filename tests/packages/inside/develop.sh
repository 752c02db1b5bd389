# Programs in C and C++: libninefold-dev with a compiler and nothing else, then the examples.
. /ninefold/tests/packages/steps
get gcc g++ make cmake pkg-config
installs_upgrades libninefold-dev
cd /tmp

# ours PROGRAM: its shared libraries of this project.
ours() { readelf -d "$1" | sed -n 's/.*NEEDED.*\[\(libninefold.*\)\].*/\1/p' | xargs; }
# runs PROGRAM LIBRARIES (a pattern)
runs()
{
    "$1" >said || { cat said; fail "$1 fails"; }
    [[ $(ours "$1") = $2 ]] || fail "$1 loads '$(ours "$1")' instead of '$2'"
}

cmake -S /ninefold/tests/packages/consumer -B consumer
make -C consumer -j "$JOBS"
for standard in c_std_11 cxx_std_17 cxx_std_20; do
    runs consumer/interface_${standard}_shared "libninefold.so.1"
    runs consumer/kit_${standard}_shared "libninefold-kit.so.1*"
    runs consumer/interface_${standard}_static ""
    runs consumer/kit_${standard}_static ""
done
say "C11, C++17 and C++20 by find_package, shared and static"

# The linker takes the static libraries where it is told to, as the shared ones lie beside them.
static() { pkg-config --static --cflags --libs "$1" | sed -E 's/-l(ninefold\S*)/-l:lib\1.a/g'; }
for host in interface:ninefold kit:ninefold-kit; do
    source=/ninefold/tests/${host%:*}/host.c package=${host#*:}
    for language in "gcc -std=c11 -x c" "g++ -std=c++17 -x c++" "g++ -std=c++20 -x c++"; do
        $language -Wall -Wextra -Werror "$source" -x none -o shared $(pkg-config --cflags --libs "$package")
        ./shared >said || { cat said; fail "$language by pkg-config $package fails"; }
        [[ $(ours shared) = *lib$package.so.1* ]] || fail "$language by pkg-config $package loads '$(ours shared)'"
        $language -Wall -Wextra -Werror "$source" -x none -o static $(static "$package")
        runs ./static ""
    done
done
say "C11, C++17 and C++20 by pkg-config, shared and static"

[ -s /usr/share/doc/libninefold-dev/html/index.html ] || fail "no manual"
get ninefold-examples libsdl2-dev
cmake -S /usr/share/doc/ninefold-examples/examples -B examples
make -C examples -j "$JOBS"
for example in sprites novel floor; do
    examples/$example --frames 20 --picture $example.png
    [ -s $example.png ] || fail "$example draws nothing"
done
say "the examples, built as installed"
removes_all
