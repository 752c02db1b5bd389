// Blocks: rectangles whose rows are alike, drawn by one function each.
#include "kernels/simd/colours.h"
#include "kernels/simd/columns.h"
#include "kernels/simd/fill.h"
#include "kernels/simd/fused.h"

namespace ninefold::NINEFOLD_SET {
namespace {

// Colours, whatever has a gate, and what is not worth more.
template <FusedKey key>
[[gnu::noinline]] void rowsBlock(const Span &span, const Rows &rows)
{
    const ops::Factors factors;
    Span s; // what changes or is read per row, kept where it can stay in registers
    s.dst = span.dst, s.x = span.x, s.z = span.z;
    const Source &level = span.tex[0].level;
    s.tex[0].level = {level.pixels, level.maskU, level.maskV, level.shift};
    s.tex[0].u = {span.tex[0].u.start, span.tex[0].u.step}, s.tex[0].v = {span.tex[0].v.start, 0};
    u32 maskRow = rows.maskRow, &v = s.tex[0].v.start;
    for (int row = rows.count; row > 0; --row) {
        if constexpr (key.gate == Gate::mask || key.gate == Gate::zMask)
            s.maskRow = rs.drawMask[maskRow++ & 15];
        drawSpan<key>(s, 0, rows.columns, factors);
        s.dst += rows.pitch;
        s.z += rows.pitch;
        v = key.sample.motion == Motion::unit ? (v + 1) & s.tex[0].level.maskV : v + rows.stepV;
    }
}

// Texels side by side.
struct Texels : Tested {
    const u32 *at;
    NINEFOLD_INLINED explicit Texels(const u32 *first) : at(first) {}
    NINEFOLD_INLINED V get(int left, V &key) const { return key = left >= lanes ? load(at) : loadSome(at, left); }
    NINEFOLD_INLINED void advance() { at += lanes; }
};
struct SpriteTexels : Texels {
    using Sprite = void;
    using Texels::Texels;
};
// Those that a map vouches for.
struct RunTexels : SpriteTexels {
    static constexpr bool tests = false;
    using SpriteTexels::SpriteTexels;
};

// More than `lanes` texels side by side.
template <class Fetcher, int blend>
NINEFOLD_LANE void drawTexels(u32 *dst, const u32 *texels, int n, const ops::Factors &factors)
{
    Fetcher fetch(texels);
    const int rest = n & (lanes - 1);
    V last{};
    // Masked stores are slow on many processors without AVX-512. What does not fill a vector is drawn in one that ends with the
    // row, before anything of it is written.
    if (lanes <= 8 && rest)
        drawVector<blend>(dst + n - lanes, Later(last), Ungated{}, Fetcher(texels + n - lanes), factors);
    u32 *const end = dst + n;
    for (; end - dst >= 2 * lanes; dst += 2 * lanes) {
        drawVector<blend>(dst, Whole{}, Ungated{}, fetch, factors);
        fetch.advance();
        drawVector<blend>(dst + lanes, Whole{}, Ungated{}, fetch, factors);
        fetch.advance();
    }
    if (end - dst >= lanes) {
        drawVector<blend>(dst, Whole{}, Ungated{}, fetch, factors);
        fetch.advance();
        dst += lanes;
    }
    if (lanes <= 8 && rest)
        store(end - lanes, last);
    else if (rest)
        drawVector<blend>(dst, Begin{rest}, Ungated{}, fetch, factors);
}

// Sprites whose rows are more than a vector or go round the edge of the texture, in stripes that end there.
template <FusedKey key>
[[gnu::noinline]] void wideBlock(const Span &span, const Rows &rows)
{
    const Source t = span.tex[0].level;
    const ops::Factors factors;
    u32 column = span.tex[0].u.start & t.maskU;
    for (int first = 0, n; first < rows.columns; first += n, column = 0) {
        n = rows.columns - first;
        if (t.maskU - column < u32(n - 1))
            n = int(t.maskU - column) + 1;
        const auto forEachRow = [&](auto &&draw) NINEFOLD_INLINED {
            const u32 *const texels = t.pixels + column;
            u32 *dst = span.dst + first;
            u32 v = span.tex[0].v.start;
            for (int row = rows.count; row > 0; --row, dst += rows.pitch, v = (v + 1) & t.maskV)
                draw(dst, texels + (size_t(v) << t.shift));
        };
        if (n > lanes)
            forEachRow([&](u32 *dst, const u32 *texels)
                           NINEFOLD_INLINED { drawTexels<Fading<SpriteTexels, key>, key.blend>(dst, texels, n, factors); });
        else
            forEachRow([&](u32 *dst, const u32 *texels) NINEFOLD_INLINED {
                Fading<Texels, key> fetch(texels);
                drawPixels<key.blend>(dst, n, fetch, factors);
            });
    }
}

// Sprites.
template <FusedKey key>
void unitBlock(const Span &span, const Rows &rows)
{
    const Source t = span.tex[0].level;
    const int n = rows.columns;
    const u32 column = span.tex[0].u.start & t.maskU;
    const bool inside = t.maskU - column >= u32(n - 1);
    // Stripes of a small texture are short, and rows of one or two vectors of 16 lanes gain nothing.
    if ((lanes > 8 && n <= 2 * lanes) || (!inside && t.maskU < 63))
        return rowsBlock<key>(span, rows);
    if (n > lanes || !inside)
        return wideBlock<key>(span, rows);
    const ops::Factors factors;
    const u32 *const texels = t.pixels + column;
    u32 *dst = span.dst;
    u32 v = span.tex[0].v.start;
    if (n == lanes)
        for (int row = rows.count; row > 0; --row, dst += rows.pitch, v = (v + 1) & t.maskV)
            drawVector<key.blend>(dst, Whole{}, Ungated{}, Fading<Texels, key>(texels + (size_t(v) << t.shift)), factors);
    else
        for (int row = rows.count; row > 0; --row, dst += rows.pitch, v = (v + 1) & t.maskV)
            drawVector<key.blend>(dst, Begin{n}, Ungated{}, Fading<Texels, key>(texels + (size_t(v) << t.shift)), factors);
}

// Run-length rectangles: over holes, and through stretches that the map vouches for.
template <FusedKey key>
void runsBlock(const Span &span, const Rows &rows)
{
    const ops::Factors factors;
    const Source t = span.tex[0].level;
    const int8_t *const map = rs.tex0->runlengthMap;
    Span s;
    s.dst = span.dst, s.x = span.x, s.z = span.z, s.tex[0].level = t;
    u32 maskRow = rows.maskRow, v = span.tex[0].v.start;
    for (int row = rows.count; row > 0; --row, s.dst += rows.pitch, v = (v + 1) & t.maskV) {
        if constexpr (key.gate == Gate::mask || key.gate == Gate::zMask)
            s.maskRow = rs.drawMask[maskRow++ & 15];
        const size_t start = size_t(v) << t.shift;
        forEachRun(map + start, span.tex[0].u.start, t.maskU, rows.columns, [&](int pixel, u32 column, int n) NINEFOLD_INLINED {
            if constexpr (key.gate == Gate::none) {
                const u32 *const texels = t.pixels + start + column;
                Fading<RunTexels, key> fetch(texels);
                if (n > lanes)
                    drawTexels<Fading<RunTexels, key>, key.blend>(s.dst + pixel, texels, n, factors);
                else
                    drawPixels<key.blend>(s.dst + pixel, n, fetch, factors);
            } else {
                s.run = t.pixels + start + column - pixel;
                drawSpan<key>(s, pixel, n, factors);
            }
        });
        s.z += rows.pitch;
    }
}

template <class Fetcher, int blend>
void stretchBlock(const Span &span, const Rows &rows)
{
    const ops::Factors factors;
    Span s;
    s.tex[0].level = span.tex[0].level, s.tex[0].next = span.tex[0].next;
    typename Fetcher::Prepared prepared;
    constexpr int size = Columns<false>::size;
    for (int first = 0; first < rows.columns; first += size) {
        const int n = rows.columns - first < size ? rows.columns - first : size;
        prepared.make(span, first, n);
        u32 *dst = span.dst + first;
        u32 &v = s.tex[0].v.start = span.tex[0].v.start;
        for (int row = rows.count; row > 0; --row, dst += rows.pitch, v += rows.stepV) {
            Fetcher fetch(s, prepared);
            drawPixels<blend>(dst, n, fetch, factors);
        }
    }
}

void fillBlock(const Span &span, const Rows &rows)
{
    const bool whole = u32(rows.columns) == rows.pitch; // then the rows are one
    const int count = whole ? 1 : rows.count, columns = whole ? rows.columns * rows.count : rows.columns;
    u32 *dst = span.dst;
    for (int row = count; row > 0; --row, dst += rows.pitch)
        fillRow(dst, columns, rs.color[0]);
}

// A host's own operator at unit scale: its call is what costs.
void hostBlock(const Span &span, const Rows &rows)
{
    const PixelOperator func = rs.blendFunc;
    const Sampled &tex = span.tex[0];
    u32 *dst = span.dst;
    u32 v = tex.v.start;
    for (int row = rows.count; row > 0; --row, dst += rows.pitch, v = (v + 1) & tex.level.maskV) {
        const u32 *const texels = tex.level.pixels + (size_t(v) << tex.level.shift);
        for (int k = 0; k < rows.columns; ++k)
            if (const u32 texel = texels[(tex.u.start + u32(k)) & tex.level.maskU])
                dst[k] = func(dst[k], texel);
    }
}

// Those of a stretch, by what is made of its texels.
template <Reading reading>
using ColumnsOf =
    std::conditional_t<reading == Reading::point, PointColumns,
                       std::conditional_t<reading == Reading::mipBilinear, MipColumns, MixedColumns<reading == Reading::mix4>>>;

constexpr UsedParts used = usedParts();

} // namespace

constinit const std::array<Block, Blocks::count> blocks = arrayOf<Block, Blocks::count>([]<int index>() -> Block {
    constexpr FusedKey key = Blocks::of(index);
    if constexpr (!used.block[index])
        return nullptr;
    else if constexpr (isFill(key))
        return fillBlock;
    else if constexpr (key.blend == NINEFOLD_BLEND_CUSTOM)
        return hostBlock;
    else if constexpr (key.sample.reading == Reading::run)
        return runsBlock<key>;
    else if constexpr (key.gate != Gate::none || key.sample.reading == Reading::flat)
        return rowsBlock<key>;
    else if constexpr (key.sample.motion == Motion::unit)
        return unitBlock<key>;
    else
        return stretchBlock<Fading<ColumnsOf<key.sample.reading>, key>, key.blend>;
});

} // namespace ninefold::NINEFOLD_SET
