// A host's own operator sees the picture as it grows: whatever it reads of the frame buffer is as one pixel at a time leaves it.
#include "support/furnished.h"

#include <gtest/gtest.h>

using namespace canvas;
using ninefold::Axes;
using ninefold::nameOf;

namespace {

// The pixels that operators are called for, in order: an operator is not told where it is.
struct Place {
    int x, y;
};
std::vector<Place> places;
size_t multiCalls, blendCalls;
std::vector<char> which; // 'm' or 'b', as they come

// What an operator returns for a pixel.
using Look = uint32_t (*)(const uint32_t *pixel, unsigned pitch);
Look multiLook, blendLook;

uint32_t looked(Look look, size_t call, char name)
{
    which.push_back(name);
    if (call >= places.size())
        return 0xBAD; // the number of calls is compared, too
    return look(rs.dstPixels + (static_cast<size_t>(places[call].y) << rs.dstShift) + places[call].x, rs.dstPitch);
}

uint32_t hostMulti(uint32_t, uint32_t) { return looked(multiLook, multiCalls++, 'm'); }

uint32_t hostBlend(uint32_t, uint32_t) { return looked(blendLook, blendCalls++, 'b'); }

uint32_t oneMoreThanTheLeft(const uint32_t *pixel, unsigned) { return pixel[-1] + 1; }

uint32_t leftAndAbove(const uint32_t *pixel, unsigned pitch) { return pixel[-1] + pixel[-static_cast<int>(pitch)]; }

uint32_t farBack(const uint32_t *pixel, unsigned pitch)
{
    return pixel[-2] * 3 + pixel[-200] + pixel[1 - static_cast<int>(pitch)];
}

// The Shahei modes that go with operators that copy, and with those that blend.
constexpr int copying[] = {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PLANE, NINEFOLD_SHAHEI_PLANE_PRIORITY, NINEFOLD_SHAHEI_STIPPLE};
constexpr int blending[] = {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_PRIORITY, NINEFOLD_SHAHEI_STIPPLE,
                            NINEFOLD_SHAHEI_PRIORITY_STIPPLE};
constexpr int mixing[] = {NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_COLOUR};

class GrowingPicture : public Canvas {
protected:
    static constexpr int left = 210, top = 2, bottom = 5; // room for what looks back

    GrowingPicture() : Canvas(512, 8) {}

    void SetUp() override
    {
        Canvas::SetUp();
        rs.multiFunc = hostMulti;
        rs.blendFunc = hostBlend;
        // Each gate and the transparent test stop some pixels; the zeros by eights, because perspective wraps far positions.
        rs.tex0 = equipped(texture(512, 8, [](uint32_t x, uint32_t y) { return x % 8 != 3 ? idAt(x, y) : 0; }));
        rs.tex1 = equipped(index(512, 8));
        rs.tex2 = texture(512, 8, [](uint32_t x, uint32_t) { return x % 5 ? 200u : 100u; });
        rs.ruleThreshold = 100, rs.ruleWidth = 1;
        std::fill_n(rs.drawMask, 16, uint16_t{0x4210});
        for (size_t k = 0; k < z.size(); ++k)
            z[k] = k % 11 ? 9 : 8;
        rs.zRef = 9;
        for (size_t k = 0; k < plane.size(); ++k)
            plane[k] = static_cast<uint16_t>(1 << k % 16);
        fresh = state();
    }

    bool drawn(const Modes &m, int x, int y) const
    {
        if (!hasColoursOnly(m.filter) && m.rectOpt != NINEFOLD_RECT_PLANE_RUNS && x % 8 == 3)
            return false;
        const int pixel = 512 * y + x;
        const bool stipple = 0x4210 >> (15 - x % 16) & 1;
        if (marksPlane(m.shahei)) {
            const bool taken = pixel % 16 == 15 - pixel / 16 % 16;
            if (stipple || taken || (m.rectOpt == NINEFOLD_RECT_PLANE_RUNS && x % 8 == 3))
                return false;
        }
        if (testsPriority(m.shahei) && pixel % 11 == 0)
            return false;
        if ((m.shahei == NINEFOLD_SHAHEI_STIPPLE || m.shahei == NINEFOLD_SHAHEI_PRIORITY_STIPPLE) && stipple)
            return false;
        return !m.rule || x % 5 != 0;
    }

    // Draws under every set. Each must leave what one pixel after the other leaves, each the `result` of what stands there then.
    template <class Result>
    void expectGrown(const Modes &m, int right, Result &&result)
    {
        SCOPED_TRACE(testing::PrintToString(m));
        place(m, left, top, right, bottom);
        places.clear();
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
                if (drawn(m, x, y))
                    places.push_back({x, y});
        clearPicture();
        for (const Place &p : places) {
            uint32_t &pixel = at(p.x, p.y);
            pixel = result(pixel);
        }
        const std::vector<uint32_t> expected = state().pixels;
        for (int set = 0; set < ninefold::usableSets(); ++set) {
            SCOPED_TRACE(ninefold::setNames[set]);
            ASSERT_TRUE(ninefold::useSet(set));
            clearPicture();
            multiCalls = blendCalls = 0;
            which.clear();
            kernel(m)();
            ASSERT_EQ(multiCalls, m.multi != NINEFOLD_MULTI_NONE && rs.multiFunc == hostMulti ? places.size() : 0);
            ASSERT_EQ(blendCalls, m.blend == NINEFOLD_BLEND_CUSTOM && rs.blendFunc == hostBlend ? places.size() : 0);
            const std::vector<uint32_t> found = state().pixels;
            for (size_t k = 0; k < found.size(); ++k)
                ASSERT_EQ(found[k], expected[k]) << "pixel " << k % 512 << ", " << k / 512 << " of " << left << " to " << right;
        }
    }

    // As it was before anything was drawn, planes and all; what is drawn stays set.
    void clearPicture()
    {
        std::copy(fresh.pixels.begin(), fresh.pixels.end(), frame->pixels);
        std::copy(fresh.plane.begin(), fresh.plane.end(), plane.begin());
        std::copy(fresh.z.begin(), fresh.z.end(), z.begin());
    }

    // Every form of texture, and colours where there is no multi stage.
    static std::vector<Modes> forms(int shahei, int blend, int multi)
    {
        std::vector<Modes> all = pointForms(shahei, blend, multi);
        for (const Modes &m : mixingForms(shahei, blend, multi))
            all.push_back(m);
        if (multi == NINEFOLD_MULTI_NONE)
            for (const Modes &m : colourForms(shahei, blend))
                if (m.shape != NINEFOLD_SHAPE_LINE)
                    all.push_back(m);
        return all;
    }

    // With and without rule, over widths around plane words, vectors and chunks; the long ones once a form.
    template <class Body>
    void forEachForm(int shahei, int blend, int multi, Body &&body)
    {
        for (Modes m : forms(shahei, blend, multi)) {
            if (m.filter == NINEFOLD_FILTER_MIP && m.shape == NINEFOLD_SHAPE_TRIANGLE)
                continue; // the operator's result is dropped there, or its texels come from another level
            for (m.rule = 0; m.rule < 2; ++m.rule)
                for (int count : {1, 15, 16, 17, 255, 256, 257})
                    if (count < 255 || (m.rule == 0) == (count != 256)) {
                        body(m, left + count);
                        if (HasFatalFailure())
                            return;
                    }
        }
    }

    State fresh;
};

TEST_F(GrowingPicture, ABlendThatReadsTheLeftNeighbourSmears)
{
    blendLook = oneMoreThanTheLeft;
    for (int shahei : blending)
        forEachForm(shahei, NINEFOLD_BLEND_CUSTOM, NINEFOLD_MULTI_NONE,
                    [&](const Modes &m, int right) { expectGrown(m, right, [](uint32_t &pixel) { return (&pixel)[-1] + 1; }); });
    // In figures: columns 211 and 219 are zeros, and a smear begins anew from what stands there.
    const Modes unit{.blend = NINEFOLD_BLEND_CUSTOM};
    place(unit, 211, 3, 225, 4);
    places.clear();
    for (int x = 211; x < 225; ++x)
        if (x != 211 && x != 219)
            places.push_back({x, 3});
    clearPicture();
    underEverySet([&] {
        blendCalls = 0;
        kernel(unit)();
    });
    EXPECT_EQ(at(212, 3), ground + 1);
    EXPECT_EQ(at(218, 3), ground + 7);
    EXPECT_EQ(at(219, 3), ground);
    EXPECT_EQ(at(220, 3), ground + 1);
    EXPECT_EQ(at(224, 3), ground + 5);
}

TEST_F(GrowingPicture, AMultiThatReadsLeftAndAbove)
{
    multiLook = leftAndAbove;
    for (int shahei : copying)
        for (int multi : mixing)
            forEachForm(shahei, NINEFOLD_BLEND_COPY, multi, [&](const Modes &m, int right) {
                expectGrown(m, right, [](uint32_t &pixel) { return leftAndAbove(&pixel, 512); });
            });
}

TEST_F(GrowingPicture, AFarPixelIsAsItIsByThen)
{
    multiLook = blendLook = farBack;
    for (int multi : mixing)
        forEachForm(NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_COPY, multi, [&](const Modes &m, int right) {
            expectGrown(m, right, [](uint32_t &pixel) { return farBack(&pixel, 512); });
        });
    forEachForm(NINEFOLD_SHAHEI_STIPPLE, NINEFOLD_BLEND_CUSTOM, NINEFOLD_MULTI_NONE,
                [&](const Modes &m, int right) { expectGrown(m, right, [](uint32_t &pixel) { return farBack(&pixel, 512); }); });
}

TEST_F(GrowingPicture, BesideAnOperatorOfTheLibrary)
{
    for (int shahei : blending)
        for (int multi : mixing) {
            // the library's blend, xor, takes what the host's multi makes
            multiLook = leftAndAbove;
            rs.multiFunc = hostMulti;
            SetBlendMode(NINEFOLD_BLEND_XOR);
            forEachForm(shahei, NINEFOLD_BLEND_CUSTOM, multi, [&](const Modes &m, int right) {
                expectGrown(m, right, [](uint32_t &pixel) { return pixel ^ leftAndAbove(&pixel, 512); });
            });
            forEachForm(shahei, NINEFOLD_BLEND_MERGE, multi, [&](const Modes &m, int right) {
                rs.writeMask = 0x00FF0FFF;
                expectGrown(m, right,
                            [](uint32_t &pixel) { return (pixel & ~0x00FF0FFFu) | (leftAndAbove(&pixel, 512) & 0x00FF0FFF); });
            });
            // the host's blend sees the picture, whatever the library's multi makes
            blendLook = oneMoreThanTheLeft;
            SetBlendModeMulti(NINEFOLD_MULTI_OP_XOR);
            rs.blendFunc = hostBlend;
            forEachForm(shahei, NINEFOLD_BLEND_CUSTOM, multi, [&](const Modes &m, int right) {
                expectGrown(m, right, [](uint32_t &pixel) { return (&pixel)[-1] + 1; });
            });
        }
}

TEST_F(GrowingPicture, WhereBothAreTheHostsTheyAlternate)
{
    multiLook = leftAndAbove;
    blendLook = oneMoreThanTheLeft;
    for (int shahei : blending)
        for (int multi : mixing)
            forEachForm(shahei, NINEFOLD_BLEND_CUSTOM, multi, [&](const Modes &m, int right) {
                expectGrown(m, right, [](uint32_t &pixel) { return (&pixel)[-1] + 1; });
                for (size_t k = 0; k < which.size(); ++k)
                    ASSERT_EQ(which[k], k % 2 ? 'b' : 'm') << m << ", call " << k;
            });
}

TEST_F(GrowingPicture, ALineSmearsAlongItself)
{
    blendLook = [](const uint32_t *pixel, unsigned pitch) { return pixel[-1 - static_cast<int>(pitch)] + pixel[-1] + 1; };
    corners(300, 1, 306, 7);
    std::fill_n(rs.color, 2, 0x12345678u);
    for (int shahei : {NINEFOLD_SHAHEI_NONE, NINEFOLD_SHAHEI_STIPPLE})
        for (int filter : {NINEFOLD_FILTER_FLAT, NINEFOLD_FILTER_GOURAUD}) {
            places.clear();
            for (int k = 0; k < 6; ++k)
                if (shahei == 0 || !(0x4210 >> (15 - (300 + k) % 16) & 1))
                    places.push_back({300 + k, 1 + k});
            clearPicture();
            for (const Place &p : places)
                at(p.x, p.y) = blendLook(&at(p.x, p.y), 512);
            const std::vector<uint32_t> expected = state().pixels;
            clearPicture();
            underEverySet([&] {
                blendCalls = 0;
                kernel({.shape = NINEFOLD_SHAPE_LINE, .filter = filter, .shahei = shahei, .blend = NINEFOLD_BLEND_CUSTOM})();
                EXPECT_EQ(blendCalls, places.size());
                EXPECT_EQ(state().pixels, expected);
            });
        }
}

// Priorities grow with the picture: in Shahei mode 2 the left neighbour's is written before the next pixel's operator is called.
TEST_F(GrowingPicture, PrioritiesGrowWithIt)
{
    static const uint8_t *priorities;
    priorities = z.data();
    multiLook = [](const uint32_t *pixel, unsigned) {
        const ptrdiff_t k = pixel - rs.dstPixels;
        return uint32_t{priorities[k - 1]} << 8 | priorities[k];
    };
    rs.zRef = 77;
    forEachForm(NINEFOLD_SHAHEI_PLANE_PRIORITY, NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_COLOUR, [&](const Modes &m, int right) {
        std::fill(fresh.z.begin(), fresh.z.end(), uint8_t{5});
        expectGrown(m, right, [this](uint32_t &pixel) {
            uint8_t *const priority = z.data() + (&pixel - frame->pixels);
            const uint32_t seen = uint32_t{priority[-1]} << 8 | priority[0];
            *priority = 77;
            return seen;
        });
    });
}

// What a kernel draws at once is what it draws when the clip rectangle lets one pixel through at a time.
class GrowingPictureOfEveryKernel : public Furnished {};

uint32_t digest(uint32_t first, uint32_t second, const uint32_t *pixel, unsigned pitch)
{
    return first + 3 * second + 5 * pixel[-1] + 7 * pixel[-static_cast<int>(pitch)] + 11 * pixel[0] + 13 * pixel[-37];
}

std::vector<Place> multiPlaces, blendPlaces;
bool recording;

uint32_t seeingOperator(std::vector<Place> &list, size_t call, uint32_t first, uint32_t second)
{
    if (recording)
        list.push_back({rs.clipLeft, rs.clipTop});
    const Place p = call < list.size() ? list[call] : Place{1, 1};
    return digest(first, second, rs.dstPixels + (static_cast<size_t>(p.y) << rs.dstShift) + p.x, rs.dstPitch);
}

uint32_t seeingMulti(uint32_t first, uint32_t second) { return seeingOperator(multiPlaces, multiCalls++, first, second); }

uint32_t seeingBlend(uint32_t first, uint32_t second) { return seeingOperator(blendPlaces, blendCalls++, first, second); }

TEST_F(GrowingPictureOfEveryKernel, IsThatOfItsPixelsOneByOne)
{
    table0[14].startU = 0x123456; // a row left out moves the stipple on from the clip rectangle's top
    const int windows[][4] = {{8, 12, 52, 14}, {20, 10, 37, 13}, {31, 11, 33, 15}};
    int n = 0;
    forEachKernel([&](const Axes &a, DrawFunc func) {
        const bool hasMulti = a.multi != NINEFOLD_MULTI_NONE, hasBlend = a.blend == NINEFOLD_BLEND_CUSTOM;
        if ((!hasMulti && !hasBlend) || a.rectOpt == NINEFOLD_RECT_RUNS ||
            a.shape == NINEFOLD_SHAPE_LINE) // runs are cut where the clip rectangle begins
            return;
        ++n;
        placeLargely(a.shape);
        SetBlendModeMulti(NINEFOLD_MULTI_OP_XOR);
        SetBlendMode(NINEFOLD_BLEND_XOR);
        const int hosts = n % 3; // which are the host's
        if (hosts != 1)
            rs.multiFunc = seeingMulti;
        if (hosts != 0)
            rs.blendFunc = seeingBlend;
        if (!hasMulti)
            rs.blendFunc = seeingBlend;
        if (!hasBlend)
            rs.multiFunc = seeingMulti;
        const auto &w = windows[n / 3 % 3];
        const State before = state();
        multiPlaces.clear(), blendPlaces.clear();
        multiCalls = blendCalls = 0;
        recording = true;
        for (int y = w[1]; y < w[3]; ++y)
            for (int x = w[0]; x < w[2]; ++x) {
                clip(x, y, x + 1, y + 1);
                func();
            }
        recording = false;
        const State expected = state();
        for (int set = 0; set < ninefold::usableSets(); ++set) {
            ASSERT_TRUE(ninefold::useSet(set));
            restore(before);
            clip(w[0], w[1], w[2], w[3]);
            multiCalls = blendCalls = 0;
            func();
            ASSERT_EQ(multiCalls, multiPlaces.size()) << nameOf(a);
            ASSERT_EQ(blendCalls, blendPlaces.size()) << nameOf(a);
            ASSERT_TRUE(state().looksLike(expected)) << nameOf(a) << " under " << ninefold::setNames[set];
        }
        restore(before);
    });
}

} // namespace
