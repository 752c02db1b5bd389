// glyph_compare write FILE    draws a list of glyphs and writes them down
// glyph_compare check FILE    draws them again and compares: metrics, sizes, every byte
//
// Written by FreeType and checked by GDI in Wine, the two must agree: bit for bit in 64 bits, to one grey level in 32, where
// Wine's own FreeType rounds elsewhere. Wants VL Gothic, VL PGothic, IPAGothic, IPAPGothic and Konatu.
#include "glyph/source.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace ninefold::glyph;

namespace {

// Konatu has bitmaps for 12 and 13 pixels. The last is IPAGothic by its Japanese name.
constexpr const char *faces[] = {"VL Gothic",
                                 "VL PGothic",
                                 "IPAGothic",
                                 "IPAPGothic",
                                 "Konatu",
                                 "Konatu Tohaba",
                                 ("IPA\x83S\x83V\x83" // in two: b would count as a digit
                                  "b\x83N")};
constexpr int32_t heights[] = {16, 24, 9, 3, 2, 1, 0, -1, -2, -3, -12, -13, -20, -33};
constexpr int32_t weights[] = {400, 700};
constexpr uint8_t slants[] = {0, 1};
constexpr Format formats[] = {Format::Mono, Format::Grey4, Format::Grey16, Format::Grey64};

// ASCII, half-width kana, hiragana, katakana, kanji, full-width punctuation, undefined codes.
constexpr unsigned char text[] =
    "AQWagijlmy0189.,!@&_~ \\\xB1\xB6\xC5\xDF\x82\xA0\x82\xAF\x82\xDB\x82\xF1\x83\x41\x83\x5C\x83\x7E\x83\x93"
    "\x88\xEA\x8D\x91\x93\xFA\x96\x7B\x8A\xBF\x8E\x9A\x95\x5C\x9E\xA4\xEA\xA2\xFB\xFC\x87\x40\x81\x60\x81\x40\x81\x9A"
    "\x80\xA0\xFD\xFF\x85\x40";

constexpr int tolerance = sizeof(void *) == 4 ? 1 : 0;

struct Record {
    uint32_t code, size;
    Metrics metrics;
};

int glyphs = 0, differing = 0;

void complain(const FontDescription &font, Format format, const Record &written, const Record &drawn, const char *what)
{
    if (++differing > 20)
        return;
    std::printf("%s, height %d, weight %d, italic %d, format %u, code %x: %s differs\n", font.name, static_cast<int>(font.height),
                static_cast<int>(font.weight), font.italic, static_cast<unsigned>(format), static_cast<unsigned>(drawn.code),
                what);
    for (const auto &[name, record] : {std::pair{"written", written}, {"drawn", drawn}}) {
        const Metrics &m = record.metrics;
        std::printf("  %s: %ux%u at %d,%d, advance %d, %u bytes\n", name, static_cast<unsigned>(m.width),
                    static_cast<unsigned>(m.height), static_cast<int>(m.originX), static_cast<int>(m.originY),
                    static_cast<int>(m.advance), static_cast<unsigned>(record.size));
    }
}

bool close(const std::vector<uint8_t> &written, const std::vector<uint8_t> &drawn, Format format)
{
    if (format == Format::Mono || tolerance == 0)
        return written == drawn;
    for (size_t i = 0; i < written.size(); ++i)
        if (std::abs(written[i] - drawn[i]) > tolerance)
            return false;
    return true;
}

// Runs over a font, glyph by glyph. False at the end of the file.
bool run(const FontDescription &font, bool write, std::FILE *file)
{
    Source &source = platformSource();
    source.open(font);
    for (const unsigned char *next = text; *next;) {
        uint32_t code = static_cast<uint32_t>(static_cast<int8_t>(*next));
        if (source.isLeadByte(*next)) {
            code = static_cast<uint32_t>(next[0] << 8 | next[1]);
            ++next;
        }
        ++next;
        for (const Format format : formats) {
            Record drawn{code, 0, {}};
            drawn.size = source.outline(code, format, drawn.metrics, 0, nullptr);
            std::vector<uint8_t> bytes(drawn.size == Source::failed ? 0 : drawn.size);
            if (source.outline(code, format, drawn.metrics, static_cast<uint32_t>(bytes.size()), bytes.data()) != drawn.size) {
                std::puts("two sizes for one glyph");
                std::exit(2);
            }
            ++glyphs;
            if (write) {
                std::fwrite(&drawn, sizeof drawn, 1, file);
                std::fwrite(bytes.data(), 1, bytes.size(), file);
                continue;
            }
            Record written;
            if (std::fread(&written, sizeof written, 1, file) != 1)
                return false;
            std::vector<uint8_t> writtenBytes(written.size == Source::failed ? 0 : written.size);
            if (std::fread(writtenBytes.data(), 1, writtenBytes.size(), file) != writtenBytes.size())
                return false;
            if (written.code != drawn.code)
                complain(font, format, written, drawn, "code");
            else if (std::memcmp(&written.metrics, &drawn.metrics, sizeof drawn.metrics) != 0)
                complain(font, format, written, drawn, "box");
            else if (written.size != drawn.size)
                complain(font, format, written, drawn, "size");
            else if (!close(writtenBytes, bytes, format))
                complain(font, format, written, drawn, "bitmap");
        }
    }
    source.close(Release::ContextFirst);
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    const bool write = argc == 3 && !std::strcmp(argv[1], "write");
    if (!write && (argc != 3 || std::strcmp(argv[1], "check") != 0))
        return 2;
    std::FILE *file = std::fopen(argv[2], write ? "wb" : "rb");
    if (!file)
        return 2;
    for (const char *face : faces) {
        for (const int32_t height : heights) {
            for (const int32_t weight : weights) {
                for (const uint8_t italic : slants) {
                    FontDescription font{height, weight, italic, {}};
                    std::strncpy(font.name, face, sizeof font.name - 1);
                    if (!run(font, write, file)) {
                        std::puts("the file ends early");
                        return 1;
                    }
                }
            }
        }
    }
    if (!write && std::fgetc(file) != EOF) {
        std::puts("the file goes on");
        return 1;
    }
    std::fclose(file);
    std::printf("%d glyphs, %d differ\n", glyphs, differing);
    return differing != 0;
}
