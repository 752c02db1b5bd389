// Worked examples for the reference, each small enough to be done by hand. A program of its own that needs no library:
//   g++ -std=c++20 -Iinclude tests/reference/(all).cpp && ./a.out
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>

#include "arithmetic.h"
#include "fetch.h"
#include "operators.h"
#include "pixel.h"
#include "reference.h"

Texture::~Texture() = default; // the library's, when it is linked

using namespace reference;

namespace {

int failures = 0;

void check(bool holds, const char *what, int sourceLine)
{
    if (holds)
        return;
    std::printf("line %d: %s\n", sourceLine, what);
    ++failures;
}

#define CHECK(condition) check((condition), #condition, __LINE__)

constexpr int32_t one = 0x10000; // a texel in 16.16

class Picture {
public:
    Texture texture{};

    Picture(uint32_t width, uint32_t height, uint32_t colour) : pixels(width * height, colour)
    {
        texture.pixels = pixels.data();
        texture.width = width;
        texture.height = height;
        while (1u << texture.log2Width < width)
            ++texture.log2Width;
        while (1u << texture.log2Height < height)
            ++texture.log2Height;
    }

    // each texel tells where it is: alpha 0x80, its row in green, its column in blue
    static Picture map(uint32_t width, uint32_t height)
    {
        Picture picture(width, height, 0);
        for (uint32_t i = 0; i < width * height; ++i)
            picture.pixels[i] = 0x80000000 | i / width << 8 | i % width;
        return picture;
    }

    uint32_t &at(int x, int y) { return pixels[static_cast<size_t>(y) * texture.width + static_cast<size_t>(x)]; }

    void makeMaps()
    {
        runs = runLengthMap(texture);
        zeros = zeroPixelMap(texture);
        texture.runlengthMap = runs.data();
        texture.zeroPixelMap = zeros.data();
    }

    void makeChain()
    {
        texture.mip[0] = &texture;
        texture.mipCount = 1;
        for (uint32_t w = texture.width / 2, h = texture.height / 2; w != 0 && h != 0; w /= 2, h /= 2) {
            levels.push_back(std::make_unique<Picture>(w, h, 0));
            Texture &level = levels.back()->texture;
            fillMipLevel(*texture.mip[texture.mipCount - 1], level);
            texture.mip[texture.mipCount++] = &level;
        }
    }

    Picture(Picture &&) = default;

private:
    std::vector<uint32_t> pixels;
    std::vector<int8_t> runs;
    std::vector<uint16_t> zeros;
    std::vector<std::unique_ptr<Picture>> levels;
};

constexpr uint32_t background = 0x11223344;

// A frame buffer of 64 by 32 with its planes, and a state that draws into it.
class World {
public:
    RenderState state{};
    std::vector<uint32_t> pixels = std::vector<uint32_t>(64 * 32, background);
    std::vector<uint16_t> plane = std::vector<uint16_t>(64 * 32 / 16 + 1);
    std::vector<uint8_t> priority = std::vector<uint8_t>(64 * 32);

    World()
    {
        state.dstPixels = pixels.data();
        state.dstShift = 6;
        state.dstPitch = 64;
        state.shaheiPlane = plane.data();
        state.zBuffer = priority.data();
        state.clipRight = 64;
        state.clipBottom = 32;
        state.prescale = state.prescaleMulti = 256;
        state.mosaicSize = state.mosaicSize1 = 1;
    }

    void corners(int32_t x0, int32_t y0, int32_t x1, int32_t y1)
    {
        state.vertex[0] = {x0, y0, 1};
        state.vertex[1] = {x1, y1, 1};
    }

    void triangle(Vertex a, Vertex b, Vertex c)
    {
        state.vertex[0] = a;
        state.vertex[1] = b;
        state.vertex[2] = c;
    }

    uint32_t at(int x, int y) const { return pixels[static_cast<size_t>(y * 64 + x)]; }

    int drawn() const
    {
        int count = 0;
        for (const uint32_t pixel : pixels)
            count += pixel != background ? 1 : 0;
        return count;
    }

    bool taken(int x, int y) const { return (plane[static_cast<size_t>(y * 4 + x / 16)] & 0x8000 >> (x & 15)) != 0; }
};

struct Axes {
    uint32_t shape = 1, multi = 3, blend = 0, shahei = 0, option = 0, filter = 0, prescale = 0, rule = 0, pers = 0;
};

// Triangles, lines and fills have option 7.
void drawWith(World &world, const Axes &axes)
{
    const uint32_t code = (axes.shape | 0x68) | axes.multi << 8 | axes.blend << 10 | axes.shahei << 15 | axes.option << 18 |
                          axes.filter << 21 | axes.prescale << 25 | axes.rule << 26 | axes.pers << 27;
    check(exists(code), "the drawn code exists", static_cast<int>(code));
    draw(code, world.state);
}

void catalogueExamples()
{
    const std::vector<uint32_t> codes = catalogue();
    CHECK(codes.size() == 30912);
    std::map<uint32_t, int> shapes, filters, options, multis;
    for (const uint32_t code : codes) {
        ++shapes[code & 3];
        ++multis[code >> 8 & 3];
        ++options[code >> 18 & 7];
        ++filters[code >> 21 & 15];
    }
    CHECK(shapes[0] == 192 && shapes[1] == 19584 && shapes[2] == 11136);
    CHECK(filters[0] == 5376 && filters[1] == 4608 && filters[2] == 3840 && filters[6] == 480 && filters[8] == 4608);
    CHECK(options[0] == 2304 && options[3] == 5376 && options[4] == 0 && options[5] == 736 && options[6] == 32);
    CHECK(multis[0] == 7488 && multis[3] == 8448);
    CHECK(exists(0x369) && exists(0xDC0368) && exists(0x1C036A) && exists(0x188369) && exists(0xFDA768) && exists(0x81C036A));
    CHECK(!exists(0x1C0368) && !exists(0x6B) && !exists(0) && !exists(0x10000369) && !exists(0x361));
}

void operatorExamples()
{
    RenderState state{};
    state.prescaleMulti = 256;
    setOperatorState(&state);
    CHECK(blended(1, 0, 0xFFFFFFFF) == 0x00FEFEFE);
    CHECK(blended(4, 0x22345678, 0xFFFFFFFF) == 0xFFFFFFFF && blended(4, 0x22345678, 0x00FFFFFF) == 0x22345678);
    CHECK(blended(5, 0, 0) == 0x01010100 && blended(5, 1, 1) == 0x01010102 && blended(5, 0xFFFFFF, 0xFFFFFF) == 0x01FFFFFE);
    CHECK(blended(6, 0xFFFFFFFF, 0xFFFFFFFF) == 0 && blended(6, 0, 0xFFFFFFFF) == 0x01010100);
    CHECK(blended(7, 0xFFFFFFFF, 0xFFFFFFFF) == 0x00FEFEFE);
    CHECK(blended(8, 0xFFFFFFFF, 0xFFFFFFFF) == 0x01FFFFFF && blended(8, 0x00808080, 0x00FFFFFF) == 0x00FEFEFE);
    CHECK(blended(9, 0, 0) == 0xFF010101);
    CHECK(blended(10, 0x00808080, 0) == 0x00030303 && blended(10, 0x007F7F7F, 0x00FFFFFF) == 0x00FCFCFC);
    CHECK(blendOperator(14)(0, 0x00FFFFFF) == 0x00FCFCFC && blendOperator(15)(0x00FFFFFF, 0) == 0x00FCFCFC);
    CHECK(blendOperator(12) == nullptr && blendOperator(-1) == nullptr);
    CHECK(blendOperator(13)(1, 2) == 2 && blendOperator(20)(1, 2) == 2 && blendOperator(19)(1, 2) == 1);
    CHECK(scaleRgb(0xFF123456, 256) == 0x00123456 && scaleRgb(0x00FFFFFF, 255) == 0x00FEFEFE);
    CHECK(scaleAlpha(0x80112233, 128) == 0x40112233);
    CHECK(multiOperator(0, false)(0xAA000000, 0x00123456) == 0xAA123456);
    CHECK(multiOperator(12, false) == multiOperator(0, false) && multiOperator(20, true) == multiOperator(0, true));
    CHECK(multiOperator(-1, true) == multiOperator(0, true));
    CHECK(multiOperator(2, false)(0xAA112233, 0) >> 24 == 0 && multiOperator(2, true)(0xAA112233, 0) >> 24 == 0xAA);
    CHECK(multiOperator(16, false)(0xAA00FF00, 0xFF0000FF) == 0xAA00FFFF);
    state.writeMask = 0xFF;
    CHECK(blended(11, 0x01020304, 0x05060708) == 0x01020308);

    state.ruleThreshold = 100;
    state.ruleWidth = 2;
    CHECK(softEdge(state, 0xFF000000, 0xFFFFFFFF, 101) == 0x007F7F7F); // weight 128
    state.ruleThreshold = 0;
    state.ruleWidth = 256;
    const auto weight = [&state](int32_t value) { // of white over black, rounded back up
        return std::lround(std::ceil((softEdge(state, 0, 0xFF, value) & 255) * 256.0 / 255));
    };
    state.ruleCurve = 1;
    CHECK(weight(64) == 113 && weight(128) == 192 && weight(192) == 240 && weight(255) == 255);
    state.ruleCurve = 2;
    CHECK(weight(64) == 16 && weight(128) == 64 && weight(192) == 144 && weight(255) == 254);
}

void toolExamples()
{
    CHECK(stipple(0)[5] == 0xFFFF && stipple(1)[0] == 0xFFFE && stipple(1)[8] == 0xFEFF && stipple(1)[1] == 0xFFFF);
    CHECK(stipple(3)[0] == 0xFEFE && stipple(3)[8] == 0xFEFE && stipple(254)[0] == 0x8000 && stipple(254)[1] == 0);
    CHECK(stipple(63) == stipple(260) && stipple(127) == stipple(257));
    CHECK(stipple(191) == stipple(261) && stipple(255) == stipple(256));

    Picture square(2, 2, 0xFFFFFFFF);
    square.at(1, 1) = 0xFEFEFEFE;
    square.makeChain();
    CHECK(square.texture.mipCount == 2 && square.texture.mip[1]->pixels[0] == 0xFEFEFEFE);
    Picture corner(2, 2, 0);
    corner.at(0, 0) = 0x04000003;
    corner.makeChain();
    CHECK(corner.texture.mip[1]->pixels[0] == 0x01000000);

    Picture row(4, 1, 5);
    row.at(0, 0) = row.at(3, 0) = 0;
    CHECK((runLengthMap(row.texture) == std::vector<int8_t>{-1, 2, 1, -1}));
    Picture wide(256, 1, 0);
    CHECK(runLengthMap(wide.texture)[0] == -128 && runLengthMap(wide.texture)[254] == -2);
    Picture narrow(8, 2, 1);
    narrow.at(3, 1) = 0;
    CHECK(zeroPixelMap(narrow.texture)[0] == 0x1000);
    CHECK((runList(0) == std::vector<int8_t>{16}) && (runList(1) == std::vector<int8_t>{15, -1}) && runList(0xAAAA).size() == 16);
}

void unitRectangleExamples()
{
    Picture tile = Picture::map(16, 8);
    tile.at(2, 0) = 0;
    {
        World ordinary, reversed;
        for (World *world : {&ordinary, &reversed}) {
            world->state.tex0 = &tile.texture;
            world->state.uv0[0] = {-one + 0x8000, 0x7FFF};
        }
        ordinary.corners(10, 10, 20, 20);
        reversed.corners(20, 20, 10, 10);
        drawWith(ordinary, {});
        drawWith(reversed, {});
        CHECK(ordinary.pixels == reversed.pixels);
        CHECK(ordinary.at(10, 10) == 0x8000000F && ordinary.at(11, 10) == 0x80000000 && ordinary.at(13, 10) == background);
        CHECK(ordinary.at(19, 19) == 0x80000108 && ordinary.at(20, 19) == background && ordinary.at(19, 20) == background);
    }
    {
        World world;
        world.state.tex0 = &tile.texture;
        world.state.clipLeft = 20;
        world.corners(17, 0, 40, 1);
        drawWith(world, {});
        CHECK(world.at(20, 0) == 0x80000003 && world.at(19, 0) == background && world.at(39, 0) == 0x80000006);
        world.corners(10, 5, 20, 6); // right edge on clipLeft
        world.corners(30, 5, 30, 9); // no width
        drawWith(world, {});
        CHECK(world.at(20, 5) == background && world.at(30, 5) == background);
    }
    { // a plane word is shared with the neighbours, a zero leaves its bit clear
        World world;
        world.state.tex0 = &tile.texture;
        world.state.zRef = 0x107;
        world.plane[0] = 0x8000;
        world.plane[1] = 0x0001;
        world.corners(13, 0, 18, 1);
        drawWith(world, {.shahei = 2});
        CHECK(world.plane[0] == 0x8006 && world.plane[1] == 0xC001); // 13, 14, 16, 17 without 15
        CHECK(world.priority[13] == 7 && world.priority[15] == 0 && world.at(15, 0) == background);
    }
    { // within one word
        World world;
        world.state.tex0 = &tile.texture;
        world.plane[0] = 0x8801;
        world.corners(3, 0, 6, 1); // 4 is taken, 5 reads the zero
        drawWith(world, {.shahei = 1});
        CHECK(world.plane[0] == 0x9801 && world.at(3, 0) != background && world.at(4, 0) == background);
    }
    { // who reads the plane while a row is drawn: neighbours are taken, and a word is marked after its last pixel
        World world;
        Texture planeWords{};
        planeWords.pixels = reinterpret_cast<uint32_t *>(world.plane.data());
        planeWords.width = planeWords.height = 1;
        world.state.tex0 = &planeWords;
        world.corners(13, 0, 18, 1);
        drawWith(world, {.shahei = 1});
        const auto words = [](uint16_t first, uint16_t second) {
            const uint16_t both[2] = {first, second};
            uint32_t texel = 0;
            std::memcpy(&texel, both, sizeof texel);
            return texel;
        };
        for (int x = 13; x < 16; ++x)
            CHECK(world.at(x, 0) == words(0xFFF8, 0x3FFF));
        for (int x = 16; x < 18; ++x)
            CHECK(world.at(x, 0) == words(0xFFFF, 0x3FFF));
        CHECK(world.plane[0] == 7 && world.plane[1] == 0xC000);
    }
    { // a host's operator finds the pixels before its own drawn
        World world;
        world.state.tex0 = &tile.texture;
        world.state.uv0[0] = {0, one};
        static const uint32_t *picture;
        picture = world.state.dstPixels;
        world.state.multiFunc = [](uint32_t, uint32_t) { return picture[pixelInHand - 1] + 1; };
        world.corners(4, 1, 9, 2);
        drawWith(world, {.multi = 2});
        for (int x = 4; x < 9; ++x)
            CHECK(world.at(x, 1) == background + static_cast<uint32_t>(x) - 3);
    }
    { // priority
        World world;
        world.state.tex0 = &tile.texture;
        world.state.zRef = 0x105;
        world.priority[0] = 5;
        world.priority[1] = 4;
        world.corners(0, 0, 2, 1);
        drawWith(world, {.blend = 4, .shahei = 3});
        CHECK(world.at(0, 0) != background && world.at(1, 0) == background);
    }
    { // a zero in the second texture is no hole; the mask stands on the screen
        World world;
        Picture second = Picture::map(16, 8);
        second.at(3, 0) = 0;
        world.state.tex0 = &tile.texture;
        world.state.tex1 = &second.texture;
        world.state.multiFunc = [](uint32_t, uint32_t) -> uint32_t { return 0x77; };
        world.state.drawMask[0] = 0x4000; // column 1
        world.corners(0, 0, 5, 1);
        drawWith(world, {.multi = 0, .shahei = 4});
        CHECK(world.at(0, 0) == 0x77 && world.at(1, 0) == background && world.at(2, 0) == background);
        CHECK(world.at(3, 0) == 0x80000003 && world.at(4, 0) == 0x77);
    }
    { // prescale 0 leaves the alpha, and still writes
        World world;
        world.state.tex0 = &tile.texture;
        world.state.prescale = 0;
        world.corners(0, 0, 2, 1);
        drawWith(world, {.prescale = 1});
        CHECK(world.at(0, 0) == 0x80000000 && world.at(1, 0) == 0x80000000);
    }
}

void runLengthExamples()
{
    { // a hole of 127 is stepped over; one of 128 moves back 128 and shortens the row by as much
        for (const int hole : {127, 128}) {
            Picture picture(256, 1, 0xFF0000FF);
            for (int x = 2; x < 2 + hole; ++x)
                picture.at(x, 0) = 0;
            picture.makeMaps();
            World world;
            world.state.dstShift = 10; // the buffer as two long rows
            world.state.dstPitch = 1024;
            world.state.clipRight = 1024;
            world.state.clipBottom = 2;
            world.state.tex0 = &picture.texture;
            world.corners(300, 0, 440, 1);
            drawWith(world, {.option = 5});
            CHECK(world.pixels[301] == 0xFF0000FF);
            CHECK((world.pixels[302 + 127] == 0xFF0000FF) == (hole == 127));
            CHECK((world.pixels[302 - 128] == 0xFF0000FF) == (hole == 128)); // read from the columns before
        }
    }
    { // a pixel that the rule refuses leaves the source where it is, without a gate
        Picture picture = Picture::map(8, 1);
        picture.at(0, 0) = 0x80000000;
        picture.makeMaps();
        Picture rule(8, 1, 255);
        rule.at(0, 0) = 0;
        World slipping, kept;
        for (World *world : {&slipping, &kept}) {
            world->state.tex0 = &picture.texture;
            world->state.tex2 = &rule.texture;
            world->state.uv2[1] = {8 * one, one};
            world->corners(0, 0, 8, 1);
        }
        drawWith(slipping, {.option = 5, .rule = 1});
        drawWith(kept, {.shahei = 4, .option = 5, .rule = 1});
        CHECK(slipping.at(0, 0) == background && slipping.at(1, 0) == 0x80000000 && slipping.at(7, 0) == 0x80000006);
        CHECK(kept.at(0, 0) == background && kept.at(1, 0) == 0x80000001);
    }
    { // zeros of the map are passed over and stay free
        Picture picture(64, 32, 0xFF123456);
        picture.at(5, 0) = 0;
        picture.makeMaps();
        World world;
        world.state.tex0 = &picture.texture;
        world.corners(0, 0, 16, 1);
        drawNamed("DrawRectTexRunlen_TEST", world.state);
        CHECK(world.plane[0] == 0xFBFF && world.at(5, 0) == background && world.drawn() == 15);
    }
}

void stretchedExamples()
{
    Picture tile = Picture::map(16, 8);
    World unit, stretched;
    unit.state.tex0 = stretched.state.tex0 = &tile.texture;
    unit.corners(0, 0, 16, 8);
    stretched.corners(16, 8, 0, 0); // reversed, and the positions with the corners: the same picture
    stretched.state.uv0[0] = {16 * one, 8 * one};
    drawWith(unit, {});
    drawWith(stretched, {.option = 1});
    CHECK(unit.pixels == stretched.pixels);
    {
        World world; // a step of 0x5555; rows towards zero, columns down
        world.state.tex0 = &tile.texture;
        world.state.uv0[0] = {-0x8000, -0x8000};
        world.state.uv0[1] = {0x8000, -0x8000};
        world.corners(0, 0, 3, 1);
        drawWith(world, {.option = 1});
        CHECK(world.at(0, 0) == 0x8000000F && world.at(1, 0) == 0x8000000F && world.at(2, 0) == 0x80000000);
    }
    { // a taper to a point: the top row reads one texel
        World world;
        world.state.tex0 = &tile.texture;
        world.state.uv0[2] = {0, 8 * one};
        world.state.uv0[3] = {16 * one, 8 * one};
        world.corners(0, 0, 16, 8);
        drawWith(world, {.option = 2});
        CHECK(world.at(0, 0) == world.at(15, 0) && world.at(0, 0) == 0x80000000 && world.at(15, 4) == 0x80000407);
    }
    { // a row left out: mask and plane stand still, records go on; clipped rows count
        std::vector<LineTableRecord> table(8, LineTableRecord{0, 0, 16 * one, 0});
        for (int32_t i = 0; i < 8; ++i)
            table[static_cast<size_t>(i)].startV = table[static_cast<size_t>(i)].endV = i * one;
        table[4].startU = NINEFOLD_SKIP_ROW;
        World world;
        world.state.tex0 = &tile.texture;
        world.state.lineTable0 = table.data();
        world.state.clipTop = 2;
        world.state.drawMask[4] = 0x8000;
        world.corners(0, 0, 16, 8);
        drawWith(world, {.shahei = 1, .option = 3});
        CHECK(world.at(3, 2) == 0x80000203 && world.at(0, 4) == background && world.at(0, 5) == background);
        CHECK(world.at(1, 5) == 0x80000501 && world.taken(1, 4) && !world.taken(0, 4));
        CHECK(world.taken(15, 6) && !world.taken(15, 7));
    }
    { // blocks; size 1 is point sampling
        World blocks;
        blocks.state.tex0 = &tile.texture;
        blocks.state.mosaicSize = 4;
        blocks.state.mosaicSize1 = 8;
        blocks.corners(0, 0, 16, 8);
        drawWith(blocks, {.filter = 8});
        CHECK(blocks.at(7, 3) == 0x80000000 && blocks.at(8, 3) == 0x80000008 && blocks.at(8, 4) == 0x80000408);
        World ones;
        ones.state.tex0 = &tile.texture;
        ones.corners(0, 0, 16, 8);
        drawWith(ones, {.filter = 8});
        CHECK(ones.pixels == unit.pixels);
    }
}

void bilinearExamples()
{
    const FourTexels centred(Position{0x8000, 0x8000});
    CHECK(centred.centre == 254 && centred.across == 1 && centred.along == 1 && centred.diagonal == 0);
    const FourTexels corner(Position{0, 0});
    CHECK(corner.centre == 64 && corner.across == 64 && corner.along == 64 && corner.diagonal == 64);

    Picture picture(4, 4, 0xFF000000);
    picture.at(3, 0) = 0xFFFFFFFF; // left of column 0, around the edge
    World world;
    world.state.tex0 = &picture.texture;
    world.corners(0, 0, 1, 1);
    drawWith(world, {.filter = 1});
    CHECK(world.at(0, 0) == 0x003F3F3F); // a quarter, alpha 0
    drawWith(world, {.blend = 4, .filter = 1});
    CHECK(world.at(0, 0) == blended(4, 0x003F3F3F, 0xFF3F3F3F));

    picture.at(0, 0) = 0; // a zero centre draws nothing
    World hole;
    hole.state.tex0 = &picture.texture;
    hole.corners(0, 0, 1, 1);
    drawWith(hole, {.filter = 1});
    CHECK(hole.drawn() == 0);

    // the stippled choice: at fraction 128 the share of the texel to the right is 0, so the left one shows everywhere
    std::vector<LineTableRecord> table(1, LineTableRecord{0x8000, 0x8000, 0x8000, 0x8000});
    Picture pair(2, 1, 0xFF0000FF);
    pair.at(1, 0) = 0xFFFF0000;
    World dithered;
    dithered.state.tex0 = &pair.texture;
    dithered.state.lineTable0 = table.data();
    dithered.corners(0, 0, 16, 1);
    drawWith(dithered, {.option = 3, .filter = 1});
    for (int x = 0; x < 16; ++x)
        CHECK(dithered.at(x, 0) == 0xFF0000FF);
    table[0] = {0, 0x8000, 0, 0x8000}; // half way: the right one on the 128 positions of stipple 128
    drawWith(dithered, {.option = 3, .filter = 1});
    for (int x = 0; x < 16; ++x)
        CHECK(dithered.at(x, 0) == ((stipple(128)[static_cast<size_t>(x)] >> x & 1) != 0 ? 0xFFFF0000 : 0xFF0000FF));
}

void mipExamples()
{
    Picture picture = Picture::map(128, 128);
    picture.makeChain();
    {
        std::vector<LineTableRecord> table(2, LineTableRecord{0, 0, 100 * one, 0});
        World world;
        world.state.tex0 = world.state.tex1 = &picture.texture;
        world.state.lineTable0 = world.state.lineTable1 = table.data();
        world.state.multiFunc = multiOperator(19, false);
        world.state.mipFrac = world.state.mipFrac1 = -7;
        world.corners(0, 0, 49, 1); // step 0x20A72
        drawWith(world, {.multi = 0, .option = 3, .filter = 3});
        CHECK(world.state.mipFrac1 == 255 - (0x20A72 >> 9 & 255) && world.state.mipFrac == -7 && world.state.mipTex == nullptr);
        CHECK(world.at(1, 0) == picture.texture.mip[1]->pixels[1]);
        drawWith(world, {.shahei = 1, .option = 3, .filter = 2});
        CHECK(world.state.mipFrac == 250 && world.state.mipTex == picture.texture.mip[2]);

        table[0].endU = 2000 * one; // asks for more than the chain has
        picture.texture.mipCount = 3;
        drawWith(world, {.option = 3, .filter = 2});
        picture.texture.mipCount = 8;
        CHECK(world.state.mipTex == picture.texture.mip[2]);
        table[0].startU = NINEFOLD_SKIP_ROW;
        world.state.mipTex = nullptr;
        drawWith(world, {.option = 3, .filter = 2});
        CHECK(world.state.mipTex == nullptr);
    }
    { // two texels a pixel: level 1; the smaller density decides; rs is restored
        World world;
        world.state.tex0 = &picture.texture;
        world.state.uv0[1] = {32 * one, 32 * one};
        world.corners(0, 0, 16, 16);
        drawWith(world, {.option = 1, .filter = 2});
        CHECK(world.state.mipFrac == 255 && world.state.mipTex == picture.texture.mip[2]);
        CHECK(world.at(3, 1) == picture.texture.mip[1]->pixels[64 + 3]);
        CHECK(world.state.tex0 == &picture.texture && world.state.uv0[1].u == 32 * one);
        world.state.mipTex = nullptr;
        world.state.uv0[1].v = 24 * one; // one and a half
        drawWith(world, {.option = 1, .filter = 2});
        CHECK(world.state.mipTex == nullptr && world.at(3, 1) == 0x80000106);
    }
    { // a triangle at one and a half goes through the levels; its mix has alpha 0 whatever the operator gives
        World world;
        world.state.tex0 = &picture.texture;
        world.state.multiFunc = [](uint32_t, uint32_t) -> uint32_t { return 0xDEADBEEF; };
        world.state.uv0[1] = {48 * one, 0};
        world.state.uv0[2] = {0, 48 * one};
        world.triangle({0, 0, 1}, {32, 0, 1}, {0, 32, 1});
        drawWith(world, {.shape = 2, .multi = 2, .option = 7, .filter = 2});
        CHECK(world.state.mipRatio == 0x18000 && world.state.mipTex == picture.texture.mip[1]);
        CHECK(world.at(4, 4) != background && world.at(4, 4) >> 24 == 0 && world.at(4, 4) != 0x00ADBEEF);
    }
}

void triangleExamples()
{
    World filled; // edges truncate; the bottom row is left out
    filled.triangle({0, 0, 1}, {3, 1, 1}, {0, 2, 1});
    filled.state.color[0] = 0;
    drawWith(filled, {.shape = 2, .option = 7, .filter = 6});
    CHECK(filled.drawn() == 3 && filled.at(0, 1) == 0 && filled.at(2, 1) == 0);

    Picture tile = Picture::map(64, 32);
    const Vertex a{5, 2, 1}, b{30, 9, 1}, c{12, 25, 1};
    const TexCoord ta{5 * one, 2 * one}, tb{30 * one, 9 * one}, tc{12 * one, 25 * one};
    const auto textured = [&tile](World &world, const Axes &axes) {
        world.state.tex0 = &tile.texture;
        drawWith(world, axes);
    };
    const Axes plain{.shape = 2, .option = 7};
    World one0, one1;
    one0.triangle(a, b, c);
    one0.state.uv0[0] = ta, one0.state.uv0[1] = tb, one0.state.uv0[2] = tc;
    one1.triangle(c, a, b);
    one1.state.uv0[0] = tc, one1.state.uv0[1] = ta, one1.state.uv0[2] = tb;
    textured(one0, plain);
    textured(one1, plain);
    CHECK(one0.pixels == one1.pixels && one0.drawn() > 100);

    World flat; // no height
    flat.triangle({5, 5, 1}, {9, 5, 1}, {1, 5, 1});
    textured(flat, plain);
    CHECK(flat.drawn() == 0);

    World clipped; // clipping changes no pixel that is left
    clipped.triangle(a, b, c);
    for (int i = 0; i < 4; ++i)
        clipped.state.uv0[i] = one0.state.uv0[i];
    clipped.state.clipTop = 11;
    clipped.state.clipLeft = 12;
    textured(clipped, plain);
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x)
            CHECK(clipped.at(x, y) == (y >= 11 && x >= 12 ? one0.at(x, y) : background));

    World shifted; // a row displaced with its texels, another moved out of the clip rectangle
    shifted.triangle(a, b, c);
    for (int i = 0; i < 4; ++i)
        shifted.state.uv0[i] = one0.state.uv0[i];
    std::vector<int32_t> shift(32);
    shift[10] = 3;
    shift[12] = -100;
    shifted.state.scanShift = shift.data();
    textured(shifted, plain);
    for (int x = 0; x < 60; ++x)
        CHECK(shifted.at(x + 3, 10) == one0.at(x, 10) && shifted.at(x, 12) == background && shifted.at(x, 13) == one0.at(x, 13));

    World deep; // equal depths: as without perspective but for precision
    deep.triangle(a, b, c);
    for (int i = 0; i < 4; ++i)
        deep.state.uv0[i] = {one0.state.uv0[i].u + 0x8000, one0.state.uv0[i].v + 0x8000};
    deep.state.tex0 = &tile.texture;
    drawNamed("DrawPolygon_PERS_TEST", deep.state);
    CHECK(deep.drawn() == one0.drawn() && deep.at(14, 12) == 0x80000C0E);

    World twice; // the second finds all taken
    twice.triangle(a, b, c);
    for (int i = 0; i < 4; ++i)
        twice.state.uv0[i] = deep.state.uv0[i];
    tile.at(14, 12) = 0;
    textured(twice, {.shape = 2, .shahei = 1, .option = 7});
    CHECK(!twice.taken(14, 12) && twice.taken(15, 12));
    const std::vector<uint32_t> before = twice.pixels;
    tile.at(14, 12) = 0xFFFFFFFF;
    tile.at(15, 12) = 0xFFFFFFFF;
    textured(twice, {.shape = 2, .shahei = 1, .option = 7});
    CHECK(twice.at(14, 12) == 0xFFFFFFFF && twice.at(15, 12) == before[12 * 64 + 15]);
}

void occlusionExamples()
{
    World world;
    world.triangle({3, 0, 1}, {8, 0, 1}, {3, 8, 1}); // row 0: columns 3 to 7
    drawNamed("DrawShaheiPolygonSet", world.state);
    CHECK(world.plane[0] == 0x1F00 && world.plane[4 * 8] == 0);
    drawNamed("DrawShaheiPolygonReset", world.state);
    CHECK(world.plane[0] == 0 && world.plane[4] == 0);
    drawNamed("DrawShaheiZbufferPolygonMask", world.state);
    drawNamed("DrawZbufferPolygon0xff", world.state);
    CHECK(world.plane[0] == 0x1F00 && world.priority[3] == 255 && world.priority[2] == 0);
    const World before = world;
    drawNamed("DrawShaheiPolygonFlip", world.state);
    drawNamed("DrawZbufferPolygonFlip", world.state);
    CHECK(world.plane != before.plane && world.priority != before.priority);
    drawNamed("DrawShaheiZbufferPolygonFlip", world.state);
    CHECK(world.plane == before.plane && world.priority == before.priority);

    World odd; // the jump over clipped rows goes by clipLeft
    odd.state.clipTop = 4;
    odd.state.clipLeft = 2;
    odd.triangle({0, 0, 1}, {16, 0, 1}, {0, 16, 1});
    odd.state.zRef = 9;
    drawNamed("DrawZbufferPolygon", odd.state);
    CHECK(odd.priority[64 + 5] == 0 && odd.priority[2 * 64 + 5] == 9 && odd.priority[2 * 64 + 1] == 0);
    CHECK(!drawNamed("DrawNothing", odd.state));
}

void colourExamples()
{
    World world;
    world.state.clipRight = 1024;
    world.state.dstShift = 10;
    world.state.dstPitch = 1024;
    world.state.color[1] = world.state.color[3] = 255;
    world.corners(256, 1, 0, 0); // colours do not follow the vertices
    drawWith(world, {.option = 7, .filter = 7});
    CHECK(world.pixels[0] == 0 && world.pixels[128] == 127 && world.pixels[255] == 254);

    // numbers of nine bits and more run into the channel above
    const Ramp above[4] = {{0x112FFFF, 0}, {0x1340000, 0}, {0x2560000, 0}, {0x3788000, 0}};
    CHECK(packedGouraud(above, 0) == 0x13365778 && packedInRange(above, 0) == 0x12345678);
    const Ramp below[4] = {{0, 0}, {0, 0}, {0, 0}, {-1, 1}};
    CHECK(packedGouraud(below, 0) == 0xFFFF && packedGouraud(below, 1) == 0);

    World line3;
    line3.corners(0, 0, 3, 0);
    line3.state.color[0] = 0xFF00FF00;
    drawWith(line3, {.shape = 0, .option = 7, .filter = 6});
    CHECK(line3.drawn() == 3 && line3.at(0, 0) == 0xFF00FF00 && line3.at(3, 0) == background);
    line3.corners(3, 1, 0, 1);
    drawWith(line3, {.shape = 0, .option = 7, .filter = 6});
    CHECK(line3.drawn() == 6 && line3.at(3, 1) == 0xFF00FF00 && line3.at(0, 1) == background);
    line3.corners(9, 9, 9, 9);
    drawWith(line3, {.shape = 0, .option = 7, .filter = 6});
    CHECK(line3.drawn() == 6);
    line3.corners(60, 20, 70, 20); // out on the right: up to the last column
    drawWith(line3, {.shape = 0, .option = 7, .filter = 6});
    CHECK(line3.drawn() == 10 && line3.at(63, 20) == 0xFF00FF00);
    line3.corners(40, -1, 43, -1); // half a row above the clip rectangle counts as row 0, here with the end point
    drawWith(line3, {.shape = 0, .option = 7, .filter = 6});
    CHECK(line3.drawn() == 14 && line3.at(43, 0) == 0xFF00FF00);

    World graded;
    graded.corners(0, 0, 2, 0);
    graded.state.color[1] = 255;
    drawWith(graded, {.shape = 0, .option = 7, .filter = 7});
    CHECK(graded.at(0, 0) == 0 && graded.at(1, 0) == 85 && graded.at(2, 0) == background);
}

void ruleExamples()
{
    Picture tile = Picture::map(16, 8);
    Picture rule(16, 8, 0xABCDEF64); // 100
    const auto wipe = [&](int32_t threshold, int32_t width, const Axes &axes) {
        World world;
        world.state.tex0 = &tile.texture;
        world.state.tex2 = &rule.texture;
        world.state.ruleThreshold = threshold;
        world.state.ruleWidth = width;
        world.corners(0, 0, 16, 8);
        drawWith(world, axes);
        return world;
    };
    const Axes plain{.rule = 1};
    CHECK(wipe(255, 0, plain).drawn() == 0 && wipe(100, 50, plain).drawn() == 0);
    CHECK(wipe(-1, 0, plain).at(3, 2) == 0x80000203 && wipe(99, 1, plain).at(3, 2) == 0x80000203);
    CHECK(wipe(99, 2, plain).at(3, 2) >> 24 == 0);
    CHECK(wipe(100, 0, {.shahei = 1, .rule = 1}).plane[0] == 0);
    CHECK(wipe(100, 0, {.shahei = 1, .option = 7, .filter = 6, .rule = 1}).plane[0] == 0xFFFF);

    rule.at(15, 0) = 0; // not read by a position of just below 0
    World below;
    below.state.tex0 = &tile.texture;
    below.state.tex2 = &rule.texture;
    below.state.uv2[0] = below.state.uv2[1] = {-1, 0};
    below.corners(0, 0, 1, 1);
    drawWith(below, plain);
    CHECK(below.drawn() == 1);

    World gradient;
    gradient.state.tex0 = &tile.texture;
    gradient.corners(0, 0, 16, 8);
    tile.at(0, 0) = 0; // drawn all the same
    for (uint32_t &colour : gradient.state.color)
        colour = 0xFFFFFF80;
    gradient.state.ruleThreshold = 128;
    gradient.state.ruleWidth = 1;
    drawNamed("DrawRectGradRule", gradient.state);
    CHECK(gradient.drawn() == 0);
    gradient.state.ruleThreshold = 127;
    drawNamed("DrawRectGradRule", gradient.state);
    CHECK(gradient.drawn() == 16 * 8 && gradient.at(5, 5) == 0);
    gradient.state.color[1] = gradient.state.color[3] = 255;
    gradient.state.color[0] = gradient.state.color[2] = 0;
    gradient.pixels.assign(gradient.pixels.size(), background);
    gradient.corners(16, 0, 0, 8); // the wipe follows the vertices
    drawNamed("DrawRectGradRule", gradient.state);
    CHECK(gradient.at(1, 0) != background && gradient.at(14, 0) == background);

    Picture deep = Picture::map(128, 128);
    deep.makeChain();
    World levels;
    levels.state.tex0 = levels.state.tex1 = &deep.texture;
    levels.state.tex2 = &rule.texture;
    levels.corners(0, 0, 16, 16);
    levels.state.uv0[1] = {24 * one, 64 * one};
    levels.state.mipFrac = -7;
    drawNamed("DrawRectGradRule_GEN_RULE_MIPMAP_TEST", levels.state);
    CHECK(levels.state.mipFrac == -7); // the smaller step decides
    levels.state.uv0[1] = {48 * one, 64 * one};
    drawNamed("DrawRectGradRule_GEN_RULE_MIPMAP_TEST", levels.state);
    CHECK(levels.state.mipFrac == 127 && levels.state.mipTex == deep.texture.mip[2]);
}

} // namespace

int main()
{
    catalogueExamples();
    operatorExamples();
    toolExamples();
    unitRectangleExamples();
    runLengthExamples();
    stretchedExamples();
    bilinearExamples();
    mipExamples();
    triangleExamples();
    occlusionExamples();
    colourExamples();
    ruleExamples();
    std::printf(failures == 0 ? "all examples hold\n" : "%d examples fail\n", failures);
    return failures == 0 ? 0 : 1;
}
