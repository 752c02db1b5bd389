#include "host.h"

#include <ninefold/kit/codes.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace gallery {
namespace {

std::string pictureFolder;

std::string pathOf(const std::string &name) { return pictureFolder + "/" + name + ".bmp"; }

TexturePtr checked(Texture *texture, const std::string &name)
{
    if (!texture || !texture->pixels)
        throw std::runtime_error("cannot load " + pathOf(name));
    return TexturePtr(texture);
}

constexpr uint32_t keyColour = 0xFFFF00FF;

} // namespace

void setPictureFolder(std::string folder) { pictureFolder = std::move(folder); }

TexturePtr load(const std::string &name) { return checked(LoadTexture(pathOf(name).data()), name); }

TexturePtr loadKeyed(const std::string &name)
{
    TexturePtr picture = load(name);
    SetClearPixel(picture.get(), keyColour);
    return picture;
}

TexturePtr loadAdjusted(const std::string &name, unsigned long alignX, unsigned long alignY)
{
    return checked(LoadTextureAdjust(pathOf(name).data(), alignX, alignY, nullptr, nullptr, nullptr, nullptr), name);
}

TexturePtr loadMipped(const std::string &name)
{
    TexturePtr picture = load(name);
    CreateMipmapTexture(picture.get());
    return picture;
}

void addMatte(Texture &picture)
{
    const double centreX = picture.origWidth / 2.0, centreY = picture.origHeight / 2.0;
    for (uint32_t y = 0; y < picture.origHeight; ++y)
        for (uint32_t x = 0; x < picture.origWidth; ++x) {
            const double distance = std::hypot((x - centreX) / centreX, (y - centreY) / centreY);
            const double alpha = std::clamp((1.05 - distance) / 0.45, 0.0, 1.0);
            uint32_t &word = picture.pixels[(size_t(y) << picture.log2Width) + x];
            word = (word & 0xFFFFFF) | uint32_t(1 + std::lround(254 * alpha)) << 24;
        }
}

Canvas::Canvas(int canvasWidth, int canvasHeight) : width(canvasWidth), height(canvasHeight), screen_(canvasWidth, canvasHeight)
{
    screen_.clear(0);
    use();
}

void Canvas::use()
{
    rs = RenderState{};
    screen_.select();
    rs.prescale = rs.prescaleMulti = 256;
    rs.mosaicSize = rs.mosaicSize1 = 1;
    SetBlendModeMulti(NINEFOLD_MULTI_OP_SECOND);
}

bool Canvas::taken(int x, int y) const { return screen_.get()->shaheiPlane[index(x, y) >> 4] >> (15 - (x & 15)) & 1; }

uint8_t Canvas::priority(int x, int y) const { return screen_.get()->zBuffer[index(x, y)]; }

void Canvas::fillPriority(uint8_t value)
{
    std::fill_n(screen_.get()->zBuffer, size_t(pixels()->width) * pixels()->height, value);
}

void Canvas::paintShahei(const Canvas &from)
{
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            word(x, y) = from.taken(x, y) ? 0xFFFFFFFF : 0xFF202020;
}

void Canvas::paintPriorities(const Canvas &from)
{
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            word(x, y) = 0xFF000000 | from.priority(x, y) * 0x10101u;
}

TexCoord texel(double u, double v) { return {int32_t(std::lround(u * 65536)), int32_t(std::lround(v * 65536))}; }

void corners(int x0, int y0, int x1, int y1)
{
    rs.vertex[0] = at(x0, y0);
    rs.vertex[1] = at(x1, y1);
}

void source(TexCoord (&uv)[4], double u, double v, double width, double height)
{
    uv[0] = texel(u, v);
    uv[1] = texel(u + width, v + height);
}

uint32_t codeOf(const Modes &modes)
{
    SetShapeMode(modes.shape);
    SetFilterMode(modes.filter);
    SetRectOptMode(modes.rectOpt);
    SetShaheiMode(modes.shahei);
    SetMultiMode(modes.multi);
    SetRuleAlphaMode(modes.rule);
    SetPrescaleMode(modes.prescale);
    SetPersMode(modes.pers);
    SetBlendMode(modes.blend);
    return uint32_t(CreateDrawCode());
}

void draw(const Modes &modes)
{
    const uint32_t code = codeOf(modes);
    if (!nfkCodeExists(code))
        throw std::runtime_error("there is no kernel for " + describe(modes));
    SearchDrawFunc(code)();
}

void cover(const Canvas &canvas, Texture *picture)
{
    const double width = picture->origWidth, height = picture->origHeight;
    rs.tex0 = picture;
    corners(0, 0, canvas.width, canvas.height);
    source(rs.uv0, width / canvas.width / 2, height / canvas.height / 2, width, height);
    draw({.filter = NINEFOLD_FILTER_BILINEAR, .rectOpt = NINEFOLD_RECT_STRETCH});
}

void sprite(Texture *picture, int x, int y, const Modes &modes)
{
    rs.tex0 = picture;
    corners(x, y, x + int(picture->width), y + int(picture->height));
    source(rs.uv0, 0, 0, picture->width, picture->height);
    draw(modes);
}

void triangle(const Corner &a, const Corner &b, const Corner &c, const Modes &modes)
{
    int i = 0;
    for (const Corner *corner : {&a, &b, &c}) {
        rs.vertex[i] = at(int(std::lround(corner->x)), int(std::lround(corner->y)), int(std::lround(corner->z)));
        rs.uv0[i++] = texel(corner->u, corner->v);
    }
    Modes triangular = modes;
    triangular.shape = NINEFOLD_SHAPE_TRIANGLE;
    draw(triangular);
}

void quad(const Corner &a, const Corner &b, const Corner &c, const Corner &d, const Modes &modes)
{
    triangle(a, b, c, modes);
    triangle(b, d, c, modes);
}

const char *multiOperatorName(int32_t value)
{
#define GALLERY_NAME(name, number, word, meaning)                                                                                \
    if (value == (number))                                                                                                       \
        return word;
    NINEFOLD_MULTI_OPS(GALLERY_NAME)
#undef GALLERY_NAME
    return multiOperatorName(NINEFOLD_MULTI_OP_SECOND);
}

std::string describe(const Modes &modes)
{
    char name[128];
    nfkCodeName(codeOf(modes), name, sizeof name);
    std::string words = name;
    if (modes.multi != NINEFOLD_MULTI_NONE)
        words += std::string(" by ") + multiOperatorName(rs.blendModeMulti) + (rs.prescaleMultiMode ? ", second bank" : "");
    return words;
}

} // namespace gallery
