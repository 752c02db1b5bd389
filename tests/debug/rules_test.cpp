// Every rule of the twin: a call that it is for, and one just inside. The list of cases is held to the list of rules.
#include "knowledge.h"
#include "report.h"

#include <gtest/gtest.h>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <sys/mman.h>
#endif

#include <algorithm>
#include <cstring>
#include <set>
#include <vector>

// fontconfig keeps what a face was found by.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions() { return "leak:libfontconfig"; }

namespace {

std::set<std::string> told;
std::string firstError;
void collect(const NinefoldFinding *finding, void *)
{
    told.insert(finding->name);
    if (finding->severity == NINEFOLD_DEBUG_ERROR && firstError.empty())
        firstError = std::string(finding->name) + ": " + finding->text;
}

uint32_t own(uint32_t, uint32_t second) { return second; }

// A host that does nothing wrong, 64 by 64.
struct Host {
    static constexpr int size = 64;
    std::vector<uint16_t> plane = std::vector<uint16_t>(size * size / 16);
    std::vector<uint8_t> priorities = std::vector<uint8_t>(size * size, 255);
    std::vector<LineTableRecord> lines = std::vector<LineTableRecord>(size, {0, 0, 0x200000, 0});
    std::vector<int32_t> shifts = std::vector<int32_t>(size);
    Texture *screen = CreateTexture(size, size), *picture = makePicture(32), *second = makePicture(32), *wide = makePicture(size);
    std::vector<Texture *> more;
    ninefold::Axes axes{NINEFOLD_SHAPE_RECTANGLE, 0, 0, 0, NINEFOLD_FILTER_POINT, NINEFOLD_RECT_STRETCH, 0, 0,
                        NINEFOLD_MULTI_NONE};

    static Texture *makePicture(unsigned long width)
    {
        Texture *const texture = CreateTexture(width, width);
        for (uint32_t k = 0; k < texture->width * texture->height; ++k)
            texture->pixels[k] = k % 7 ? 0x80000000 | 0x123457 * k : 0;
        return texture;
    }
    Texture *make(unsigned long width)
    {
        more.push_back(makePicture(width));
        return more.back();
    }

    Host()
    {
        rs = {};
        MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawMaskTable(), MakeDrawFuncTable();
        SetFrameBuffer(screen);
        rs.clipRight = rs.clipBottom = size;
        rs.vertex[0] = {0, 0, 100}, rs.vertex[1] = {40, 40, 100}, rs.vertex[2] = {0, 40, 100};
        for (TexCoord *uv : {rs.uv0, rs.uv1, rs.uv2})
            uv[1] = {0x200000, 0x200000}, uv[2] = {0, 0x200000}, uv[3] = {0x200000, 0x200000};
        rs.tex0 = picture, rs.tex1 = second, rs.tex2 = second;
        rs.shaheiPlane = plane.data(), rs.zBuffer = priorities.data(), rs.zRef = 10;
        rs.lineTable0 = rs.lineTable1 = lines.data();
        rs.blendAlpha = rs.blendAlphaRgb = 255, rs.prescale = rs.prescaleMulti = 256;
        rs.mosaicSize = rs.mosaicSize1 = 1;
        rs.ruleThreshold = 100, rs.ruleWidth = 50;
        rs.blendFunc = rs.multiFunc = own;
        debug::labelMemory(plane.data(), plane.size() * 2, "plane");
    }
    ~Host()
    {
        debug::forgetMemory(plane.data());
        for (Texture *const texture : more)
            if (const debug::Known *const entry = debug::known(texture); entry && entry->alive)
                DeleteTexture(texture);
        for (Texture *const texture : {screen, picture, second, wide})
            if (const debug::Known *const entry = debug::known(texture); entry && entry->alive)
                DeleteTexture(texture);
        rs = {};
    }

    // The twin looks; nothing is drawn.
    void draw() const
    {
        const int record = layer::recordOf(codeOf(axes));
        ASSERT_GE(record, 0) << nameOf(axes);
        layer::Call call{};
        call.id = layer::Id(record);
        layer::before(call);
    }
    static void draw(layer::Function function)
    {
        layer::Call call{};
        call.id = layer::idOf(function);
        layer::before(call);
    }

    // Kernels.
    void triangle(bool pers = false)
    {
        axes.shape = NINEFOLD_SHAPE_TRIANGLE, axes.rectOpt = NINEFOLD_RECT_NONE;
        axes.pers = pers;
    }
    void minified()
    {
        axes.filter = NINEFOLD_FILTER_MIP;
        rs.tex1 = nullptr;
        rs.vertex[1] = {8, 8, 0};
    }
    void maps(uint8_t rectOpt, Texture *texture)
    {
        axes.rectOpt = rectOpt;
        axes.shahei = rectOpt == NINEFOLD_RECT_PLANE_RUNS ? NINEFOLD_SHAHEI_PLANE : NINEFOLD_SHAHEI_NONE;
        rs.tex0 = texture;
        rectOpt == NINEFOLD_RECT_PLANE_RUNS ? CreateZeroPixelMap(texture) : CreateRunlengthMap(texture);
    }
    void table() { axes.rectOpt = NINEFOLD_RECT_TABLE; }
    void mode(uint8_t shahei) { axes.shahei = shahei, axes.blend = shahei > NINEFOLD_SHAHEI_PLANE_PRIORITY ? 1 : 0; }
    void operators() { axes.blend = NINEFOLD_BLEND_CUSTOM, axes.multi = NINEFOLD_MULTI_COLOUR; }
};

struct Case {
    const char *rule;
    void (*wrong)(Host &);
    void (*right)(Host &); // just inside
};

using H = Host &;
constexpr auto deletedPicture = [](H h) { DeleteTexture(h.picture), h.draw(); };

// Memory that cannot be read, just behind memory that can.
uint8_t *guard()
{
    constexpr size_t page = 4096;
#if defined(_WIN32)
    static auto *const pages = static_cast<uint8_t *>(VirtualAlloc(nullptr, 2 * page, MEM_RESERVE, PAGE_NOACCESS));
    VirtualAlloc(pages, page, MEM_COMMIT, PAGE_READWRITE);
#else
    static auto *const pages =
        static_cast<uint8_t *>(mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(pages + page, page, PROT_NONE);
#endif
    std::memset(pages, 255, page);
    return pages + page;
}

const Case cases[] = {
    {"frame-buffer-missing", [](H h) { rs.dstPixels = nullptr, h.draw(); }, [](H h) { h.draw(); }},
    {"frame-buffer-deleted", [](H h) { DeleteTexture(h.screen), h.draw(); },
     [](H h) { AddRefTexture(h.screen), AddRefTexture(h.screen), DeleteTexture(h.screen), h.draw(); }},
    {"frame-buffer-changed", [](H h) { rs.frameBuffer = h.wide, h.draw(); }, [](H h) { SetFrameBuffer(h.wide), h.draw(); }},
    {"frame-buffer-pitch", [](H h) { rs.dstPitch = 60, h.draw(); }, [](H h) { rs.dstPitch = 64, h.draw(); }},
    {"clip-inside-out", [](H h) { rs.clipLeft = 65, h.draw(); }, [](H h) { rs.clipLeft = 64, h.draw(); }},
    {"clip-empty", [](H h) { rs.clipLeft = 64, h.draw(); }, [](H h) { rs.clipLeft = 63, h.draw(); }},
    {"clip-outside", [](H h) { rs.clipBottom = 65, h.draw(); }, [](H h) { rs.clipBottom = 64, h.draw(); }},
    {"coordinates-wrap",
     [](H h) {
         h.triangle();
         rs.vertex[0].y = -0x40000000, rs.vertex[1].y = 0x40000000, h.draw();
     },
     [](H h) {
         h.triangle();
         rs.vertex[0].y = -0x3FFFFFFF, rs.vertex[1].y = 0x3FFFFFFF, h.draw();
     }},
    {"coordinates-far", [](H h) { rs.originX = 0x40000000 - 40, h.draw(); }, [](H h) { rs.originX = 0x40000000 - 41, h.draw(); }},
    {"texture-null", [](H h) { rs.tex0 = nullptr, h.draw(); }, [](H h) { rs.tex1 = rs.tex2 = nullptr, h.draw(); }},
    {"texture-deleted", deletedPicture, [](H h) { DeleteTexture(h.second), h.draw(); }},
    {"texture-unreadable", [](H h) { rs.tex0 = reinterpret_cast<Texture *>(guard()), h.draw(); },
     [](H h) { rs.tex1 = reinterpret_cast<Texture *>(guard()), h.draw(); }},
    {"texture-pixels",
     [](H h) {
         h.picture->flags |= NINEFOLD_TEXTURE_HOST_PIXELS;
         std::swap(h.picture->pixels, h.second->pixels);
         h.picture->pixels = reinterpret_cast<uint32_t *>(guard() - 32 * 32 * 4 + 4), h.draw();
     },
     [](H h) {
         h.more.push_back(CreateTexture(32, 32));
         Texture *const view = rs.tex0 = h.more.back();
         uint32_t *const before = view->pixels;
         view->flags |= NINEFOLD_TEXTURE_HOST_PIXELS;
         view->pixels = reinterpret_cast<uint32_t *>(guard() - 32 * 32 * 4), h.draw();
         view->pixels = before, view->flags = 0;
     }},
    {"texture-size", [](H h) { h.picture->width = 31, h.draw(), h.picture->width = 32; },
     [](H h) { h.picture->width = 16, h.picture->log2Width = 4, h.draw(); }},
    {"texture-not-owned",
     [](H h) {
         std::swap(h.picture->pixels, h.second->pixels), h.draw();
         std::swap(h.picture->pixels, h.second->pixels);
     },
     [](H h) {
         std::swap(h.picture->pixels, h.second->pixels);
         h.picture->flags |= NINEFOLD_TEXTURE_HOST_PIXELS, h.draw(), h.picture->flags = 0;
         std::swap(h.picture->pixels, h.second->pixels);
     }},
    {"tex1-left-over",
     [](H h) {
         h.minified(), CreateMipmapTexture(h.picture);
         rs.tex1 = h.second, DeleteTexture(h.second), h.draw();
     },
     [](H h) {
         h.minified(), CreateMipmapTexture(h.picture);
         DeleteTexture(h.second), h.draw();
     }},
    {"chain-missing", [](H h) { h.minified(), h.draw(); },
     [](H h) {
         h.minified(); // but not by as much as two texels a pixel
         rs.vertex[1] = {32, 32, 0}, h.draw();
     }},
    {"chain-short",
     [](H h) {
         h.minified(), CreateMipmapTexture(h.picture);
         h.picture->mipCount = 1, h.draw();
         h.picture->mipCount = 6;
     },
     [](H h) {
         h.minified(), CreateMipmapTexture(h.picture);
         h.picture->mipCount = 2, h.draw();
         h.picture->mipCount = 6;
     }},
    {"chain-stale",
     [](H h) {
         h.minified(), CreateMipmapTexture(h.picture);
         h.picture->pixels[5] ^= 1, debug::nextFrame(), h.draw();
     },
     [](H h) {
         h.minified(), CreateMipmapTexture(h.picture);
         h.picture->pixels[5] ^= 1, DeleteMipmapTexture(h.picture), CreateMipmapTexture(h.picture), h.draw();
     }},
    {"map-missing",
     [](H h) {
         h.maps(NINEFOLD_RECT_RUNS, h.picture);
         rs.tex0 = h.second, h.draw();
     },
     [](H h) { h.maps(NINEFOLD_RECT_RUNS, h.picture), h.draw(); }},
    {"map-stale",
     [](H h) {
         h.maps(NINEFOLD_RECT_RUNS, h.picture);
         SetClearPixel(h.picture, h.picture->pixels[5]), h.draw();
     },
     [](H h) {
         h.maps(NINEFOLD_RECT_RUNS, h.picture);
         SetClearPixel(h.picture, 1), h.draw();
     }},
    {"zero-map-small", [](H h) { h.maps(NINEFOLD_RECT_PLANE_RUNS, h.picture), h.draw(); },
     [](H h) { h.maps(NINEFOLD_RECT_PLANE_RUNS, h.wide), h.draw(); }},
    {"zero-map-width", [](H h) { h.maps(NINEFOLD_RECT_PLANE_RUNS, h.make(128)), h.draw(); },
     [](H h) { h.maps(NINEFOLD_RECT_PLANE_RUNS, h.wide), h.draw(); }},
    {"map-broken",
     [](H h) {
         h.maps(NINEFOLD_RECT_RUNS, h.picture);
         h.picture->runlengthMap[39 % 32 * 32 + 7] = 0, h.draw();
     },
     [](H h) {
         h.maps(NINEFOLD_RECT_RUNS, h.picture);
         h.picture->runlengthMap[5] = 0, h.draw(); // inside a run
     }},
    {"runs-move-back",
     [](H h) {
         Texture *const texture = h.make(256);
         std::fill_n(texture->pixels, 128, 0);
         h.maps(NINEFOLD_RECT_RUNS, texture), h.draw();
     },
     [](H h) {
         Texture *const texture = h.make(256);
         std::fill_n(texture->pixels, 127, 0);
         h.maps(NINEFOLD_RECT_RUNS, texture), h.draw();
     }},
    {"plane-missing",
     [](H h) {
         h.mode(NINEFOLD_SHAHEI_PLANE);
         rs.shaheiPlane = nullptr, h.draw();
     },
     [](H h) {
         h.mode(NINEFOLD_SHAHEI_STIPPLE);
         rs.shaheiPlane = nullptr, h.draw();
     }},
    {"priorities-missing",
     [](H h) {
         h.mode(NINEFOLD_SHAHEI_PRIORITY);
         rs.zBuffer = nullptr, h.draw();
     },
     [](H h) {
         h.mode(NINEFOLD_SHAHEI_PLANE);
         rs.zBuffer = nullptr, h.draw();
     }},
    {"memory-small",
     [](H h) {
         h.mode(NINEFOLD_SHAHEI_PLANE);
         debug::labelMemory(h.plane.data(), (39 * 64 / 16 + 2) * 2, "plane"), h.draw();
     },
     [](H h) {
         h.mode(NINEFOLD_SHAHEI_PLANE);
         debug::labelMemory(h.plane.data(), (39 * 64 / 16 + 3) * 2, "plane"), h.draw();
     }},
    {"memory-missing",
     [](H h) {
         h.triangle();
         rs.scanShift = reinterpret_cast<int32_t *>(guard()) - 39, h.draw();
     },
     [](H h) {
         h.triangle();
         rs.scanShift = reinterpret_cast<int32_t *>(guard()) - 40, h.draw();
     }},
    {"all-refused",
     [](H h) {
         h.mode(NINEFOLD_SHAHEI_PRIORITY);
         std::fill(h.priorities.begin(), h.priorities.end(), 9), h.draw();
     },
     [](H h) {
         h.mode(NINEFOLD_SHAHEI_PRIORITY);
         std::fill(h.priorities.begin(), h.priorities.end(), 9);
         h.priorities[39 * 64 + 39] = 10, h.draw();
     }},
    {"nothing-drawn",
     [](H h) {
         rs.originX = 64;
         for (int k = 0; k < 1000; ++k)
             h.draw();
     },
     [](H h) {
         h.draw(), rs.originX = 64;
         for (int k = 0; k < 999; ++k)
             h.draw();
         rs.originX = 63, h.draw();
     }},
    {"modes-differ",
     [](H h) {
         SetShapeMode(NINEFOLD_SHAPE_RECTANGLE), SetRectOptMode(NINEFOLD_RECT_STRETCH), SetMultiMode(NINEFOLD_MULTI_NONE);
         SearchDrawFunc(CreateDrawCode());
         SetBlendMode(NINEFOLD_BLEND_ALPHA), h.draw();
     },
     [](H h) {
         SetShapeMode(NINEFOLD_SHAPE_RECTANGLE), SetRectOptMode(NINEFOLD_RECT_STRETCH), SetMultiMode(NINEFOLD_MULTI_NONE);
         SearchDrawFunc(CreateDrawCode()), h.draw();
         SetBlendMode(NINEFOLD_BLEND_ALPHA), h.draw(); // kept
     }},
    {"line-table-missing",
     [](H h) {
         h.table();
         rs.lineTable0 = nullptr, h.draw();
     },
     [](H h) {
         h.table();
         rs.lineTable1 = nullptr, h.draw();
     }},
    {"segment-wraps",
     [](H h) {
         h.table();
         h.lines[39] = {-0x40000000, 0, 0x40000000, 0}, h.draw();
     },
     [](H h) {
         h.table();
         h.lines[39] = {-0x40000000, 0, 0x3FFFFFFF, 0}, h.draw();
     }},
    {"blend-alpha-range",
     [](H h) {
         h.axes.blend = NINEFOLD_BLEND_CONST_ALPHA;
         rs.blendAlpha = 256, h.draw();
     },
     [](H h) {
         h.axes.blend = NINEFOLD_BLEND_ALPHA;
         rs.blendAlpha = 256, h.draw();
     }},
    {"blend-alpha-rgb-range",
     [](H h) {
         h.operators(), SetBlendModeMulti(NINEFOLD_MULTI_OP_CONST_ALPHA_RGB);
         rs.blendAlphaRgb = 256, h.draw();
     },
     [](H h) {
         h.operators(), SetBlendModeMulti(NINEFOLD_MULTI_OP_CONST_ALPHA_RGB);
         rs.blendAlphaRgb = 255, h.draw();
     }},
    {"prescale-range",
     [](H h) {
         h.axes.prescale = 1;
         rs.prescale = 257, h.draw();
     },
     [](H h) {
         h.axes.prescale = 1, h.draw(); // 256
     }},
    {"prescale-multi-range",
     [](H h) {
         h.operators(), SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_SCALED), SetBlendModeMulti(NINEFOLD_MULTI_OP_ADD);
         rs.prescaleMulti = 257, h.draw();
     },
     [](H h) {
         h.operators(), SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_PLAIN), SetBlendModeMulti(NINEFOLD_MULTI_OP_ADD);
         rs.prescaleMulti = 257, h.draw();
     }},
    {"depth-range",
     [](H h) {
         h.triangle(true);
         rs.vertex[2].z = 0, h.draw();
     },
     [](H h) {
         h.triangle(true);
         rs.vertex[2].z = 1, h.draw();
     }},
    {"negative-positions",
     [](H h) {
         h.triangle(true);
         rs.uv0[0].u = -1, h.draw();
     },
     [](H h) {
         h.triangle();
         rs.uv0[0].u = -1, h.draw();
     }},
    {"mosaic-size",
     [](H h) {
         h.axes.filter = NINEFOLD_FILTER_MOSAIC;
         rs.mosaicSize = 0, h.draw();
     },
     [](H h) {
         h.axes.filter = NINEFOLD_FILTER_MOSAIC;
         rs.mosaicSize1 = 0, h.draw(); // tex1 is not drawn
     }},
    {"rule-wraps",
     [](H h) {
         h.axes.rule = 1;
         rs.ruleThreshold = 255 - 0x800000, h.draw();
     },
     [](H h) {
         h.axes.rule = 1;
         rs.ruleThreshold = 255 - 0x7FFFFF, h.draw();
     }},
    {"priority-range", [](H) { rs.zRef = 256, Host::draw(layer::Function::DrawZbufferPolygon); },
     [](H) { rs.zRef = 255, Host::draw(layer::Function::DrawZbufferPolygon); }},
    {"blend-operator-null",
     [](H h) {
         h.operators();
         rs.blendFunc = nullptr, h.draw();
     },
     [](H h) { rs.blendFunc = nullptr, h.draw(); }},
    {"multi-operator-null",
     [](H h) {
         h.operators();
         rs.multiFunc = nullptr, h.draw();
     },
     [](H h) { rs.multiFunc = nullptr, h.draw(); }},
    {"operator-not-code",
     [](H h) {
         h.operators();
         rs.multiFunc = reinterpret_cast<PixelOperator>(&rs), h.draw();
     },
     [](H h) {
         h.operators();
         rs.multiFunc = own, h.draw();
     }},
    {"start-up-shifts", [](H h) { h.triangle(true), debug::startUp.shifts = false, h.draw(); },
     [](H h) { h.triangle(), debug::startUp.shifts = false, h.draw(); }},
    {"start-up-stipples",
     [](H h) {
         h.table(), h.axes.filter = NINEFOLD_FILTER_BILINEAR;
         debug::startUp.stipples = false, h.draw();
     },
     [](H h) { h.axes.filter = NINEFOLD_FILTER_BILINEAR, debug::startUp.stipples = false, h.draw(); }},
    {"start-up-kernels", [](H) { debug::startUp.kernels = false, SearchDrawFunc(0x369); }, [](H) { SearchDrawFunc(0x369); }},
    {"code-unknown", [](H) { SearchDrawFunc(0x36B - 2 + 0xC00); }, [](H) { SearchDrawFunc(0x769); }},
    {"preset-stipple", [](H) { SetPresetDrawMask(262); }, [](H) { SetPresetDrawMask(261); }},
    {"preset-stipple-early", [](H) { debug::startUp.stipples = false, SetPresetDrawMask(255); },
     [](H) { debug::startUp.stipples = false, SetPresetDrawMask(256); }},
    {"texels-not-shifted",
     [](H h) {
         rs.uv0[1] = {32, 32}, h.draw();
     },
     [](H h) {
         rs.uv0[1] = {0x10000, 0x10000}, h.draw(); // the first texel alone
     }},
    {"premultiplied",
     [](H h) {
         h.axes.blend = NINEFOLD_BLEND_ALPHA;
         std::fill_n(h.picture->pixels, 32 * 32, 0x80808080), h.draw();
     },
     [](H h) {
         h.axes.blend = NINEFOLD_BLEND_ALPHA;
         std::fill_n(h.picture->pixels, 32 * 32, 0x80808080);
         h.picture->pixels[1023] = 0x80808180, h.draw();
     }},
    {"overlap", [](H h) { rs.tex0 = h.screen, h.draw(); }, [](H h) { h.draw(); }},
    {"atlas-missing",
     [](H) {
         char text[] = "a";
         rs.tex0 = nullptr, CreateFontTexture(text);
     },
     [](H) {
         char text[] = "a";
         CreateFontTexture(text);
     }},
    {"atlas-full",
     [](H h) {
         char text[] = "a";
         rs.tex0 = h.make(1), rs.fontHeight = 32, rs.fontCursorX = rs.fontCursorY = 1;
         CreateFontTexture(text);
     },
     [](H h) {
         char text[] = "a";
         rs.tex0 = h.make(64), rs.fontHeight = 32;
         CreateFontTexture(text);
     }},
    {"font-quality",
     [](H) {
         char text[] = "a";
         rs.fontQuality = -1, CreateFontTexture(text);
     },
     [](H) {
         char text[] = "a";
         rs.fontQuality = NINEFOLD_QUALITY_GREY64, CreateFontTexture(text);
     }},
#if NINEFOLD_GLYPHS && !defined(_WIN32)
    {"face-missing",
     [](H h) {
         char text[] = "a", name[] = "No Face of This Name";
         rs.tex0 = h.make(64), rs.fontHeight = 16, rs.fontName = name, CreateFontTexture(text);
     },
     [](H h) {
         char text[] = "a", name[] = "VL Gothic";
         rs.tex0 = h.make(64), rs.fontHeight = 16, rs.fontName = name, CreateFontTexture(text);
     }},
#endif
    {"argument-texture", [](H h) { DeleteTexture(h.picture), DeleteTexture(h.picture); },
     [](H h) { AddRefTexture(h.picture), AddRefTexture(h.picture), DeleteTexture(h.picture), DeleteTexture(h.picture); }},
    {"argument-pixels",
     [](H) {
         Texture *const none = CreateTexture(0x8000, 0x8000);
         ClearTexture(none), DeleteTexture(none);
     },
     [](H h) { ClearTexture(h.picture); }},
    {"delete-not-made",
     [](H h) {
         Texture texture = *h.picture;
         DeleteTexture(&texture);
     },
     [](H h) { DeleteTexture(h.picture); }},
};

class Rules : public ::testing::TestWithParam<size_t> {};

TEST_P(Rules, FiresAndDoesNotFireJustInside)
{
    const Case &one = cases[GetParam()];
    const debug::Rule &rule = debug::rules[debug::ruleNamed(one.rule)];
    debug::settings().repeat = 0;
    debug::settings().action = NINEFOLD_DEBUG_SKIP; // what is wrong is not done
    debug::callback = collect;
    for (const bool wrong : {true, false}) {
        Host host;
        told.clear(), firstError.clear();
        (wrong ? one.wrong : one.right)(host);
        EXPECT_EQ(told.contains(one.rule), wrong);
        if (!wrong || rule.severity != NINEFOLD_DEBUG_ERROR) {
            EXPECT_EQ(firstError, "") << (wrong ? "in the wrong case" : "just inside");
        }
    }
    debug::callback = nullptr;
}

std::string testName(const ::testing::TestParamInfo<size_t> &test)
{
    std::string name = cases[test.param].rule;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}
INSTANTIATE_TEST_SUITE_P(Twin, Rules, ::testing::Range(size_t(0), std::size(cases)), testName);

TEST(RuleCases, AreThoseOfTheList)
{
    std::set<std::string> tested, all;
    for (const Case &one : cases)
        tested.insert(one.rule);
#if !NINEFOLD_GLYPHS || defined(_WIN32)
    tested.insert("face-missing"); // which nobody can be asked about here
#endif
    for (const debug::Rule &rule : debug::rules)
        all.insert(rule.name);
    EXPECT_EQ(tested, all);
    EXPECT_EQ(all.size(), debug::rules.size());
    EXPECT_TRUE(std::is_sorted(debug::rules.begin(), debug::rules.end(),
                               [](const debug::Rule &a, const debug::Rule &b) { return a.number < b.number; }));
}

// A code without a kernel is told with the rule of pairing that it breaks.
TEST(UnknownCode, IsToldWithTheReason)
{
    static unsigned long code;
    static std::string text;
    debug::callback = [](const NinefoldFinding *finding, void *) { code = finding->code, text = finding->text; };
    const Host host;
    ninefold::Axes axes = host.axes;
    axes.blend = NINEFOLD_BLEND_ALPHA, axes.shahei = NINEFOLD_SHAHEI_PLANE;
    SearchDrawFunc(ninefold::codeOf(axes));
    debug::callback = nullptr;
    EXPECT_EQ(code, ninefold::codeOf(axes));
    EXPECT_NE(text.find("SHAHEI_PLANE and SHAHEI_PLANE_PRIORITY mark pixels and go with BLEND_COPY only. Drawn"), text.npos)
        << text;
}

// Calls with errors are left out when the host asks for it.
TEST(Action, SkipLeavesADrawWithAnErrorOut)
{
    debug::settings().action = NINEFOLD_DEBUG_SKIP;
    Host host;
    ClearTexture(host.screen);
    std::fill_n(host.picture->pixels, 32 * 32, 0xFF123456);
    const DrawFunc draw = SearchDrawFunc(codeOf(host.axes));
    rs.clipBottom = 65;
    draw();
    EXPECT_EQ(host.screen->pixels[0], 0u);
    debug::settings().action = NINEFOLD_DEBUG_DRAW;
    rs.clipBottom = 64;
    draw();
    EXPECT_EQ(host.screen->pixels[0], 0xFF123456);
}

TEST(Settings, SayWhatIsWrong)
{
    debug::Settings settings;
    EXPECT_EQ(debug::parseSettings("severity=error,status=3,format=json", settings), "");
    EXPECT_EQ(settings.severity, NINEFOLD_DEBUG_ERROR);
    EXPECT_EQ(settings.status, 3);
    EXPECT_TRUE(settings.json);
    EXPECT_EQ(debug::parseSettings("severity=errors", settings), "severity=errors");
    EXPECT_EQ(debug::parseSettings("stack", settings), "stack");
    EXPECT_EQ(debug::parseSettings("status=126", settings), "status=126");
    EXPECT_EQ(debug::parseSettings("", settings), "");
}

} // namespace
