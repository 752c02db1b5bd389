// What the page's scripts call. Texts that are handed out stay until the next call.
#include "describe.h"
#include "given.h"
#include "layer.h"
#include "report.h"
#include "scene.h"

#include "core/catalogue.h"
#include "ops/blend.h"

#include <ninefold/debug.h>
#include <ninefold/kit/codes.h>

#include <emscripten/emscripten.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

extern "C" const NinefoldDebugCalls *ninefoldDebugCalls(void);

using namespace page;
using debug::quoted;

namespace {

std::string result, findings;

const char *give(std::string text)
{
    result = std::move(text);
    return result.c_str();
}

void collect(const NinefoldFinding *finding, void *)
{
    if (!findings.empty())
        findings += ',';
    findings += "{\"rule\":" + quoted(finding->name) + ",\"severity\":" + std::to_string(finding->severity) +
                ",\"text\":" + quoted(finding->text) + ",\"advice\":" + quoted(finding->advice) + "}";
}

// What a kernel does by itself, without the twin.
void drawAlone(const State &state)
{
    setState(state);
    own_SearchDrawFunc(state.code)();
}

// The state's shape in one colour on an empty screen: how many pixels it covers.
uint32_t pixelsCovered(State state)
{
    const ninefold::Axes a = ninefold::axesOf(state.code);
    state.code = ninefold::codeOf({a.shape, NINEFOLD_PERS_OFF, NINEFOLD_RULE_OFF, NINEFOLD_PRESCALE_OFF, NINEFOLD_FILTER_FLAT,
                                   NINEFOLD_RECT_NONE, NINEFOLD_SHAHEI_NONE, NINEFOLD_BLEND_COPY, NINEFOLD_MULTI_NONE});
    state.fields.color[0] = 0xFFFFFFFF;
    std::fill_n(screenPixels(), size_t{screenWidth} * screenHeight, 0u);
    drawAlone(state);
    return uint32_t(std::count(screenPixels(), screenPixels() + size_t{screenWidth} * screenHeight, 0xFFFFFFFF));
}

uint32_t takeSource(uint32_t, uint32_t source) { return source; }

// What goes into the blend at a pixel, 0: nothing does. Its alpha is that of blends that do not weigh by it.
uint32_t sourceAt(State state, size_t at, bool multi, Texture *instead = nullptr)
{
    ninefold::Axes a = ninefold::axesOf(state.code);
    a.prescale = NINEFOLD_PRESCALE_OFF;
    if (!multi)
        a.multi = NINEFOLD_MULTI_NONE;
    if (a.rectOpt != NINEFOLD_RECT_PLANE_RUNS) // which goes with the plane modes and copies only
        a.shahei = NINEFOLD_SHAHEI_NONE, a.rule = NINEFOLD_RULE_OFF, a.blend = NINEFOLD_BLEND_CUSTOM;
    else
        state.plane = Plane::CLEAR;
    state.code = ninefold::codeOf(a);
    state.blendOperator = ownOperator;
    clearScreen(state);
    std::fill_n(screenPixels(), size_t{screenWidth} * screenHeight, 0u);
    setState(state);
    rs.blendFunc = takeSource;
    if (instead)
        rs.tex0 = instead;
    own_SearchDrawFunc(state.code)();
    return screenPixels()[at];
}

bool mixesTexels(int filter)
{
    return filter == NINEFOLD_FILTER_BILINEAR || filter == NINEFOLD_FILTER_LINE_BILINEAR ||
           filter == NINEFOLD_FILTER_MIP_BILINEAR;
}

// Filters that mix texels give an alpha only to blends that weigh by it. Here it is mixed as a colour.
uint32_t mixedAlphaAt(const State &state, size_t at)
{
    const Texture &picture = *textureOf(state.tex0);
    Texture *const alphas = CreateTexture(picture.width, picture.height);
    std::transform(picture.pixels, picture.pixels + (size_t{picture.height} << picture.log2Width), alphas->pixels,
                   [](uint32_t word) { return word ? 0xFF000000 | (word >> 24) * 0x10101 : 0; });
    CreateMipmapTexture(alphas);
    const uint32_t alpha = sourceAt(state, at, false, alphas) & 0xFF;
    DeleteTexture(alphas);
    return alpha << 24;
}

std::string hex(uint32_t word)
{
    char text[16];
    std::snprintf(text, sizeof text, "\"%08X\"", unsigned(word));
    return text;
}

} // namespace

extern "C" {

// Once, before all others.
EMSCRIPTEN_KEEPALIVE void pageStart(void)
{
    setenv("NINEFOLD_DEBUG", "repeat=0,summary=off", 1); // the page shows what there is to say
    const NinefoldDebugCalls &twin = *ninefoldDebugCalls();
    twin.setCallback(collect, nullptr);
    twin.setAction(NINEFOLD_DEBUG_SKIP);
    const size_t pixels = size_t{screenWidth} * bufferHeight;
    screenPixels();
    twin.labelMemory(shaheiPlane(), pixels / 8, "plane");
    twin.labelMemory(priorityPlane(), pixels, "priorities");
}

EMSCRIPTEN_KEEPALIVE const char *pageDescribe(void) { return give(describe()); }
EMSCRIPTEN_KEEPALIVE const char *pageFamilies(void) { return give(describeFamilies()); }
EMSCRIPTEN_KEEPALIVE const char *pageMembers(const char *name) { return give(describeMembers(nfkCodeOfName(name))); }

// The name of a code in hexadecimal or a name; empty: there is none.
EMSCRIPTEN_KEEPALIVE const char *pageFind(const char *text)
{
    char *rest = nullptr;
    uint32_t code = uint32_t(std::strtoul(text, &rest, 16));
    if (!*text || *rest)
        code = nfkCodeOfName(text);
    return give(nfkCodeExists(code) ? ninefold::nameOf(ninefold::axesOf(code)) : "");
}

// {"error": ...}, or all about the state.
EMSCRIPTEN_KEEPALIVE const char *pageLook(const char *text)
{
    State state;
    const std::string wrong = parse(text, state);
    return give(wrong.empty() ? describeState(state) : "{\"error\":" + quoted(wrong) + "}");
}

// Draws; the twin's findings, or {"error": ...}.
EMSCRIPTEN_KEEPALIVE const char *pageDraw(const char *text)
{
    State state;
    const std::string wrong = parse(text, state);
    if (!wrong.empty())
        return give("{\"error\":" + quoted(wrong) + "}");
    findings.clear();
    draw(state);
    return give("{\"findings\":[" + findings + "]}");
}

// The screen before the draw.
EMSCRIPTEN_KEEPALIVE void pageClear(const char *text)
{
    State state;
    if (parse(text, state).empty())
        clearScreen(state);
}

EMSCRIPTEN_KEEPALIVE uint32_t *pagePixels(void) { return screenPixels(); }
EMSCRIPTEN_KEEPALIVE uint16_t *pagePlane(void) { return shaheiPlane(); }
EMSCRIPTEN_KEEPALIVE uint8_t *pagePriorities(void) { return priorityPlane(); }

// What comes together at a pixel of the screen: the inputs of the blend, its output, and the pixel before and after the draw.
EMSCRIPTEN_KEEPALIVE const char *pageProbe(const char *text, uint32_t x, uint32_t y)
{
    State state;
    if (!parse(text, state).empty() || x >= uint32_t(screenWidth) || y >= uint32_t(screenHeight))
        return give("{}");
    const size_t at = size_t{y} * screenWidth + x;
    uint32_t texel = sourceAt(state, at, false), source = sourceAt(state, at, true);
    const ninefold::Axes a = ninefold::axesOf(state.code);
    if (ninefold::ops::weighsByAlpha(a.blend) && mixesTexels(a.filter)) {
        const uint32_t alpha = mixedAlphaAt(state, at);
        texel = (texel & 0xFFFFFF) | alpha;
        if (a.multi == NINEFOLD_MULTI_NONE || state.multiOp != NINEFOLD_MULTI_OP_CONST_ALPHA) // which leaves 0
            source = (source & 0xFFFFFF) | alpha;
    }
    clearScreen(state);
    const uint32_t before = screenPixels()[at];
    const bool taken = shaheiPlane()[at / 16] >> (15 - at % 16) & 1;
    const unsigned priority = priorityPlane()[at];
    // The blend alone, without the tests that may keep its output off the screen.
    State blended = state;
    ninefold::Axes plain = a;
    plain.rule = NINEFOLD_RULE_OFF;
    if (a.rectOpt != NINEFOLD_RECT_PLANE_RUNS)
        plain.shahei = NINEFOLD_SHAHEI_NONE;
    blended.code = ninefold::codeOf(plain);
    drawAlone(blended);
    const uint32_t output = screenPixels()[at];
    clearScreen(state);
    drawAlone(state);
    return give("{\"texel\":" + hex(texel) + ",\"source\":" + hex(source) + ",\"before\":" + hex(before) +
                ",\"output\":" + hex(output) + ",\"after\":" + hex(screenPixels()[at]) +
                ",\"taken\":" + (taken ? "true" : "false") + ",\"priority\":" + std::to_string(priority) + "}");
}

// Nanoseconds a call of the kernel, measured for about twice so many milliseconds, and the pixels that its shape covers.
EMSCRIPTEN_KEEPALIVE const char *pageTime(const char *text, double milliseconds)
{
    State state;
    if (!parse(text, state).empty())
        return give("{}");
    const uint32_t pixels = pixelsCovered(state);
    clearScreen(state);
    setState(state);
    const DrawFunc kernel = own_SearchDrawFunc(state.code);
    const bool marks = ninefold::marksPlane(ninefold::axesOf(state.code).shahei);
    const std::vector<uint16_t> plane(shaheiPlane(), shaheiPlane() + size_t{screenWidth} * bufferHeight / 16);
    const auto run = [&](uint32_t calls, bool draws) {
        const double began = emscripten_get_now();
        for (uint32_t i = 0; i < calls; ++i) {
            if (marks) // what is marked is not drawn again
                std::copy(plane.begin(), plane.end(), shaheiPlane());
            if (draws)
                kernel();
        }
        return emscripten_get_now() - began;
    };
    // Batches of an eighth of the time; the quickest counts, as browsers compile code better while it runs.
    uint32_t calls = 1;
    double best = run(calls, true);
    while (best < milliseconds / 8 && calls < 1u << 24)
        best = run(calls *= 2, true);
    for (int batch = 0; batch < 8; ++batch)
        best = std::min(best, run(calls, true));
    if (marks)
        best -= run(calls, false);
    return give("{\"ns\":" + std::to_string(best * 1e6 / calls) + ",\"pixels\":" + std::to_string(pixels) + "}");
}

EMSCRIPTEN_KEEPALIVE void pageGiveFile(const char *file, const uint32_t *pixels, uint32_t width, uint32_t height)
{
    giveFile(file, pixels, width, height);
}
EMSCRIPTEN_KEEPALIVE void pageGiveDropped(const uint32_t *pixels, uint32_t width, uint32_t height)
{
    giveDropped(pixels, width, height);
}

// {"name": ...}, or {"error": ...}.
EMSCRIPTEN_KEEPALIVE const char *pageGiveFont(const uint8_t *bytes, uint32_t size)
{
    std::string name;
    if (giveFont(bytes, size, name))
        return give("{\"name\":" + quoted(name) + "}");
    return give("{\"error\":\"no TrueType or OpenType font with outlines\"}");
}

// Draws; what describeText says with the twin's findings, or {"error": ...}.
EMSCRIPTEN_KEEPALIVE const char *pageText(const char *state)
{
    Text text;
    if (const std::string wrong = parse(state, text); !wrong.empty())
        return give("{\"error\":" + quoted(wrong) + "}");
    findings.clear();
    const DrawnText drawn = draw(text);
    return give("{\"findings\":[" + findings + "],\"drawn\":" + describeText(text, drawn) + "}");
}
EMSCRIPTEN_KEEPALIVE const uint32_t *pageAtlas(void) { return atlasPixels(); }

} // extern "C"
