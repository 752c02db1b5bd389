// The common draws, each in one call.
#include <ninefold/kit/draws.h>

#include "call.h"
#include "codes.h"
#include "error.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

using nfk::fail;
using ninefold::Axes;

namespace {

constexpr NfkOptions defaults = {NINEFOLD_BLEND_ALPHA_FAST,
                                 NINEFOLD_FILTER_POINT,
                                 NINEFOLD_SHAHEI_NONE,
                                 NINEFOLD_MULTI_NONE,
                                 NINEFOLD_MULTI_OP_MUL,
                                 -1,
                                 0,
                                 NINEFOLD_CURVE_LINEAR,
                                 255,
                                 255,
                                 256,
                                 256,
                                 0,
                                 0xFFFFFFFF,
                                 {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},
                                 1,
                                 1,
                                 nullptr,
                                 {0, 0, 0, 0},
                                 nullptr};

// The fields of rs from one to another, where they are wanted, put back at the end of the scope.
template <size_t first, size_t end>
class Fields {
    alignas(16) char bytes[end - first];
    const bool wanted;

    // In pieces that do not overlap: a load across two stores that are still under way would wait for both.
    static void copy(char *to, const char *from)
    {
        constexpr size_t size = end - first, tail = size / 16 * 16;
#pragma GCC unroll 16
        for (size_t at = 0; at < tail; at += 16)
            std::memcpy(to + at, from + at, 16);
        if constexpr (size & 8)
            std::memcpy(to + tail, from + tail, 8);
        if constexpr (size & 4)
            std::memcpy(to + size - 4, from + size - 4, 4);
        static_assert(size % 4 == 0);
    }

public:
    explicit Fields(bool kept) : wanted(kept)
    {
        if (wanted)
            copy(bytes, reinterpret_cast<const char *>(&rs) + first);
    }
    ~Fields()
    {
        if (wanted)
            copy(reinterpret_cast<char *>(&rs) + first, bytes);
    }
    Fields(const Fields &) = delete;
    Fields &operator=(const Fields &) = delete;
};
// What every draw sets, and what only some do.
using Triangle = Fields<offsetof(RenderState, zRef), offsetof(RenderState, uv1)>;
using Corners = Fields<offsetof(RenderState, zRef), offsetof(RenderState, vertex) + 2 * sizeof(Vertex)>;
using CornerTexels = Fields<offsetof(RenderState, uv0), offsetof(RenderState, uv0) + 2 * sizeof(TexCoord)>;
using FirstTexture = Fields<offsetof(RenderState, tex0), offsetof(RenderState, uv1)>;
using Factors = Fields<offsetof(RenderState, blendAlpha), offsetof(RenderState, scanShift)>;
using Second = Fields<offsetof(RenderState, uv1), offsetof(RenderState, uv2)>;
using RulePicture = Fields<offsetof(RenderState, uv2), offsetof(RenderState, lineTable0)>;
using Operators = Fields<offsetof(RenderState, writeMask), offsetof(RenderState, drawMask)>;
using Stipple = Fields<offsetof(RenderState, drawMask), offsetof(RenderState, ruleThreshold)>;
using RuleTest = Fields<offsetof(RenderState, ruleThreshold), offsetof(RenderState, prescaleMode)>;
using Mosaic = Fields<offsetof(RenderState, mosaicSize1), sizeof(RenderState)>;

// The library's operators, by the setters that know them. Looked up once.
PixelOperator blendOperators[32];
PixelOperator multiOperators[2][32];

void findOperators()
{
    const Operators operators(true);
    const int32_t blend = rs.blendMode, multi = rs.blendModeMulti, bank = rs.prescaleMultiMode;
#define FIND(name, value, word, meaning) SetBlendMode(value), blendOperators[value] = rs.blendFunc;
    NINEFOLD_BLEND_OPERATORS(FIND)
#undef FIND
    for (int32_t second = 0; second < 2; ++second) {
        SetPrescaleMultiMode(second);
#define FIND(name, value, word, meaning) SetBlendModeMulti(value), multiOperators[second][value] = rs.multiFunc;
        NINEFOLD_MULTI_OPS(FIND)
#undef FIND
    }
    rs.blendMode = blend;
    rs.blendModeMulti = multi;
    rs.prescaleMultiMode = bank;
}

// Positions are below 2^29 in size, so that a far corner and an origin still fit.
constexpr bool near(int32_t value) { return uint32_t(value) + (1u << 29) <= 1u << 30; }
constexpr bool near(const NfkRect &rect) { return near(rect.x) && near(rect.y) && near(rect.width) && near(rect.height); }
// A source's size in 16.16 keeps its sign.
constexpr bool fits(const NfkRect &source)
{
    return uint32_t(source.width) + 0x7FFF <= 0xFFFE && uint32_t(source.height) + 0x7FFF <= 0xFFFE;
}

NfkRect whole(const Texture *texture) { return {0, 0, int32_t(texture->origWidth), int32_t(texture->origHeight)}; }

TexCoord texel(int32_t u, int32_t v) { return {int32_t(uint32_t(u) << 16), int32_t(uint32_t(v) << 16)}; }

// The two opposite corners of a part of a texture.
void corners(TexCoord *uv, const NfkRect &source)
{
    uv[0] = texel(source.x, source.y);
    uv[1] = texel(source.x + source.width, source.y + source.height);
}

void place(const NfkRect &target)
{
    rs.vertex[0] = {target.x, target.y, 0};
    rs.vertex[1] = {target.x + target.width, target.y + target.height, 0};
}

bool badRect(const char *function, const char *what, uint32_t i, const NfkRect &rect, const char *remedy)
{
    return fail("%s: %s %u is %d, %d, %d x %d; %s", function, what, i, rect.x, rect.y, rect.width, rect.height, remedy);
}

bool checkTargets(const char *function, uint32_t count, const NfkRect *targets)
{
    for (uint32_t i = 0; i < count; ++i)
        if (!near(targets[i]))
            return badRect(function, "target", i, targets[i], "positions and sizes are below 2^29");
    return true;
}

bool checkSources(const char *function, uint32_t count, const NfkRect *sources)
{
    for (uint32_t i = 0; i < count; ++i)
        if (!fits(sources[i]))
            return badRect(function, "source", i, sources[i], "a source is less than 32768 texels wide and high");
    return true;
}

bool missing(const char *function, const char *what) { return fail("%s: %s", function, what); }

// One kind of draw with its options: checked, with the kernel at hand.
struct Draw {
    const char *function;
    const NfkOptions &options;
    Texture *texture; // null: colours
    Axes axes;
    uint32_t code = 0;
    DrawFunc kernel = nullptr;
    bool rest = false; // whether fields are wanted that most draws do without
    bool mosaic = false;

    Draw(const char *caller, const NfkOptions *given, Texture *source, uint8_t shape, uint8_t rectOpt, int32_t filter)
        : function(caller), options(given ? *given : defaults),
          texture(source), axes{shape,
                                NINEFOLD_PERS_OFF,
                                NINEFOLD_RULE_OFF,
                                options.prescale == 256 ? uint8_t(NINEFOLD_PRESCALE_OFF) : uint8_t(NINEFOLD_PRESCALE_ON),
                                uint8_t(filter),
                                rectOpt,
                                uint8_t(options.shahei),
                                uint8_t(options.blend),
                                uint8_t(options.multi)}
    {}

    // False, with a text, where something is missing.
    bool ready()
    {
        const NfkOptions &o = options;
        if (!rs.dstPixels)
            return missing(function, "rs has no frame buffer; call nfkCreateScreen or nfkSelectScreen first");
        // Most draws have nothing of what follows.
        rest = axes.blend > NINEFOLD_BLEND_SCREEN || axes.multi != NINEFOLD_MULTI_NONE || axes.rule || o.stipple >= 0;
        mosaic = axes.filter == NINEFOLD_FILTER_MOSAIC;
        if ((rest || mosaic) && !restReady())
            return false;
        if (((o.blend | o.shahei | o.multi | o.filter) & ~31) != 0)
            return fail("%s: blend %d, filter %d, Shahei %d, multi %d: one of them is no value of its axis (ninefold/axes.h)",
                        function, o.blend, o.filter, o.shahei, o.multi);
        if ((o.blendAlpha | o.blendAlphaRgb | o.zRef) > 255 || o.prescale > 256 || o.prescaleMulti > 256)
            return fail("%s: blendAlpha %u, blendAlphaRgb %u and zRef %u go to 255, prescale %u and prescaleMulti %u to 256",
                        function, o.blendAlpha, o.blendAlphaRgb, o.zRef, o.prescale, o.prescaleMulti);
        if (texture && ninefold::hasColoursOnly(axes.filter))
            return fail("%s: filter %d draws colours and no texture; nfkFill and nfkGradient do, and nfkMesh without a texture",
                        function, axes.filter);
        if (axes.shahei != NINEFOLD_SHAHEI_NONE && !planesReady())
            return false;
        if (ninefold::readsLevels(axes.filter) && texture && texture->mipCount < 2)
            return fail("%s: filter %d reads a mip chain and the texture has none; call CreateMipmapTexture", function,
                        axes.filter);
        code = codeOf(axes);
        kernel = nfk::kernelOf(function, code);
        return kernel != nullptr;
    }

    bool planesReady() const
    {
        const bool plane = ninefold::marksPlane(axes.shahei),
                   priority = ninefold::testsPriority(axes.shahei) || axes.shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY;
        if (plane && !rs.shaheiPlane)
            return fail("%s: Shahei %d wants rs.shaheiPlane, which is null; a screen of the kit has it", function, axes.shahei);
        if (priority && !rs.zBuffer)
            return fail("%s: Shahei %d wants rs.zBuffer, which is null; a screen of the kit has it", function, axes.shahei);
        return true;
    }

    [[gnu::noinline]] bool restReady()
    {
        const NfkOptions &o = options;
        if (!multiOperators[0][NINEFOLD_MULTI_OP_SECOND])
            findOperators();
        if (axes.blend > NINEFOLD_BLEND_CUSTOM) {
            if (axes.blend >= 32 || o.blend >= 32 || !blendOperators[axes.blend])
                return fail("%s: blend %d is none; ninefold/axes.h has NINEFOLD_BLEND_...", function, o.blend);
            axes.blend = NINEFOLD_BLEND_CUSTOM;
        } else if (axes.blend == NINEFOLD_BLEND_CUSTOM && !o.blendFunc)
            return missing(function, "NINEFOLD_BLEND_CUSTOM calls options->blendFunc, which is null");
        if (axes.multi != NINEFOLD_MULTI_NONE) {
            if (o.multiOp != -1 && (o.multiOp < 0 || o.multiOp >= 32 || !multiOperators[0][o.multiOp]))
                return fail("%s: multiOp %d is none; ninefold/axes.h has NINEFOLD_MULTI_OP_..., and -1 is multiFunc of rs",
                            function, o.multiOp);
            if (o.multiOp == -1 && !rs.multiFunc)
                return missing(function, "multiOp -1 is multiFunc of rs, which is null");
            if (axes.multi == NINEFOLD_MULTI_TEXTURE && (!o.tex1 || !o.tex1->pixels))
                return missing(function, "NINEFOLD_MULTI_TEXTURE wants options->tex1, which is null or has no pixels");
            if (axes.multi == NINEFOLD_MULTI_TEXTURE && ninefold::readsLevels(axes.filter) && o.tex1->mipCount < 2)
                return fail("%s: filter %d reads mip chains and options->tex1 has none; call CreateMipmapTexture", function,
                            axes.filter);
            if (!fits(o.source1))
                return badRect(function, "source1", 0, o.source1, "a source is less than 32768 texels wide and high");
        }
        if (o.stipple > NINEFOLD_STIPPLE_ODD_COLUMNS_AND_ROWS)
            return fail("%s: stipple %d is none; they go to %d, and -1 is drawMask of rs", function, o.stipple,
                        NINEFOLD_STIPPLE_ODD_COLUMNS_AND_ROWS);
        if (mosaic && (o.mosaicSize1 < 1 || o.mosaicSize < 1))
            return fail("%s: mosaic sizes %d and %d are at least 1", function, o.mosaicSize1, o.mosaicSize);
        return true;
    }

    NfkRect secondSource() const { return options.source1.width == 0 ? whole(options.tex1) : options.source1; }

    // Stores what the options say. The fields were kept before.
    void set() const
    {
        if (texture)
            rs.tex0 = texture;
        rs.zRef = options.zRef;
        rs.blendAlpha = options.blendAlpha;
        rs.blendAlphaRgb = options.blendAlphaRgb;
        rs.prescale = options.prescale;
        rs.prescaleMulti = options.prescaleMulti;
        if (mosaic) {
            rs.mosaicSize1 = options.mosaicSize1;
            rs.mosaicSize = options.mosaicSize;
        }
        if (axes.multi == NINEFOLD_MULTI_TEXTURE)
            rs.tex1 = options.tex1;
        else if (ninefold::readsLevels(axes.filter))
            rs.tex1 = nullptr; // would be read, and nobody has looked at it
        if (rest)
            setRest();
    }

    [[gnu::noinline]] void setRest() const
    {
        const NfkOptions &o = options;
        rs.writeMask = o.writeMask;
        if (axes.blend == NINEFOLD_BLEND_CUSTOM)
            rs.blendFunc = o.blend == NINEFOLD_BLEND_CUSTOM ? o.blendFunc : blendOperators[o.blend];
        if (axes.multi != NINEFOLD_MULTI_NONE && o.multiOp != -1)
            rs.multiFunc = multiOperators[o.prescaleMulti != 256][o.multiOp];
        if (o.stipple >= 0)
            SetPresetDrawMask(o.stipple);
        if (texture)
            std::memcpy(rs.color, o.color, sizeof rs.color);
    }

    // Keeps rs, sets it, and calls `draw`, which sets the rest and calls the kernel as often as it likes.
    template <class Body>
    bool run(const Body &draw) const
    {
        const bool triangle = axes.shape == NINEFOLD_SHAPE_TRIANGLE, picture = !triangle && texture;
        const Triangle vertices(triangle);
        const Corners corners(!triangle);
        const CornerTexels texels(picture);
        const FirstTexture first(picture);
        const Factors factors(true);
        if (!rest && !mosaic && !ninefold::readsLevels(axes.filter)) {
            set();
            draw();
        } else
            runKeepingMore(draw);
        return true;
    }

    template <class Body>
    [[gnu::noinline]] void runKeepingMore(const Body &draw) const
    {
        const Second second(axes.multi == NINEFOLD_MULTI_TEXTURE || ninefold::readsLevels(axes.filter));
        const Operators operators(rest);
        const Stipple stipple(options.stipple >= 0);
        const RulePicture rulePicture(axes.rule);
        const RuleTest ruleTest(axes.rule);
        const Mosaic sizes(mosaic);
        set();
        draw();
    }

    void callKernel() const { nfk::call(code, kernel); }
};

bool textureReady(const char *function, const Texture *texture)
{
    return (texture && texture->pixels) || missing(function, "the texture is null or has no pixels");
}

// Sprites and stretched pictures: targets by a function of the index.
template <class Target>
int drawPictures(Draw &draw, uint32_t count, const NfkRect *sources, const uint32_t *colors, const Target &target)
{
    const NfkRect all = whole(draw.texture);
    if (sources ? !checkSources(draw.function, count, sources) : !checkSources(draw.function, 1, &all))
        return 0;
    if (colors) {
        if (draw.options.multi != NINEFOLD_MULTI_NONE && draw.options.multi != NINEFOLD_MULTI_COLOUR)
            return fail("%s: colors go through NINEFOLD_MULTI_COLOUR, and options->multi is %d", draw.function,
                        draw.options.multi);
        draw.axes.multi = NINEFOLD_MULTI_COLOUR;
        draw.axes.prescale = NINEFOLD_PRESCALE_ON;
    }
    if (!draw.ready())
        return 0;
    const bool stretched = draw.axes.rectOpt == NINEFOLD_RECT_STRETCH, second = draw.axes.multi == NINEFOLD_MULTI_TEXTURE;
    return draw.run([&] {
        if (second)
            corners(rs.uv1, draw.secondSource());
        for (uint32_t i = 0; i < count; ++i) {
            const NfkRect &source = sources ? sources[i] : all;
            const NfkRect rect = target(i, source);
            place(rect);
            if (stretched)
                corners(rs.uv0, source);
            else
                rs.uv0[0] = texel(source.x, source.y);
            if (colors) {
                const uint32_t alpha = colors[i] >> 24;
                rs.color[0] = colors[i];
                rs.prescale = draw.options.prescale * (alpha + (alpha >> 7)) >> 8;
            }
            draw.callKernel();
        }
    });
}

} // namespace

NfkOptions nfkOptions(void) { return defaults; }

int nfkSprites(Texture *texture, uint32_t count, const NfkPoint *positions, const NfkRect *sources, const uint32_t *colors,
               const NfkOptions *options)
{
    if (!textureReady("nfkSprites", texture))
        return 0;
    if (!positions && count > 0)
        return missing("nfkSprites", "the positions are null");
    for (uint32_t i = 0; i < count; ++i)
        if (!near(positions[i].x) || !near(positions[i].y))
            return fail("nfkSprites: position %u is %d, %d; positions are below 2^29", i, positions[i].x, positions[i].y);
    Draw draw("nfkSprites", options, texture, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT,
              options ? options->filter : defaults.filter);
    return drawPictures(draw, count, sources, colors, [positions](uint32_t i, const NfkRect &source) {
        return NfkRect{positions[i].x, positions[i].y, source.width, source.height};
    });
}

int nfkSprite(Texture *texture, int32_t x, int32_t y, const NfkRect *source, const NfkOptions *options)
{
    if (!textureReady("nfkSprite", texture))
        return 0;
    if (!near(x) || !near(y))
        return fail("nfkSprite: the position is %d, %d; positions are below 2^29", x, y);
    Draw draw("nfkSprite", options, texture, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT,
              options ? options->filter : defaults.filter);
    return drawPictures(draw, 1, source, nullptr, [x, y](uint32_t, const NfkRect &part) {
        return NfkRect{x, y, part.width, part.height};
    });
}

int nfkPictures(Texture *texture, uint32_t count, const NfkRect *targets, const NfkRect *sources, const uint32_t *colors,
                const NfkOptions *options)
{
    if (!textureReady("nfkPictures", texture))
        return 0;
    if (!targets && count > 0)
        return missing("nfkPictures", "the targets are null");
    if (!checkTargets("nfkPictures", count, targets))
        return 0;
    Draw draw("nfkPictures", options, texture, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH,
              options ? options->filter : defaults.filter);
    return drawPictures(draw, count, sources, colors, [targets](uint32_t i, const NfkRect &) { return targets[i]; });
}

int nfkPicture(Texture *texture, const NfkRect *target, const NfkRect *source, const NfkOptions *options)
{
    if (!textureReady("nfkPicture", texture))
        return 0;
    if (!target)
        return missing("nfkPicture", "the target is null");
    if (!checkTargets("nfkPicture", 1, target))
        return 0;
    Draw draw("nfkPicture", options, texture, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH,
              options ? options->filter : defaults.filter);
    return drawPictures(draw, 1, source, nullptr, [target](uint32_t, const NfkRect &) { return *target; });
}

int nfkTurned(Texture *texture, const NfkTurn *turn, const NfkRect *source, const NfkOptions *options)
{
    if (!textureReady("nfkTurned", texture))
        return 0;
    if (!turn)
        return missing("nfkTurned", "the turn is null");
    const NfkRect part = source ? *source : whole(texture);
    if (!checkSources("nfkTurned", 1, &part))
        return 0;
    const double angle = turn->angle * (3.14159265358979323846 / 180), cosine = std::cos(angle), sine = std::sin(angle);
    const double left = -double(turn->pivotX) * turn->scaleX, right = (part.width - double(turn->pivotX)) * turn->scaleX;
    const double top = -double(turn->pivotY) * turn->scaleY, bottom = (part.height - double(turn->pivotY)) * turn->scaleY;
    const double offsets[4][2] = {{left, top}, {right, top}, {left, bottom}, {right, bottom}};
    Vertex vertices[4];
    for (int i = 0; i < 4; ++i) {
        const double x = turn->x + offsets[i][0] * cosine - offsets[i][1] * sine;
        const double y = turn->y + offsets[i][0] * sine + offsets[i][1] * cosine;
        if (!(std::fabs(x) < 1 << 29 && std::fabs(y) < 1 << 29))
            return fail("nfkTurned: a corner lies at %g, %g; positions are below 2^29 in size", x, y);
        vertices[i] = {int32_t(std::lround(x)), int32_t(std::lround(y)), 0};
    }
    Draw draw("nfkTurned", options, texture, NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE,
              options ? options->filter : defaults.filter);
    if (!draw.ready())
        return 0;
    const auto four = [](TexCoord *uv, const NfkRect &rect) {
        uv[0] = texel(rect.x, rect.y), uv[1] = texel(rect.x + rect.width, rect.y);
        uv[2] = texel(rect.x, rect.y + rect.height), uv[3] = texel(rect.x + rect.width, rect.y + rect.height);
    };
    TexCoord first[4], second[4] = {};
    four(first, part);
    if (draw.axes.multi == NINEFOLD_MULTI_TEXTURE)
        four(second, draw.secondSource());
    return draw.run([&] {
        for (int half = 0; half < 2; ++half) {
            // Top left, top right, bottom left, and the three without the first.
            std::copy(vertices + half, vertices + half + 3, rs.vertex);
            std::copy(first + half, first + half + 3, rs.uv0);
            if (draw.axes.multi == NINEFOLD_MULTI_TEXTURE)
                std::copy(second + half, second + half + 3, rs.uv1);
            if (draw.axes.multi == NINEFOLD_MULTI_CORNERS)
                std::copy(draw.options.color + half, draw.options.color + half + 3, rs.color);
            draw.callKernel();
        }
    });
}

int nfkTransition(Texture *texture, const NfkRect *target, const NfkRect *source, Texture *rule, float t, int32_t width,
                  const NfkOptions *options)
{
    if (!textureReady("nfkTransition", texture))
        return 0;
    if (!rule || !rule->pixels)
        return missing("nfkTransition", "the rule texture is null or has no pixels");
    if (!(t >= 0 && t <= 1) || width < 0 || width > 255)
        return fail("nfkTransition: time %g goes from 0 to 1, width %d from 0 to 255", double(t), width);
    const NfkRect part = source ? *source : whole(texture);
    const NfkRect rect = target ? *target : NfkRect{0, 0, part.width, part.height};
    const NfkRect ruleRect = whole(rule);
    if (!checkTargets("nfkTransition", 1, &rect) || !checkSources("nfkTransition", 1, &part) ||
        !checkSources("nfkTransition", 1, &ruleRect))
        return 0;
    Draw draw("nfkTransition", options, texture, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH,
              options ? options->filter : defaults.filter);
    draw.axes.rule = NINEFOLD_RULE_ON;
    if (!draw.ready())
        return 0;
    return draw.run([&] {
        place(rect);
        corners(rs.uv0, part);
        if (draw.axes.multi == NINEFOLD_MULTI_TEXTURE)
            corners(rs.uv1, draw.secondSource());
        rs.tex2 = rule;
        corners(rs.uv2, ruleRect);
        // From 255, where no rule value is drawn, to where all are: a hard edge too has to pass rule value 0.
        rs.ruleThreshold = 255 - int32_t(std::lround(double(t) * (255 + std::max(width, 1))));
        rs.ruleWidth = width;
        rs.ruleCurve = draw.options.ruleCurve;
        draw.callKernel();
    });
}

int nfkLines(uint32_t count, const NfkPoint *ends, const uint32_t *colors, const NfkOptions *options)
{
    if ((!ends || !colors) && count > 0)
        return missing("nfkLines", "the ends or the colours are null");
    for (size_t i = 0; i < size_t{2} * count; ++i)
        if (!near(ends[i].x) || !near(ends[i].y))
            return fail("nfkLines: end %llu is at %d, %d; positions are below 2^29", static_cast<unsigned long long>(i),
                        ends[i].x, ends[i].y);
    Draw draw("nfkLines", options, nullptr, NINEFOLD_SHAPE_LINE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_FLAT);
    if (!draw.ready())
        return 0;
    return draw.run([&] {
        for (size_t i = 0; i < count; ++i) {
            rs.vertex[0] = {ends[2 * i].x, ends[2 * i].y, 0};
            rs.vertex[1] = {ends[2 * i + 1].x, ends[2 * i + 1].y, 0};
            rs.color[0] = colors[i];
            draw.callKernel();
        }
    });
}

int nfkLine(int32_t x0, int32_t y0, int32_t x1, int32_t y1, uint32_t color, const NfkOptions *options)
{
    const NfkPoint ends[] = {{x0, y0}, {x1, y1}};
    return nfkLines(1, ends, &color, options);
}

int nfkFills(uint32_t count, const NfkRect *targets, const uint32_t *colors, const NfkOptions *options)
{
    if ((!targets || !colors) && count > 0)
        return missing("nfkFills", "the targets or the colours are null");
    if (!checkTargets("nfkFills", count, targets))
        return 0;
    Draw draw("nfkFills", options, nullptr, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_FLAT);
    if (!draw.ready())
        return 0;
    return draw.run([&] {
        for (uint32_t i = 0; i < count; ++i) {
            place(targets[i]);
            rs.color[0] = colors[i];
            draw.callKernel();
        }
    });
}

int nfkFill(const NfkRect *target, uint32_t color, const NfkOptions *options) { return nfkFills(1, target, &color, options); }

int nfkGradient(const NfkRect *target, const uint32_t colors[4], const NfkOptions *options)
{
    if (!target || !colors)
        return missing("nfkGradient", "the target or the colours are null");
    if (!checkTargets("nfkGradient", 1, target))
        return 0;
    Draw draw("nfkGradient", options, nullptr, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_GOURAUD);
    if (!draw.ready())
        return 0;
    return draw.run([&] {
        place(*target);
        std::memcpy(rs.color, colors, sizeof rs.color);
        draw.callKernel();
    });
}

int nfkMesh(Texture *texture, uint32_t vertexCount, const NfkMeshVertex *vertices, uint32_t indexCount, const uint32_t *indices,
            const NfkOptions *options)
{
    if (texture && !texture->pixels)
        return missing("nfkMesh", "the texture has no pixels");
    if (!vertices && vertexCount > 0)
        return missing("nfkMesh", "the vertices are null");
    const uint32_t corners = indices ? indexCount : vertexCount;
    if (corners % 3)
        return fail("nfkMesh: %u %s make no whole triangles; they come in threes", corners, indices ? "indices" : "vertices");
    const bool perspective = texture && options && options->perspective;
    for (uint32_t i = 0; i < vertexCount; ++i) {
        const NfkMeshVertex &v = vertices[i];
        if (!near(v.x) || !near(v.y) || (perspective && v.z < 1))
            return fail(
                "nfkMesh: vertex %u is at %d, %d, depth %d; positions are below 2^29, depths under perspective at least 1", i,
                v.x, v.y, v.z);
    }
    for (uint32_t i = 0; indices && i < indexCount; ++i)
        if (indices[i] >= vertexCount)
            return fail("nfkMesh: index %u is %u; there are %u vertices", i, indices[i], vertexCount);
    Draw draw("nfkMesh", options, texture, NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE,
              !texture  ? NINEFOLD_FILTER_GOURAUD
              : options ? options->filter
                        : defaults.filter);
    draw.axes.pers = perspective ? NINEFOLD_PERS_ON : NINEFOLD_PERS_OFF;
    if (!draw.ready())
        return 0;
    const bool colours = !texture || draw.axes.multi == NINEFOLD_MULTI_CORNERS;
    return draw.run([&] {
        for (uint32_t i = 0; i < corners; i += 3) {
            for (uint32_t k = 0; k < 3; ++k) {
                const NfkMeshVertex &v = vertices[indices ? indices[i + k] : i + k];
                rs.vertex[k] = {v.x, v.y, v.z};
                rs.uv0[k] = {v.u, v.v};
                if (draw.axes.multi == NINEFOLD_MULTI_TEXTURE)
                    rs.uv1[k] = {v.u, v.v};
                if (colours)
                    rs.color[k] = v.color;
            }
            draw.callKernel();
        }
    });
}
