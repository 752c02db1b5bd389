#include "scene.h"

#include "core/catalogue.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace page {
namespace {

constexpr size_t pixelCount = size_t{screenWidth} * bufferHeight;
// Some kernels reach for words beside the clip rectangle, as their headers say.
constexpr size_t room = 16384;
constexpr int tableRows = 8192 + 2;

struct Screen {
    std::vector<uint32_t> pixels = std::vector<uint32_t>(pixelCount + 2 * room);
    std::vector<uint16_t> plane = std::vector<uint16_t>(pixelCount / 16 + 2 * room);
    std::vector<uint8_t> priorities = std::vector<uint8_t>(pixelCount + 2 * room);
    std::vector<LineTableRecord> table0 = std::vector<LineTableRecord>(tableRows), table1 = table0;
    std::vector<int32_t> shift = std::vector<int32_t>(bufferHeight);
    Texture *const frameBuffer = make();
    Texture *fitted = nullptr; // a picture laid on the frame buffer position for position

    Texture *make()
    {
        MakeUVLShiftTable();
        MakeShaheiRunlengthTbl();
        MakeDrawMaskTable();
        MakeDrawFuncTable();
        Texture *const view = CreateTexture(0x8000, 0x8000); // a record of 4 GiB comes without pixels of its own
        view->pixels = pixels.data() + room;
        view->flags |= NINEFOLD_TEXTURE_HOST_PIXELS;
        view->width = view->origWidth = screenWidth, view->log2Width = 8;
        view->height = view->origHeight = bufferHeight, view->log2Height = 8;
        return view;
    }
};
static_assert(screenWidth == 1 << 8 && bufferHeight == 1 << 8);

Screen &screen()
{
    static Screen one;
    return one;
}

// A host's own operator.
uint32_t average(uint32_t destination, uint32_t source)
{
    return (destination & source) + ((destination ^ source) >> 1 & 0x7F7F7F7F);
}

Texture *prepared(Picture picture, const ninefold::Axes &a)
{
    Texture *const texture = textureOf(picture);
    if (ninefold::readsLevels(a.filter))
        CreateMipmapTexture(texture);
    if (a.rectOpt == NINEFOLD_RECT_RUNS && !texture->runlengthMap)
        CreateRunlengthMap(texture);
    return texture;
}

// The picture where the rectangle is, on a texture as large as the frame buffer, with its map of zeros.
Texture *fit(Texture *picture, const RenderState &fields)
{
    Screen &s = screen();
    if (!s.fitted)
        s.fitted = CreateTexture(screenWidth, bufferHeight);
    ClearTexture(s.fitted);
    const int32_t left = std::min(fields.vertex[0].x, fields.vertex[1].x), top = std::min(fields.vertex[0].y, fields.vertex[1].y);
    for (int32_t y = std::max(top, 0); y < std::min(top + int32_t(picture->height), bufferHeight); ++y)
        for (int32_t x = std::max(left, 0); x < std::min(left + int32_t(picture->width), screenWidth); ++x)
            s.fitted->pixels[y * screenWidth + x] = picture->pixels[(size_t(y - top) << picture->log2Width) + size_t(x - left)];
    CreateZeroPixelMap(s.fitted);
    return s.fitted;
}

} // namespace

uint32_t *screenPixels() { return screen().frameBuffer->pixels; }
uint16_t *shaheiPlane() { return screen().plane.data() + room; }
uint8_t *priorityPlane() { return screen().priorities.data() + room; }

void clearScreen(const State &state)
{
    const Texture &back = *textureOf(state.back);
    uint32_t *pixel = screenPixels();
    std::fill_n(pixel - room, room, 0u);
    for (uint32_t y = 0; y < bufferHeight; ++y)
        for (uint32_t x = 0; x < screenWidth; ++x)
            *pixel++ = back.pixels[size_t(y % back.origHeight) << back.log2Width | x % back.origWidth];
    fillPlane(state.plane, shaheiPlane());
    fillPriority(state.priority, priorityPlane());
}

void setState(const State &state)
{
    Screen &s = screen();
    const ninefold::Axes a = ninefold::axesOf(state.code);
    rs = state.fields;
    SetFrameBuffer(s.frameBuffer);
    rs.shaheiPlane = shaheiPlane();
    rs.zBuffer = priorityPlane();
    rs.tex0 = prepared(state.tex0, a);
    if (a.rectOpt == NINEFOLD_RECT_PLANE_RUNS) {
        rs.tex0 = fit(rs.tex0, state.fields);
        rs.uv0[0] = {std::min(rs.vertex[0].x, rs.vertex[1].x) * 0x10000, std::min(rs.vertex[0].y, rs.vertex[1].y) * 0x10000};
    }
    if (a.multi == NINEFOLD_MULTI_TEXTURE)
        rs.tex1 = prepared(state.tex1, a);
    if (a.rule)
        rs.tex2 = textureOf(state.tex2);
    if (a.rectOpt == NINEFOLD_RECT_TABLE) {
        fillTable(state.table0, *rs.tex0, s.table0.data(), tableRows);
        fillTable(state.table1, *textureOf(state.tex1), s.table1.data(), tableRows);
        rs.lineTable0 = s.table0.data();
        rs.lineTable1 = s.table1.data();
    }
    if (a.shape == NINEFOLD_SHAPE_TRIANGLE && state.shift != Shift::NONE) {
        fillShift(state.shift, s.shift.data());
        rs.scanShift = s.shift.data();
    }
    rs.ruleCurve = state.curve;

    SetShapeMode(a.shape);
    SetPersMode(a.pers);
    SetRuleAlphaMode(a.rule);
    SetPrescaleMode(a.prescale);
    SetFilterMode(a.filter);
    SetRectOptMode(a.rectOpt);
    SetShaheiMode(a.shahei);
    SetMultiMode(a.multi);
    SetBlendMode(a.blend == NINEFOLD_BLEND_CUSTOM && state.blendOperator != ownOperator ? state.blendOperator : a.blend);
    if (a.blend == NINEFOLD_BLEND_CUSTOM && state.blendOperator == ownOperator)
        rs.blendFunc = average;
    SetPrescaleMultiMode(state.bank);
    SetBlendModeMulti(state.multiOp);
    SetPresetDrawMask(state.stipple);
}

void draw(const State &state)
{
    clearScreen(state);
    setState(state);
    SearchDrawFunc(state.code)();
}

} // namespace page
