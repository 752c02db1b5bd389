#!/usr/bin/env bash
# headers.sh CC CXX SOURCE_DIR: each public header of the kit alone, as C11 and as C++17, kit.hpp as C++17; and that a handle of
# kit.hpp goes where a texture does, but not to `delete`.
set -euo pipefail
cc=$1 cxx=$2 root=$3
strict="-Wall -Wextra -Wshadow -pedantic -Werror -fsyntax-only -I$root/include -I$root/kit/include"
status=0

cd "$root/kit/include"
for header in ninefold/*.h ninefold/kit/*.h; do
    $cc -x c -std=c11 -Wstrict-prototypes $strict - <<<"#include <$header>" || { echo "$header: fails as C11"; status=1; }
done
for header in ninefold/*.h ninefold/kit/*.h ninefold/kit.hpp; do
    $cxx -x c++ -std=c++17 $strict - <<<"#include <$header>" || { echo "$header: fails as C++17"; status=1; }
done

body() { printf '#include <ninefold/kit.hpp>\nvoid f(nfk::Texture &texture, nfk::TextureRef ref, nfk::Screen &screen) { %s }\n' "$1"; }
ok="ClearTexture(texture); SetFrameBuffer(ref); rs.tex0 = screen.texture(); nfkSprite(texture, 0, 0, nullptr, nullptr);"
body "$ok TexCoord corner = {ref.width() << 16, ref.height() << 16}; (void)corner;" | $cxx -x c++ -std=c++17 $strict - || { echo "handles: what is meant to compile does not"; status=1; }
for wrong in 'delete texture;' 'delete ref;' 'delete screen.texture();' 'delete &*texture;' 'nfk::Texture copy = texture;' \
    'nfk::Screen copy = screen;' 'texture = ref;'; do
    if body "$ok $wrong" | $cxx -x c++ -std=c++17 $strict - 2>/dev/null; then echo "handles: '$wrong' compiles"; status=1; fi
done
exit $status
