// Each draw of the kit against the same draw by hand, by setters and stores into rs: the same bits on the screen and in the planes,
// and an rs that is as it was.
#include <ninefold/kit.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

std::mt19937 engine(20);

int32_t from(int32_t low, int32_t high) { return std::uniform_int_distribution<int32_t>(low, high)(engine); }
template <size_t n>
int32_t oneOf(const int32_t (&values)[n])
{
    return values[size_t(from(0, int32_t(n) - 1))];
}

#define VALUE(name, value, word, meaning) value,
constexpr int32_t blends[] = {NINEFOLD_BLENDS(VALUE) NINEFOLD_BLEND_OPERATORS(VALUE)}, shaheis[] = {NINEFOLD_SHAHEIS(VALUE)},
                  filters[] = {NINEFOLD_FILTERS(VALUE)}, multis[] = {NINEFOLD_MULTIS(VALUE)}, ops[] = {NINEFOLD_MULTI_OPS(VALUE)},
                  stipples[] = {-1, -1, -1, 100, NINEFOLD_STIPPLES(VALUE)}, curves[] = {NINEFOLD_CURVES(VALUE)};
#undef VALUE

uint32_t mixOperator(uint32_t first, uint32_t second) { return (first ^ second << 3) + 0x01020304; }
uint32_t otherOperator(uint32_t first, uint32_t second) { return first * 3 + second; }

constexpr int32_t width = 60, height = 40;

struct Drawing {
    NfkScreen *screen, *byHand;
    Texture *texture, *second, *rule;
    RenderState before;

    Drawing() : screen(nfkCreateScreen(width, height)), byHand(nfkCreateScreen(width, height))
    {
        rs.originX = rs.originY = 0;
        texture = filled(50, 20), second = filled(16, 11), rule = filled(30, 30);
    }
    ~Drawing()
    {
        for (Texture *each : {texture, second, rule})
            DeleteTexture(each);
        nfkReleaseScreen(screen);
        nfkReleaseScreen(byHand);
    }

    static Texture *filled(int32_t w, int32_t h)
    {
        Texture *const made = CreateTexture(unsigned(w), unsigned(h));
        for (uint32_t i = 0; i < made->width * made->height; ++i)
            made->pixels[i] = from(0, 3) ? engine() | (from(0, 1) ? 0xFF000000 : 0) : 0;
        CreateMipmapTexture(made);
        return made;
    }

    // Both screens alike, and an rs whose fields, where a draw may read them, hold nothing that it could use.
    void begin()
    {
        for (uint32_t i = 0; i < screen->texture->width * screen->texture->height; ++i) {
            screen->texture->pixels[i] = byHand->texture->pixels[i] = engine();
            screen->zBuffer[i] = byHand->zBuffer[i] = uint8_t(engine());
            if (i % 16 == 0)
                screen->shaheiPlane[i / 16] = byHand->shaheiPlane[i / 16] = uint16_t(engine() & engine());
        }
        for (size_t at = offsetof(RenderState, zRef); at < offsetof(RenderState, prescaleMode); at += 4)
            *reinterpret_cast<uint32_t *>(reinterpret_cast<char *>(&rs) + at) = engine();
        for (int32_t *mode : {&rs.prescaleMode, &rs.prescaleMultiMode, &rs.filterMode, &rs.rectOptMode, &rs.shaheiMode,
                              &rs.blendMode, &rs.blendModeMulti, &rs.multiMode, &rs.shapeMode, &rs.ruleAlphaMode, &rs.persMode})
            *mode = int32_t(engine());
        rs.mosaicSize = rs.mosaicSize1 = -5;
        rs.mipTex = rs.mipTex1 = texture->mip[1];
        rs.mipFrac = from(0, 255), rs.mipFrac1 = from(0, 255), rs.mipRatio = from(0, 1 << 20);
        rs.scanShift = nullptr;
        rs.multiFunc = otherOperator;
        rs.originX = from(-5, 5), rs.originY = from(-5, 5);
        nfkSelectScreen(screen);
        rs.clipLeft = from(0, 20), rs.clipTop = from(0, 20);
        rs.clipRight = from(40, width), rs.clipBottom = from(30, height);
        before = rs;
    }

    NfkOptions options(bool simple)
    {
        NfkOptions o = nfkOptions();
        if (simple)
            return o;
        o.blend = oneOf(blends);
        o.filter = from(0, 1) ? int32_t(NINEFOLD_FILTER_POINT) : oneOf(filters);
        o.shahei = from(0, 1) ? int32_t(NINEFOLD_SHAHEI_NONE) : oneOf(shaheis);
        o.multi = from(0, 1) ? int32_t(NINEFOLD_MULTI_NONE) : oneOf(multis);
        o.multiOp = from(0, 7) ? oneOf(ops) : -1;
        o.stipple = oneOf(stipples);
        o.ruleCurve = oneOf(curves);
        o.blendAlpha = uint32_t(from(0, 255)), o.blendAlphaRgb = uint32_t(from(0, 255));
        o.prescale = uint32_t(from(0, 2) ? 256 : from(0, 256)), o.prescaleMulti = uint32_t(from(0, 1) ? 256 : from(0, 255));
        o.zRef = uint32_t(from(0, 255)), o.writeMask = engine();
        for (uint32_t &color : o.color)
            color = engine();
        o.mosaicSize1 = from(1, 9), o.mosaicSize = from(1, 9);
        o.tex1 = second;
        if (from(0, 1))
            o.source1 = {from(-9, 9), from(-9, 9), from(1, 40), from(-20, 40)};
        o.blendFunc = mixOperator;
        return o;
    }
};

// What the options say, by the library's own setters. The draw code.
uint32_t set(const NfkOptions &o, Texture *texture, int32_t shape, int32_t rectOpt, int32_t filter, int32_t rule = 0,
             int32_t pers = 0, bool prescales = false)
{
    SetShapeMode(shape), SetRectOptMode(rectOpt), SetFilterMode(filter), SetRuleAlphaMode(rule), SetPersMode(pers);
    SetShaheiMode(o.shahei), SetMultiMode(o.multi), SetPrescaleMode(prescales || o.prescale != 256);
    SetBlendMode(o.blend);
    if (o.blend == NINEFOLD_BLEND_CUSTOM)
        rs.blendFunc = o.blendFunc;
    if (o.multiOp >= 0) {
        SetPrescaleMultiMode(o.prescaleMulti != 256);
        SetBlendModeMulti(o.multiOp);
    }
    if (o.stipple >= 0)
        SetPresetDrawMask(o.stipple);
    rs.blendAlpha = o.blendAlpha, rs.blendAlphaRgb = o.blendAlphaRgb;
    rs.prescale = o.prescale, rs.prescaleMulti = o.prescaleMulti;
    rs.zRef = o.zRef, rs.writeMask = o.writeMask;
    rs.mosaicSize1 = o.mosaicSize1, rs.mosaicSize = o.mosaicSize;
    rs.tex0 = texture;
    rs.tex1 = o.multi == NINEFOLD_MULTI_TEXTURE ? o.tex1 : nullptr;
    if (texture)
        std::copy(o.color, o.color + 4, rs.color);
    // CreateDrawCodeSub drops what colours do not have; the kit says so, and a picture is not drawn by a filter of colours.
    const bool colours = filter == NINEFOLD_FILTER_FLAT || filter == NINEFOLD_FILTER_GOURAUD;
    if (colours && (texture || o.multi != NINEFOLD_MULTI_NONE))
        return 3;
    return uint32_t(CreateDrawCodeSub(pers, rule, rs.prescaleMode, filter, rectOpt, o.shahei, rs.blendMode, o.multi, shape));
}

void uvOf(TexCoord *uv, const NfkRect &part)
{
    uv[0] = {part.x * 65536, part.y * 65536};
    uv[1] = {(part.x + part.width) * 65536, (part.y + part.height) * 65536};
}
NfkRect secondPart(const NfkOptions &o)
{
    return !o.tex1 || o.source1.width ? o.source1 : NfkRect{0, 0, int32_t(o.tex1->origWidth), int32_t(o.tex1->origHeight)};
}

struct Counts {
    int drawn = 0, refused = 0;
};

// `kit` draws by the kit; `hand` by hand, and returns the code.
void compare(Drawing &d, Counts &counts, const std::function<int()> &kit, const std::function<uint32_t(bool)> &hand,
             bool mayBeRefused)
{
    const int result = kit();
    const RenderState after = rs;
    // Everything but the scratch fields.
    const size_t scratch = offsetof(RenderState, mipFrac), behind = offsetof(RenderState, fontName);
    ASSERT_EQ(std::memcmp(&after, &d.before, scratch), 0);
    ASSERT_EQ(std::memcmp(reinterpret_cast<const char *>(&after) + behind, reinterpret_cast<const char *>(&d.before) + behind,
                          sizeof rs - behind),
              0);

    rs = d.before;
    // As after nfkSelectScreen, but with the clip.
    rs.dstPixels = d.byHand->texture->pixels;
    rs.frameBuffer = d.byHand->texture;
    rs.shaheiPlane = d.byHand->shaheiPlane, rs.zBuffer = d.byHand->zBuffer;
    const RenderState start = rs;
    const uint32_t code = hand(false);
    rs = start;
    const bool there = nfkCodeExists(code);
    ASSERT_EQ(result, there ? 1 : 0) << std::hex << code << ": " << nfkError();
    if (there) {
        hand(true);
        ++counts.drawn;
    } else {
        ASSERT_TRUE(mayBeRefused);
        ++counts.refused;
    }
    const size_t pixels = size_t(d.screen->texture->width) * d.screen->texture->height;
    ASSERT_EQ(std::memcmp(d.screen->texture->pixels, d.byHand->texture->pixels, pixels * 4), 0) << std::hex << code;
    ASSERT_EQ(std::memcmp(d.screen->zBuffer, d.byHand->zBuffer, pixels), 0) << std::hex << code;
    ASSERT_EQ(std::memcmp(d.screen->shaheiPlane, d.byHand->shaheiPlane, pixels / 8), 0) << std::hex << code;
    ASSERT_EQ(rs.mipFrac, after.mipFrac);
    ASSERT_EQ(rs.mipTex, after.mipTex);
    ASSERT_EQ(rs.mipRatio, after.mipRatio);
}

void call(uint32_t code) { SearchDrawFunc(code)(); }

constexpr int rounds = 3000;

// One round of a kind of draw.
using Round = std::function<void(Drawing &, Counts &, bool simple)>;
void rounds_of(const Round &round)
{
    Drawing d;
    Counts counts;
    for (int i = 0; i < rounds && !testing::Test::HasFatalFailure(); ++i) {
        d.begin();
        round(d, counts, i % 8 == 0);
    }
    EXPECT_GT(counts.drawn, rounds / 8);
    std::printf("%d drawn, %d refused\n", counts.drawn, counts.refused);
}

NfkRect anyRect(int32_t most) { return {from(-20, most), from(-20, most), from(-most, 2 * most), from(-most, 2 * most)}; }

} // namespace

TEST(Draws, Sprites)
{
    rounds_of([](Drawing &d, Counts &counts, bool simple) {
        NfkOptions o = d.options(simple);
        const bool one = from(0, 1), parts = from(0, 1), coloured = !one && from(0, 1);
        if (coloured)
            o.multi = NINEFOLD_MULTI_NONE;
        const uint32_t count = one ? 1 : uint32_t(from(0, 5));
        std::vector<NfkPoint> at(count);
        std::vector<NfkRect> sources(count, NfkRect{0, 0, 50, 20});
        std::vector<uint32_t> colors(count);
        for (uint32_t i = 0; i < count; ++i) {
            at[i] = {from(-40, 60), from(-30, 40)};
            if (parts)
                sources[i] = {from(-70, 70), from(-40, 40), from(-5, 60), from(-5, 40)};
            colors[i] = engine();
        }
        compare(
            d, counts,
            [&] {
                const NfkOptions *options = simple ? nullptr : &o;
                if (one)
                    return nfkSprite(d.texture, at[0].x, at[0].y, parts ? &sources[0] : nullptr, options);
                return nfkSprites(d.texture, count, at.data(), parts ? sources.data() : nullptr,
                                  coloured ? colors.data() : nullptr, options);
            },
            [&](bool draw) {
                if (coloured)
                    o.multi = NINEFOLD_MULTI_COLOUR;
                const uint32_t code = set(o, d.texture, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, o.filter, 0, 0, coloured);
                for (uint32_t i = 0; draw && i < count; ++i) {
                    rs.vertex[0] = {at[i].x, at[i].y, 0};
                    rs.vertex[1] = {at[i].x + sources[i].width, at[i].y + sources[i].height, 0};
                    rs.uv0[0] = {sources[i].x * 65536, sources[i].y * 65536};
                    uvOf(rs.uv1, secondPart(o));
                    if (coloured) {
                        const uint32_t alpha = colors[i] >> 24;
                        rs.color[0] = colors[i];
                        rs.prescale = o.prescale * (alpha > 127 ? alpha + 1 : alpha) / 256;
                    }
                    call(code);
                }
                return code;
            },
            !simple);
    });
}

TEST(Draws, Pictures)
{
    rounds_of([](Drawing &d, Counts &counts, bool simple) {
        NfkOptions o = d.options(simple);
        const bool one = from(0, 1), parts = from(0, 1), coloured = !one && from(0, 1);
        if (coloured)
            o.multi = from(0, 1) ? NINEFOLD_MULTI_NONE : NINEFOLD_MULTI_COLOUR;
        const uint32_t count = one ? 1 : uint32_t(from(0, 4));
        std::vector<NfkRect> targets(count), sources(count, NfkRect{0, 0, 50, 20});
        std::vector<uint32_t> colors(count);
        for (uint32_t i = 0; i < count; ++i) {
            targets[i] = anyRect(50);
            if (parts)
                sources[i] = {from(-70, 70), from(-40, 40), from(-60, 60), from(-40, 40)};
            colors[i] = engine();
        }
        compare(
            d, counts,
            [&] {
                const NfkOptions *options = simple ? nullptr : &o;
                if (one)
                    return nfkPicture(d.texture, &targets[0], parts ? &sources[0] : nullptr, options);
                return nfkPictures(d.texture, count, targets.data(), parts ? sources.data() : nullptr,
                                   coloured ? colors.data() : nullptr, options);
            },
            [&](bool draw) {
                if (coloured)
                    o.multi = NINEFOLD_MULTI_COLOUR;
                const uint32_t code =
                    set(o, d.texture, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH, o.filter, 0, 0, coloured);
                for (uint32_t i = 0; draw && i < count; ++i) {
                    const NfkRect &t = targets[i];
                    rs.vertex[0] = {t.x, t.y, 0}, rs.vertex[1] = {t.x + t.width, t.y + t.height, 0};
                    uvOf(rs.uv0, sources[i]);
                    if (o.multi == NINEFOLD_MULTI_TEXTURE)
                        uvOf(rs.uv1, secondPart(o));
                    if (coloured) {
                        const uint32_t alpha = colors[i] >> 24;
                        rs.color[0] = colors[i];
                        rs.prescale = o.prescale * (alpha > 127 ? alpha + 1 : alpha) / 256;
                    }
                    call(code);
                }
                return code;
            },
            !simple);
    });
}

TEST(Draws, Transitions)
{
    rounds_of([](Drawing &d, Counts &counts, bool simple) {
        const NfkOptions o = d.options(simple);
        const bool noTarget = from(0, 3) == 0;
        const NfkRect target = noTarget ? NfkRect{0, 0, 50, 20} : anyRect(50);
        const float t = float(from(0, 64)) / 64;
        const int32_t soft = from(0, 2) ? from(0, 255) : 0;
        compare(
            d, counts,
            [&] {
                return nfkTransition(d.texture, noTarget ? nullptr : &target, nullptr, d.rule, t, soft, simple ? nullptr : &o);
            },
            [&](bool draw) {
                const uint32_t code = set(o, d.texture, NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH, o.filter, 1);
                rs.vertex[0] = {target.x, target.y, 0}, rs.vertex[1] = {target.x + target.width, target.y + target.height, 0};
                uvOf(rs.uv0, {0, 0, 50, 20});
                uvOf(rs.uv1, secondPart(o));
                rs.tex2 = d.rule;
                uvOf(rs.uv2, {0, 0, 30, 30});
                rs.ruleThreshold = 255 - int32_t(std::lround(double(t) * (255 + (soft ? soft : 1))));
                rs.ruleWidth = soft, rs.ruleCurve = o.ruleCurve;
                if (draw)
                    call(code);
                return code;
            },
            !simple);
    });
}

TEST(Draws, TransitionsBeginWithNothingAndEndWithAll)
{
    Drawing d;
    NfkOptions o = nfkOptions();
    o.blend = NINEFOLD_BLEND_COPY;
    for (uint32_t i = 0; i < d.texture->width * d.texture->height; ++i)
        d.texture->pixels[i] |= 0xFF000000;
    nfkSelectScreen(d.screen);
    for (const int32_t soft : {0, 1, 40, 255})
        for (const float t : {0.0f, 1.0f}) {
            nfkClearScreen(d.screen, 0xFF123456);
            ASSERT_EQ(nfkTransition(d.texture, nullptr, nullptr, d.rule, t, soft, &o), 1) << nfkError();
            for (uint32_t y = 0; y < 20; ++y)
                for (uint32_t x = 0; x < 50; ++x)
                    ASSERT_EQ(d.screen->texture->pixels[y * 64 + x], t > 0 ? d.texture->pixels[y * 64 + x] : 0xFF123456) << soft;
        }
}

TEST(Draws, LinesFillsAndGradients)
{
    rounds_of([](Drawing &d, Counts &counts, bool simple) {
        const NfkOptions o = d.options(simple);
        const NfkOptions *const options = simple ? nullptr : &o;
        const int kind = from(0, 4);
        const uint32_t count = kind == 1 || kind == 3 ? uint32_t(from(0, 4)) : 1;
        std::vector<NfkPoint> ends(2 * count);
        std::vector<NfkRect> targets(count);
        std::vector<uint32_t> colors(std::max(count, 4u));
        for (NfkPoint &end : ends)
            end = {from(-30, 90), from(-30, 60)};
        for (NfkRect &target : targets)
            target = anyRect(40);
        for (uint32_t &color : colors)
            color = engine();
        compare(
            d, counts,
            [&] {
                switch (kind) {
                case 0: return nfkLine(ends[0].x, ends[0].y, ends[1].x, ends[1].y, colors[0], options);
                case 1: return nfkLines(count, ends.data(), colors.data(), options);
                case 2: return nfkFill(&targets[0], colors[0], options);
                case 3: return nfkFills(count, targets.data(), colors.data(), options);
                default: return nfkGradient(&targets[0], colors.data(), options);
                }
            },
            [&](bool draw) {
                const bool line = kind < 2;
                const uint32_t code = set(o, nullptr, line ? NINEFOLD_SHAPE_LINE : NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_NONE,
                                          kind == 4 ? NINEFOLD_FILTER_GOURAUD : NINEFOLD_FILTER_FLAT);
                for (uint32_t i = 0; draw && i < count; ++i) {
                    if (line)
                        rs.vertex[0] = {ends[2 * i].x, ends[2 * i].y, 0},
                        rs.vertex[1] = {ends[2 * i + 1].x, ends[2 * i + 1].y, 0};
                    else
                        rs.vertex[0] = {targets[i].x, targets[i].y, 0},
                        rs.vertex[1] = {targets[i].x + targets[i].width, targets[i].y + targets[i].height, 0};
                    rs.color[0] = colors[i];
                    if (kind == 4)
                        std::copy(colors.begin(), colors.begin() + 4, rs.color);
                    call(code);
                }
                return code;
            },
            !simple);
    });
}

TEST(Draws, Meshes)
{
    rounds_of([](Drawing &d, Counts &counts, bool simple) {
        NfkOptions o = d.options(simple);
        const bool textured = from(0, 3), indexed = from(0, 1);
        if (!simple)
            o.perspective = from(0, 1);
        if (!textured)
            o.multi = NINEFOLD_MULTI_NONE, o.prescale = 256;
        const uint32_t corners = 3 * uint32_t(from(indexed, 3)), vertexCount = indexed ? 7 : corners;
        std::vector<NfkMeshVertex> vertices(vertexCount);
        std::vector<uint32_t> indices(corners);
        for (NfkMeshVertex &v : vertices)
            v = {from(-20, 80), from(-20, 60), from(100, 900), from(0, 100 << 16), from(0, 100 << 16), uint32_t(engine())};
        for (uint32_t i = 0; i < corners; ++i)
            indices[i] = indexed ? uint32_t(from(0, 6)) : i;
        Texture *const texture = textured ? d.texture : nullptr;
        compare(
            d, counts,
            [&] {
                return nfkMesh(texture, vertexCount, vertices.data(), corners, indexed ? indices.data() : nullptr,
                               simple ? nullptr : &o);
            },
            [&](bool draw) {
                const uint32_t code = set(o, texture, NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE,
                                          textured ? o.filter : int32_t(NINEFOLD_FILTER_GOURAUD), 0, textured && o.perspective);
                for (uint32_t i = 0; draw && i < corners; i += 3) {
                    for (uint32_t k = 0; k < 3; ++k) {
                        const NfkMeshVertex &v = vertices[indices[i + k]];
                        rs.vertex[k] = {v.x, v.y, v.z};
                        rs.uv0[k] = rs.uv1[k] = {v.u, v.v};
                        if (!textured || o.multi == NINEFOLD_MULTI_CORNERS)
                            rs.color[k] = v.color;
                    }
                    call(code);
                }
                return code;
            },
            !simple);
    });
}

TEST(Draws, TurnedPictures)
{
    rounds_of([](Drawing &d, Counts &counts, bool simple) {
        const NfkOptions o = d.options(simple);
        const NfkTurn turn = {float(from(-100, 800)) / 10, float(from(-100, 500)) / 10, float(from(-10, 60)),
                              float(from(-10, 30)),        float(from(-720, 720)) / 2,  float(from(-30, 30)) / 10,
                              float(from(-30, 30)) / 10};
        const NfkRect part = {from(-20, 20), from(-20, 20), from(1, 60), from(1, 40)};
        compare(
            d, counts, [&] { return nfkTurned(d.texture, &turn, &part, simple ? nullptr : &o); },
            [&](bool draw) {
                const uint32_t code = set(o, d.texture, NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, o.filter);
                const double radians = turn.angle * std::acos(-1.0) / 180;
                for (int half = 0; draw && half < 2; ++half) {
                    for (int k = 0; k < 3; ++k) {
                        const int corner = k + half, right = corner % 2, bottom = corner / 2;
                        const double u = (right * part.width - double(turn.pivotX)) * turn.scaleX;
                        const double v = (bottom * part.height - double(turn.pivotY)) * turn.scaleY;
                        rs.vertex[k] = {int32_t(std::lround(turn.x + u * std::cos(radians) - v * std::sin(radians))),
                                        int32_t(std::lround(turn.y + u * std::sin(radians) + v * std::cos(radians))), 0};
                        rs.uv0[k] = {(part.x + right * part.width) * 65536, (part.y + bottom * part.height) * 65536};
                        const NfkRect other = secondPart(o);
                        rs.uv1[k] = {(other.x + right * other.width) * 65536, (other.y + bottom * other.height) * 65536};
                        if (o.multi == NINEFOLD_MULTI_CORNERS)
                            rs.color[k] = o.color[corner];
                    }
                    call(code);
                }
                return code;
            },
            !simple);
    });
}

TEST(Draws, TurnedPicturesDrawEachPixelOnce)
{
    Drawing d;
    nfkSelectScreen(d.screen);
    std::fill_n(d.texture->pixels, 64 * 32, 0xFF010101);
    NfkOptions o = nfkOptions();
    o.blend = NINEFOLD_BLEND_CUSTOM;
    o.blendFunc = [](uint32_t first, uint32_t) { return first + 1; };
    for (int degrees = 0; degrees < 360; degrees += 7) {
        nfkClearScreen(d.screen, 0);
        const NfkTurn turn = {30, 20, 25, 10, float(degrees), 0.8f, 0.9f};
        ASSERT_EQ(nfkTurned(d.texture, &turn, nullptr, &o), 1) << nfkError();
        const uint32_t *const pixels = d.screen->texture->pixels;
        ASSERT_EQ(*std::max_element(pixels, pixels + 64 * 40), 1u) << degrees;
        const auto area = std::count(pixels, pixels + 64 * 40, 1u);
        ASSERT_NEAR(double(area), 50 * 0.8 * 20 * 0.9, 90) << degrees;
    }
}

TEST(Draws, RefusedWithAText)
{
    Drawing d;
    nfkSelectScreen(d.screen);
    NfkOptions o = nfkOptions();
    const NfkRect rect = {0, 0, 10, 10};
    const uint32_t color = 0xFFFFFFFF;
    const auto refused = [&](int result, const char *text) {
        EXPECT_EQ(result, 0);
        EXPECT_NE(std::string(nfkError()).find(text), std::string::npos) << nfkError();
        o = nfkOptions();
    };
    refused(nfkSprite(nullptr, 0, 0, nullptr, nullptr), "nfkSprite: the texture is null");
    refused(nfkSprite(d.texture, 1 << 30, 0, nullptr, nullptr), "below 2^29");
    refused((o.blend = 13, nfkSprite(d.texture, 0, 0, nullptr, &o)), "blend 13 is none");
    refused((o.blend = -1, nfkSprite(d.texture, 0, 0, nullptr, &o)), "blend -1");
    refused((o.blend = 1 << 20, nfkSprite(d.texture, 0, 0, nullptr, &o)), "blend 1048576");
    refused((o.blend = 3, nfkSprite(d.texture, 0, 0, nullptr, &o)), "blend 3 is none");
    refused((o.filter = 99, nfkSprite(d.texture, 0, 0, nullptr, &o)), "filter 99");
    refused((o.filter = NINEFOLD_FILTER_FLAT, nfkSprite(d.texture, 0, 0, nullptr, &o)), "filter 6 draws colours");
    refused((o.filter = NINEFOLD_FILTER_MIP, nfkSprite(d.texture, 0, 0, nullptr, &o)), "RECT_UNIT has one texel a pixel");
    refused((o.blend = NINEFOLD_BLEND_CUSTOM, nfkSprite(d.texture, 0, 0, nullptr, &o)), "blendFunc, which is null");
    refused((o.multi = NINEFOLD_MULTI_TEXTURE, nfkSprite(d.texture, 0, 0, nullptr, &o)), "options->tex1, which is null");
    refused((o.multi = NINEFOLD_MULTI_COLOUR, o.multiOp = 12, nfkSprite(d.texture, 0, 0, nullptr, &o)), "multiOp 12 is none");
    refused((o.stipple = 262, nfkSprite(d.texture, 0, 0, nullptr, &o)), "stipple 262");
    refused((o.filter = NINEFOLD_FILTER_MOSAIC, o.mosaicSize = 0, nfkSprite(d.texture, 0, 0, nullptr, &o)),
            "mosaic sizes 1 and 0");
    refused((o.blendAlpha = 256, nfkSprite(d.texture, 0, 0, nullptr, &o)), "blendAlpha 256");
    refused((o.prescale = 257, nfkSprite(d.texture, 0, 0, nullptr, &o)), "prescale 257");
    refused((o.multi = NINEFOLD_MULTI_COLOUR, nfkFill(&rect, color, &o)), "go with MULTI_NONE only");
    refused(nfkFill(nullptr, color, nullptr), "null");
    refused(nfkTransition(d.texture, nullptr, nullptr, nullptr, 0, 0, nullptr), "rule texture is null");
    refused(nfkTransition(d.texture, nullptr, nullptr, d.rule, 1.5f, 0, nullptr), "time 1.5");
    refused(nfkTransition(d.texture, nullptr, nullptr, d.rule, NAN, 0, nullptr), "time");
    const NfkTurn far = {1e20f, 0, 0, 0, 0, 1, 1};
    refused(nfkTurned(d.texture, &far, nullptr, nullptr), "corner lies at");
    const NfkRect wide = {0, 0, 32768, 1};
    refused(nfkPicture(d.texture, &rect, &wide, nullptr), "less than 32768");
    const NfkMeshVertex vertices[3] = {};
    const uint32_t indices[] = {0, 1, 3};
    refused(nfkMesh(d.texture, 2, vertices, 0, nullptr, nullptr), "threes");
    refused(nfkMesh(d.texture, 3, vertices, 3, indices, nullptr), "index 2 is 3");
    refused((o.perspective = 1, nfkMesh(d.texture, 3, vertices, 0, nullptr, &o)), "depth 0");
    DeleteMipmapTexture(d.texture);
    refused((o.filter = NINEFOLD_FILTER_MIP, nfkPicture(d.texture, &rect, nullptr, &o)), "CreateMipmapTexture");
    rs.zBuffer = nullptr;
    refused((o.shahei = NINEFOLD_SHAHEI_PRIORITY, nfkFill(&rect, color, &o)), "rs.zBuffer");
    // One bad element, and none is drawn.
    nfkClearScreen(d.screen, 0);
    const NfkPoint points[] = {{0, 0}, {1 << 30, 0}};
    refused(nfkSprites(d.texture, 2, points, nullptr, nullptr, nullptr), "position 1");
    EXPECT_EQ(std::count(d.screen->texture->pixels, d.screen->texture->pixels + 64 * 64, 0u), 64 * 64);
}

namespace {

std::vector<uint32_t> seen;
void note(uint32_t code, DrawFunc kernel)
{
    EXPECT_EQ(kernel, SearchDrawFunc(code));
    seen.push_back(code);
}

} // namespace

TEST(Draws, GoThroughOnePoint)
{
    Drawing d;
    nfkSelectScreen(d.screen);
    nfkClearScreen(d.screen, 0);
    const NfkCaller first = nfkSetCaller(note);
    ASSERT_NE(first, nullptr);
    const NfkPoint points[] = {{0, 0}, {5, 5}};
    nfkSprites(d.texture, 2, points, nullptr, nullptr, nullptr);
    nfkLine(0, 0, 5, 5, 0xFFFFFFFF, nullptr);
    const NfkTurn turn = {0, 0, 0, 0, 0, 1, 1};
    nfkTurned(d.texture, &turn, nullptr, nullptr);
    EXPECT_EQ(nfkSetCaller(nullptr), note);
    EXPECT_EQ(nfkSetCaller(nullptr), first);
    const uint32_t sprite = nfkCodeOfName("rect.unit.point.alphafast"), line = nfkCodeOfName("line.flat.alphafast"),
                   turned = nfkCodeOfName("tri.point.alphafast");
    EXPECT_EQ(seen, (std::vector<uint32_t>{sprite, sprite, line, turned, turned}));
    EXPECT_EQ(std::count(d.screen->texture->pixels, d.screen->texture->pixels + 64 * 64, 0u), 64 * 64);
}
