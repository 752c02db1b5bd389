// A minimal example of each rule of bands/rules.h: cut into two bands it comes out as drawn at once, and without the rule it does
// not.
#include "recorder.h"

#include "support/canvas.h"

#include <ninefold/bands.h>

using namespace canvas;

namespace {

class Rules : public Canvas {
protected:
    Rules() : Canvas(256, 256) {}

    void SetUp() override
    {
        Canvas::SetUp();
        recorder().recordAll(true);
        recorder().divide = [](const bands::Batch &batch) {
            const auto part = [&](int32_t top, int32_t bottom) {
                if (top < bottom)
                    batch.drawRows(std::max(top, batch.firstRow()), std::min(bottom, batch.endRow()));
            };
            if (!upwards)
                part(batch.firstRow(), border);
            part(border, batch.endRow());
            if (upwards)
                part(batch.firstRow(), border);
        };
    }
    void TearDown() override
    {
        recorder().divide = nullptr;
        recorder().stop();
        bands::ignoredRules = 0;
        Canvas::TearDown();
    }

    static bands::Recorder &recorder() { return bands::recorder(); }

    // Whether it comes out the same, the band above the border drawn first and drawn last.
    template <class Draw>
    bool comesOut(int32_t row, Draw &&draw)
    {
        const State before = state();
        recorder().stop();
        draw();
        const State plain = state();
        bool same = true;
        border = row;
        for (bool order : {false, true}) {
            restore(before);
            upwards = order;
            recorder().start(1);
            draw();
            recorder().flush();
            same &= state() == plain;
            recorder().stop();
        }
        restore(before);
        return same;
    }
    template <class Draw>
    void needs(bands::Rule rule, int32_t row, Draw &&draw)
    {
        bands::ignoredRules = 0;
        EXPECT_TRUE(comesOut(row, draw));
        bands::ignoredRules = 1u << uint32_t(rule);
        EXPECT_FALSE(comesOut(row, draw)) << "no example of the rule";
        bands::ignoredRules = 0;
    }
    // Draws that are not cut.
    template <class Draw>
    uint64_t wholes(Draw &&draw)
    {
        const State before = state();
        const uint64_t count = recorder().counts[NINEFOLD_BANDS_WHOLE];
        recorder().start(1);
        draw();
        recorder().stop();
        restore(before);
        return recorder().counts[NINEFOLD_BANDS_WHOLE] - count;
    }

    static void flat(int left, int top, int right, int bottom, uint32_t colour)
    {
        corners(left, top, right, bottom);
        rs.color[0] = colour;
        kernel({.filter = NINEFOLD_FILTER_FLAT})();
    }

    // Rows of a line table over 16 pixels, `texels` texels each.
    void table(int rows, int texelCount)
    {
        lines.clear();
        for (int y = 0; y < rows; ++y)
            lines.push_back({0, texels(y), texels(texelCount), texels(y)});
        rs.lineTable0 = rs.lineTable1 = lines.data();
        corners(0, 0, 16, rows);
    }

    inline static int32_t border = 0;
    inline static bool upwards = false;
};

TEST_F(Rules, Occlusion)
{
    // It begins above the clip rectangle, so it jumps to row clipLeft, wherever the clip rectangle begins.
    const auto draw = [] {
        triangle(8, -10, 40, 30, 8, 30);
        DrawZbufferPolygonFlip();
    };
    clip(4, 0, 64, 32);
    EXPECT_EQ(wholes(draw), 1u);
    EXPECT_TRUE(comesOut(16, draw));
    const State before = state();
    draw();
    const State once = state();
    restore(before);
    rs.clipBottom = 16;
    draw();
    rs.clipTop = 16, rs.clipBottom = 32;
    draw();
    EXPECT_NE(z, once.z) << "no example of the rule";
    for (DrawFunc function : {DrawShaheiPolygonSet, DrawShaheiPolygonFlip, DrawShaheiPolygonReset, DrawZbufferPolygon,
                              DrawZbufferPolygon0xff, DrawZbufferPolygonFlip, DrawZbufferPolygonClear,
                              DrawShaheiZbufferPolygonMask, DrawShaheiZbufferPolygonUnmask, DrawShaheiZbufferPolygonFlip})
        EXPECT_EQ(wholes(function), 1u);
}

TEST_F(Rules, HostOperator)
{
    static uint32_t number;
    const auto draw = [] {
        number = 0;
        rs.blendFunc = [](uint32_t, uint32_t) { return ++number; };
        corners(0, 0, 16, 16);
        kernel({.filter = NINEFOLD_FILTER_FLAT, .blend = NINEFOLD_BLEND_CUSTOM})();
    };
    needs(bands::Rule::hostOperator, 8, draw);
}

TEST_F(Rules, PureOperatorsAreCut)
{
    const PixelOperator operators[] = {[](uint32_t first, uint32_t second) { return first + 3 * second; },
                                       [](uint32_t first, uint32_t second) { return first ^ second >> 1; }};
    rs.blendFunc = operators[0], rs.multiFunc = operators[1];
    rs.tex0 = index(32, 32);
    rs.color[0] = 0x10203040;
    const auto draw = [] {
        corners(0, 0, 32, 32);
        kernel({.blend = NINEFOLD_BLEND_CUSTOM, .multi = NINEFOLD_MULTI_COLOUR})();
    };
    EXPECT_EQ(wholes(draw), 1u);
    bands::declarePure(operators[0]);
    EXPECT_EQ(wholes(draw), 1u);
    bands::declarePure(operators[1]);
    EXPECT_EQ(wholes(draw), 0u);
    EXPECT_TRUE(comesOut(16, draw));
}

// Their factors are those of the moment of the call.
TEST_F(Rules, OperatorsOfTheLibraryAreCut)
{
    rs.tex0 = index(32, 32);
    rs.tex1 = texture(32, 32, [](uint32_t x, uint32_t y) { return x * 0x01050301 + y; });
    SetBlendMode(NINEFOLD_BLEND_XOR);
    const auto draw = [] {
        for (uint32_t alpha : {40, 90}) {
            rs.blendAlpha = rs.blendAlphaRgb = alpha;
            SetBlendModeMulti(NINEFOLD_MULTI_OP_CONST_ALPHA_RGB);
            corners(0, 0, 32, 32);
            kernel({.blend = NINEFOLD_BLEND_CUSTOM, .multi = NINEFOLD_MULTI_TEXTURE})();
        }
        rs.blendAlpha = rs.blendAlphaRgb = 7;
        SetBlendModeMulti(NINEFOLD_MULTI_OP_FIRST);
    };
    EXPECT_EQ(wholes(draw), 0u);
    EXPECT_TRUE(comesOut(16, draw));
}

TEST_F(Rules, NarrowPlane)
{
    rs.tex0 = index(8, 8);
    SetFrameBuffer(texture(8, 32, [](uint32_t, uint32_t) { return ground; }));
    clip(0, 0, 8, 32);
    needs(bands::Rule::narrowPlane, 4, [&] {
        corners(0, 0, 8, 8);
        kernel({.shahei = NINEFOLD_SHAHEI_PLANE})();
        recorder().flush();
        std::copy_n(rs.dstPixels, 8 * 32, frame->pixels); // what is compared
        std::fill_n(rs.dstPixels, 8 * 32, ground);
    });
}

TEST_F(Rules, Overlap)
{
    for (int y = 0; y < 32; ++y)
        std::fill_n(&at(0, y), 16, idAt(uint32_t(y), 1));
    const auto scroll = [&](int from, int to) {
        rs.tex0 = frame;
        rs.uv0[0] = {0, texels(from)};
        corners(0, to, 16, to + 16);
        kernel({})();
    };
    needs(bands::Rule::overlap, 8, [&] { scroll(4, 0); });
    needs(bands::Rule::overlap, 8, [&] { scroll(0, 4); });
    // Rows outside of the clip rectangle too: an earlier draw may have written them.
    needs(bands::Rule::overlap, 32, [&] {
        flat(0, 40, 16, 60, 0xFF00FF00);
        clip(0, 0, 256, 32);
        scroll(40, 0);
        clip(0, 0, 256, 256);
    });
    // And the planes.
    needs(bands::Rule::overlap, 32, [&] {
        Texture inPlane = *frame;
        inPlane.pixels = reinterpret_cast<uint32_t *>(z.data());
        inPlane.height = 16, inPlane.log2Height = 4;
        rs.zRef = 77;
        rs.tex0 = index(32, 64);
        corners(0, 0, 32, 64);
        kernel({.shahei = NINEFOLD_SHAHEI_PLANE_PRIORITY})();
        rs.tex0 = &inPlane;
        corners(64, 0, 96, 16);
        kernel({})();
        recorder().flush();
        rs.tex0 = nullptr;
        std::fill(plane.begin(), plane.end(), uint16_t{0});
        std::fill(z.begin(), z.end(), uint8_t{0});
    });
}

TEST_F(Rules, MoveBack)
{
    // 128 zeros, then pixels: these come to lie in the row above.
    rs.tex0 = texture(256, 32, [](uint32_t x, uint32_t y) { return x < 128 ? 0 : idAt(x, y); });
    CreateRunlengthMap(rs.tex0);
    const auto draw = [&](int left) {
        corners(left, 8, 256, 40);
        kernel({.rectOpt = NINEFOLD_RECT_RUNS})();
        flat(0, 0, 256, 256, 0xFF112233);
    };
    needs(bands::Rule::moveBack, 16, [&] { draw(0); });
    EXPECT_EQ(wholes([&] { draw(0); }), 1u);
    EXPECT_EQ(wholes([&] { draw(128); }), 0u) << "there is room in the row";
}

TEST_F(Rules, PlaneRows)
{
    rs.tex0 = index(16, 16);
    for (size_t y = 0; y < 16; ++y)
        plane[y * 16] = uint16_t(0x0101 << y % 8);
    table(16, 16);
    lines[2].startU = NINEFOLD_SKIP_ROW;
    needs(bands::Rule::planeRows, 8, [] { kernel({.rectOpt = NINEFOLD_RECT_TABLE, .shahei = NINEFOLD_SHAHEI_PLANE})(); });
}

TEST_F(Rules, StrayClip)
{
    rs.dstPitch = 2 * width; // every other row
    needs(bands::Rule::strayClip, 8, [] { flat(0, 0, 16, 16, 0xFF334455); });
    rs.dstPitch = width;
    rs.clipRight = int32_t(width) + 16; // beyond the right border lies the next row
    needs(bands::Rule::strayClip, 8, [] {
        flat(0, 0, 272, 16, 0xFF334455);
        flat(0, 0, 8, 16, 0xFF556677);
    });
}

TEST_F(Rules, LineEnd)
{
    // Its end pixel, which is not drawn, lies in row 193, the end vertex in row 194.
    rs.color[0] = 0xFFFFFFFF;
    const auto line = [](int x0, int y0, int x1, int y1) {
        corners(x0, y0, x1, y1);
        kernel({.shape = NINEFOLD_SHAPE_LINE, .filter = NINEFOLD_FILTER_FLAT})();
    };
    needs(bands::Rule::lineEnd, 194, [&] { line(0, 0, 194, 194); });
    needs(bands::Rule::lineEnd, 62, [&] { line(255, 255, 61, 61); });
    EXPECT_TRUE(comesOut(62, [&] { line(61, 61, 255, 255); }));
}

TEST_F(Rules, SkippedRows)
{
    rs.tex0 = index(16, 16);
    for (int y = 0; y < 16; ++y)
        rs.drawMask[y] = uint16_t(0x1111 << y % 4);
    table(16, 16);
    lines[2].startU = NINEFOLD_SKIP_ROW;
    needs(bands::Rule::skippedRows, 8, [] { kernel({.rectOpt = NINEFOLD_RECT_TABLE, .shahei = NINEFOLD_SHAHEI_STIPPLE})(); });
    // The rule.
    rs.tex2 = texture(1, 16, [](uint32_t, uint32_t y) { return y * 16; });
    rs.uv2[1] = {texels(1), texels(16)};
    rs.ruleThreshold = 100, rs.ruleWidth = 100;
    for (int flip : {0, 1})
        needs(bands::Rule::skippedRows, 8, [&] {
            if (flip)
                corners(0, 16, 16, 0);
            kernel({.rule = NINEFOLD_RULE_ON, .rectOpt = NINEFOLD_RECT_TABLE})();
        });
}

TEST_F(Rules, LineLevels)
{
    // Row 0 sets a weight, the others have less than one texel a pixel and read it.
    rs.tex0 = equipped(texture(64, 64, [](uint32_t x, uint32_t y) { return (x * 37 + y * 101) * 0x01010101u | 1; }));
    table(16, 8);
    lines[0].endU = texels(41);
    needs(bands::Rule::lineLevels, 8, [] {
        kernel({.filter = NINEFOLD_FILTER_MIP_BILINEAR, .rectOpt = NINEFOLD_RECT_TABLE, .shahei = NINEFOLD_SHAHEI_PLANE})();
    });
}

TEST_F(Rules, MipScratch)
{
    // The second rectangle reads the level and the weight that the first one left behind.
    rs.tex0 = equipped(texture(64, 64, [](uint32_t x, uint32_t y) { return (x * 37 + y * 101) * 0x01010101u | 1; }));
    rs.mipTex = rs.tex0->mip[1], rs.mipFrac = 0;
    rs.uv0[1] = {texels(64), texels(50)};
    rs.tex2 = solid(0xFF);
    needs(bands::Rule::mipScratch, 8, [] {
        corners(0, 0, 16, 16);
        kernel({.filter = NINEFOLD_FILTER_MIP, .rectOpt = NINEFOLD_RECT_STRETCH})();
    });
    needs(bands::Rule::mipScratch, 8, [] {
        corners(0, 0, 16, 16);
        kernel({.filter = NINEFOLD_FILTER_MIP, .rectOpt = NINEFOLD_RECT_STRETCH})();
        corners(0, 64, 16, 80);
        DrawRectGradRule_GEN_RULE_TEST();
        rs.mipTex = nullptr, rs.mipFrac = 0;
    });
}

TEST_F(Rules, Target)
{
    Texture *const other = texture(256, 256);
    needs(bands::Rule::target, 8, [&] {
        std::fill_n(other->pixels, 256 * 256, 0xFFFFFFFF);
        flat(0, 0, 16, 16, 0xFF111111);
        SetFrameBuffer(other);
        flat(0, 8, 16, 24, 0xFF222222);
        SetFrameBuffer(frame);
        rs.tex0 = other;
        rs.uv0[0] = {0, texels(8)};
        corners(0, 0, 16, 8);
        kernel({})();
        recorder().flush();
    });
}

// What they touch is drawn before, and what they change is not seen by draws before.
TEST_F(Rules, FunctionsThatTouchPixelsFlush)
{
    Texture *const source = index(16, 16);
    recorder().divide = nullptr;
    recorder().start(1);
    recorder().leastCost = 0;
    const auto flushes = [&](auto &&function) {
        rs.tex0 = source;
        corners(0, 0, 16, 16);
        kernel({})();
        const bool waits = !recorder().batch.empty();
        function();
        return waits && recorder().batch.empty();
    };
    EXPECT_TRUE(flushes([&] { CopyTexture(frame, source, 0, 0, 0, 0, 4, 4); }));
    EXPECT_TRUE(flushes([&] { SetClearPixel(source, idAt(1, 1)); }));
    EXPECT_TRUE(flushes([&] { ReplacePixel(source, idAt(1, 2), idAt(1, 3)); }));
    EXPECT_TRUE(flushes([&] { CreateRunlengthMap(source); }));
    EXPECT_TRUE(flushes([&] { CreateZeroPixelMap(source); }));
    EXPECT_TRUE(flushes([&] { CreateMipmapTexture(source); }));
    EXPECT_TRUE(flushes([&] { DeleteMipmapTexture(source); }));
    EXPECT_TRUE(flushes([&] { ClearTexture(source); }));
    EXPECT_TRUE(flushes([&] { DeleteTexture(CreateTexture(1, 1)); }));
    EXPECT_TRUE(flushes([] { MakeDrawMaskTable(); }));
    static char letter[] = "A";
    EXPECT_TRUE(flushes([] { CreateFontTexture(letter); }));
    EXPECT_FALSE(flushes([] { SetBlendMode(NINEFOLD_BLEND_ADD), CreateDrawCode(); }));
    recorder().flush();
}

// rs, line tables and shifts may change after the call.
TEST_F(Rules, CopiesAreTaken)
{
    rs.tex0 = index(64, 64);
    std::vector<int32_t> shifts(256, 3);
    const auto draw = [&] {
        table(16, 16);
        kernel({.rectOpt = NINEFOLD_RECT_TABLE})();
        lines.assign(16, {});
        rs.scanShift = shifts.data();
        shifts.assign(256, 3);
        triangle(20, 20, 60, 20, 20, 60);
        rs.uv0[1].u = texels(40), rs.uv0[2].v = texels(40);
        kernel({.shape = NINEFOLD_SHAPE_TRIANGLE})();
        shifts.assign(256, -9);
        rs.scanShift = nullptr;
        rs.tex0 = nullptr;
        clip(0, 0, 0, 0);
    };
    EXPECT_EQ(wholes(draw), 0u);
    EXPECT_TRUE(comesOut(32, draw));
}

} // namespace
