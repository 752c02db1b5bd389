// The twin on the layer: what is looked at before each call, and learnt after it.
#include "fonts.h"
#include "knowledge.h"
#include "memory.h"
#include "recording.h"
#include "report.h"

#include "core/catalogue.h"

#include <bit>
#include <cstdio>

namespace debug {
namespace {

using layer::Call;
using layer::Function;

constexpr uint64_t drawsPerFrame = 4096; // where a host marks none

// The kernel that was fetched last, for the modes as they were, and has not drawn since.
struct Fetched {
    bool waits;
    layer::Id record;
} fetched;

// What is told of draws that follow one another.
void lookAtSequence(layer::Id id, const layer::Footprint &reach)
{
    if (fetched.waits && fetched.record == id && own_CreateDrawCode() != layer::codeOf(id)) {
        const auto modes = uint32_t(own_CreateDrawCode());
        report(ruleNamed("modes-differ"), id, "The modes are now those of " + ninefold::nameOf(ninefold::axesOf(modes)) + ".");
    }
    fetched.waits = false;
    static uint32_t nothing;
    nothing = reach.pixels.empty() ? nothing + 1 : 0;
    if (nothing == 1000) {
        nothing = 0;
        report(ruleNamed("nothing-drawn"), id,
               "The clip rectangle is " + std::to_string(rs.clipLeft) + " to " + std::to_string(rs.clipRight) + ", " +
                   std::to_string(rs.clipTop) + " to " + std::to_string(rs.clipBottom) + ".");
    }
}

bool lookAtDraw(layer::Id id)
{
    static layer::Footprint reach; // large, and only its counted parts are filled
    ageMemory();
    if (++drawCount % drawsPerFrame == 0)
        nextFrame();
    const uint64_t asked = rulesFor(id);
    if (!asked && !isRecording())
        return true;
    layer::findFootprint(id, canLookAt, reach);
    lookAtSequence(id, reach);
    const Draw draw(id, reach);
    bool go = true;
    static Text text;
    for (uint64_t left = asked; left; left &= left - 1) {
        const size_t rule = size_t(std::countr_zero(left));
        if (rules[rule].breaks(draw, text))
            go &= report(rule, id, text.words);
    }
    if (go && isRecording())
        recordBefore(id, reach);
    return go;
}

// What is told where a function is called.
struct Told {
    layer::Id id;
    bool go = true;
    bool tell(const char *rule, const std::string &words, uint32_t code = 0)
    {
        go &= report(ruleNamed(rule), id, words, code);
        return false;
    }
    // Whether the texture's record, and with `pixels` its pixels, are there.
    bool texture(const char *name, const Texture *texture, bool pixels)
    {
        const State state = stateOf(texture, pixels);
        if (state == State::good)
            return true;
        const char *const rule = state == State::sizes || state == State::pixels ? "argument-pixels" : "argument-texture";
        return tell(rule, std::string("The argument ") + name + " is " + wordsFor(texture) +
                              (state == State::deleted ? ", which was deleted." : "."));
    }
};

std::string hex(uint32_t code)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", unsigned(code));
    return text;
}

// The existing combination of the shape with the fewest other values.
uint32_t nearest(uint32_t code)
{
    const ninefold::Axes wanted = ninefold::axesOf(code);
    int fewest = 100;
    uint32_t best = layer::defaultCode(code);
    ninefold::forEachCombination([&](const ninefold::Axes &a) {
        if (const int others = ninefold::differences(a, wanted); a.shape == wanted.shape && others < fewest)
            fewest = others, best = ninefold::codeOf(a);
    });
    return best;
}

bool lookAtFunction(const Call &call)
{
    Told told{call.id};
    const auto function = Function(call.id - layer::recordCount);
    switch (function) {
    case Function::SearchDrawFunc:
        if (const auto code = uint32_t(call.argument[0]); !startUp.kernels) {
            told.tell("start-up-kernels", "Code " + hex(code) + " is looked up.");
        } else if (layer::recordOf(code) < 0 && !isHeard(ruleNamed("code-unknown"), call.id)) {
            told.tell("code-unknown", "", code);
        } else if (layer::recordOf(code) < 0) {
            const uint32_t closest = nearest(code);
            const char *const broken = ninefold::brokenPairing(ninefold::axesOf(code)); // none where a value is none of its axis
            const std::string instead =
                (code & 3) == 3 ? "nothing, the result is null" : ninefold::nameOf(ninefold::axesOf(layer::defaultCode(code)));
            told.tell("code-unknown",
                      "Code " + hex(code) + " is " + ninefold::nameOf(ninefold::axesOf(code)) +
                          (broken ? std::string(": ") + broken : "") + ". Drawn is " + instead + "; the nearest that exists is " +
                          ninefold::nameOf(ninefold::axesOf(closest)) + " (" + hex(closest) + ").",
                      code);
        }
        break;
    case Function::SetPresetDrawMask:
        if (const auto index = int64_t(call.argument[0]); index < 0 || index > NINEFOLD_STIPPLE_ODD_COLUMNS_AND_ROWS)
            told.tell("preset-stipple", "The number is " + std::to_string(index) + ".");
        else if (index > 0 && index < NINEFOLD_STIPPLE_ALL && !startUp.stipples)
            told.tell("preset-stipple-early", "The number is " + std::to_string(index) + ".");
        break;
    case Function::SetFrameBuffer: told.texture("texture", call.texture(), true); break;
    case Function::AddRefTexture: told.texture("texture", call.texture(), false); break;
    case Function::DeleteTexture:
        if (told.texture("texture", call.texture(), false)) {
            const Known *const entry = known(call.texture());
            if (!entry || !entry->made)
                told.tell("delete-not-made", "The argument texture is " + wordsFor(call.texture()) + ".");
        }
        break;
    case Function::DeleteMipmapTexture: told.texture("texture", call.texture(), false); break;
    case Function::ClearTexture:
    case Function::SetClearPixel:
    case Function::ReplacePixel:
    case Function::CreateMipmapTexture:
    case Function::CreateRunlengthMap:
    case Function::CreateZeroPixelMap: told.texture("texture", call.texture(), true); break;
    case Function::CopyTexture:
        told.texture("dst", call.texture(0), true);
        told.texture("src", call.texture(1), true);
        break;
    case Function::CreateFontTexture:
    case Function::CreateFontTextureFuchi:
        if (!call.argument[0])
            break;
        if (stateOf(rs.tex0, true) != State::good)
            told.tell("atlas-missing", "rs.tex0 is " + wordsFor(rs.tex0) + ".");
        if (rs.fontQuality < NINEFOLD_QUALITY_MONO || rs.fontQuality > NINEFOLD_QUALITY_GREY64)
            told.tell("font-quality", "rs.fontQuality is " + std::to_string(rs.fontQuality) + ".");
        if (const Face &face = wantedFace(); !face.exists)
            told.tell("face-missing", "rs.fontName is \"" + face.name + "\"" +
                                          (face.instead.empty() ? ", and there is no face at all; the glyph is empty."
                                                                : ". Taken is \"" + face.instead + "\"."));
        break;
    default: break;
    }
    return told.go;
}

void learnFetched(uint32_t code)
{
    const int record = layer::recordOf(code);
    fetched = {record >= 0 && own_CreateDrawCode() == code, layer::Id(record)};
}

void lookAfter(const Call &call)
{
    Told told{call.id};
    switch (Function(call.id - layer::recordCount)) {
    case Function::CreateTexture:
    case Function::LoadTexture:
    case Function::LoadTextureAdjust: recordChange(call.made()); break;
    case Function::ClearTexture:
    case Function::CopyTexture:
    case Function::SetClearPixel:
    case Function::ReplacePixel:
    case Function::CreateMipmapTexture:
    case Function::CreateRunlengthMap:
    case Function::CreateZeroPixelMap: recordChange(call.texture()); break;
    case Function::CreateFontTexture:
    case Function::CreateFontTextureFuchi: recordChange(rs.tex0); break;
    default: break;
    }
    if ((call.is(Function::CreateFontTexture) || call.is(Function::CreateFontTextureFuchi)) && call.argument[0] && !call.result)
        told.tell("atlas-full", "The glyph has " + std::to_string(rs.glyphWidth) + " x " + std::to_string(rs.glyphHeight) +
                                    " pixels, the cursor of the atlas, " + wordsFor(rs.tex0) + ", is at " +
                                    std::to_string(rs.fontCursorX) + ", " + std::to_string(rs.fontCursorY) + ".");
}

} // namespace
} // namespace debug

bool layer::before(Call &call)
{
    debug::readSettings();
    debug::used = true;
    if (draws(call.id))
        return debug::lookAtDraw(call.id);
    if (!debug::lookAtFunction(call))
        return false;
    debug::learnBefore(call);
    if (call.is(Function::SetFrameBuffer))
        debug::recordFrame(true);
    return true;
}

void layer::after(Call &call)
{
    if (draws(call.id))
        return debug::recordAfter();
    debug::learnAfter(call);
    if (call.is(layer::Function::SearchDrawFunc))
        debug::learnFetched(uint32_t(call.argument[0]));
    debug::lookAfter(call);
}

// What debug.h finds.
extern "C" NINEFOLD_API const NinefoldDebugCalls *ninefoldDebugCalls(void);
const NinefoldDebugCalls *ninefoldDebugCalls(void)
{
    debug::readSettings();
    static const NinefoldDebugCalls calls = {
        sizeof calls,
        [](NinefoldFindingCallback callback, void *context) { debug::callback = callback, debug::callbackContext = context; },
        [](int severity) { debug::settings().severity = severity; },
        [](int action) { debug::settings().action = action; },
        [](const Texture *texture, const char *name) {
            debug::labelTexture(texture, name);
            debug::recordLabel(texture, name);
        },
        [](const void *memory, size_t bytes, const char *name) {
            debug::labelMemory(memory, bytes, name);
            debug::recordLabel(memory, name);
        },
        debug::forgetMemory,
        [] {
            debug::nextFrame();
            debug::recordFrame(false);
        },
        [](int severity) -> unsigned long long { return debug::findings(severity); },
        [](FILE *out, int markdown) { debug::printRules(out, markdown != 0); },
    };
    return &calls;
}
