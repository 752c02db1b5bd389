// Builds without a rasteriser: every glyph is empty.
#if !NINEFOLD_GLYPHS

#include "glyph/page932.h"
#include "glyph/source.h"

namespace ninefold::glyph {
namespace {

class NoSource final : public Source {
public:
    void open(const FontDescription &) override {}
    bool isLeadByte(uint8_t byte) override { return isLeadByte932(byte); }
    uint32_t outline(uint32_t, Format, Metrics &metrics, uint32_t, uint8_t *) override
    {
        metrics = {};
        return 0;
    }
    void close(Release) override {}
};

constinit NoSource source;

} // namespace

Source &platformSource() { return source; }

} // namespace ninefold::glyph

#endif
