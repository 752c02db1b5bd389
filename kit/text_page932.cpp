// The library's own glyph functions by UTF-8: code page 932 turned round.
#include "error.h"
#include "utf8.h"

#include <ninefold/kit/text.h>

#include "glyph/page932.h"

#include <array>
#include <cstring>
#include <memory>

namespace nfk::text {
namespace {

using ninefold::glyph::undefined932;
using ninefold::glyph::utf16Of932;

// The lowest code of every character of UTF-16, 0 for none. NUL has code 0 as well.
struct Codes {
    Codes()
    {
        // From the highest code down, so that the lowest is what remains.
        for (uint32_t code = 0xFFFF; code >= 0x100; --code)
            set(utf16Of932(static_cast<uint8_t>(code >> 8), static_cast<uint8_t>(code)), code);
        for (uint32_t code = 0x100; code-- > 0;)
            set(utf16Of932(static_cast<uint8_t>(code)), code);
    }

    void set(char16_t character, uint32_t code)
    {
        if (character != undefined932)
            of[character] = static_cast<uint16_t>(code);
    }

    std::array<uint16_t, 65536> of{};
};

// Writes one or two bytes and a NUL; false if the page does not have it.
bool encode(char32_t character, char out[3])
{
    static const auto codes = std::make_unique<Codes>();
    const uint32_t code = character < 0x10000 ? codes->of[character] : 0;
    if (code == 0 && character != 0)
        return false;
    const bool isPair = code > 0xFF;
    out[0] = static_cast<char>(isPair ? code >> 8 : code);
    out[1] = isPair ? static_cast<char>(code) : '\0';
    out[2] = '\0';
    return true;
}

const char *create(const char *function, const char *utf8, char *(*draw)(char *))
{
    return guarded(function, [&]() -> const char * {
        if (!utf8)
            return fail("%s: the text is null", function), nullptr;
        if (!rs.tex0)
            return fail("%s: rs.tex0 is null: the glyph needs an atlas to go into", function), nullptr;
        size_t length = 0;
        const char32_t character = nextCharacter({utf8, std::strlen(utf8)}, length);
        char bytes[3];
        if (!encode(character, bytes))
            return fail("%s: code page 932 has no U+%04X", function, static_cast<unsigned>(character)), nullptr;
        if (!draw(bytes))
            return fail("%s: the atlas is full: take a larger one, or begin it again at cursor (0, 0)", function), nullptr;
        return utf8 + length;
    });
}

} // namespace
} // namespace nfk::text

const char *nfkCreateFontTexture(const char *utf8) { return nfk::text::create("nfkCreateFontTexture", utf8, CreateFontTexture); }

const char *nfkCreateFontTextureFuchi(const char *utf8)
{
    return nfk::text::create("nfkCreateFontTextureFuchi", utf8, CreateFontTextureFuchi);
}

int nfkEncodePage932(const char *utf8, char *out, uint32_t size)
{
    return nfk::guarded("nfkEncodePage932", [&]() -> int {
        if (!utf8 || !out)
            return nfk::fail("nfkEncodePage932: %s is null", utf8 ? "the room for the result" : "the text");
        const std::string_view text(utf8);
        uint32_t used = 0;
        for (size_t at = 0; at < text.size();) {
            const char32_t character = nfk::nextCharacter(text, at);
            char bytes[3];
            if (!nfk::text::encode(character, bytes))
                return nfk::fail("nfkEncodePage932: code page 932 has no U+%04X", static_cast<unsigned>(character));
            const size_t count = std::strlen(bytes);
            if (used + count >= size)
                return nfk::fail("nfkEncodePage932: %u bytes are too few for the text", size);
            std::memcpy(out + used, bytes, count);
            used += static_cast<uint32_t>(count);
        }
        if (used >= size)
            return nfk::fail("nfkEncodePage932: there is no room for the NUL");
        out[used] = '\0';
        return 1;
    });
}
