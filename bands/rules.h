// Which draws bands can cut, and what must be done so that the pieces have the bits of the whole. All of it follows from what a
// kernel works with (layer::needsOf) and from rs; each rule has a minimal example in tests/bands/rules_test.cpp.
#pragma once

#include "thread_draws.h"

#include "footprint.h"

#include <cstddef>
#include <cstdint>

namespace bands {

/* clang-format off */

// X(name, words).
#define NINEFOLD_BANDS_RULES(X) \
    /* Drawn whole, between two flushes. */ \
    X(occlusion, "occlusion triangles: where one begins above the clip rectangle it jumps by clipLeft from the clip's top") \
    X(hostOperator, "operators of the host's own: they see pixels in order, unless they are declared pure") \
    X(narrowPlane, "frame buffers narrower than 16 pixels under SHAHEI_PLANE, SHAHEI_PLANE_PRIORITY: rows share words") \
    X(overlap, "a source that shares memory with any row of the frame buffer or the planes: another band may be writing it") \
    X(moveBack, "run-length rectangles whose holes of 128 texels may lead back beyond the start of the row") \
    X(planeRows, "line tables that leave rows out, under SHAHEI_PLANE, SHAHEI_PLANE_PRIORITY: the plane's row stands still") \
    X(strayClip, "clip rectangles beyond the frame buffer, and frame buffers whose rows do not follow one another") \
    /* Cut, and mended. */ \
    X(lineEnd, "lines flatter than steep that end inside the clip rectangle: the end pixel may lie a row off the end vertex") \
    X(skippedRows, "line tables that leave rows out: stipple and rule rows stand still") \
    X(lineLevels, "line tables by mip levels: weights are carried from row to row") \
    X(mipScratch, "drivers of mip levels: what they leave in rs reaches later draws") \
    X(target, "another frame buffer or other planes: a flush before it")

/* clang-format on */

enum class Rule : uint8_t {
#define NINEFOLD_ENTRY(name, words) name,
    NINEFOLD_BANDS_RULES(NINEFOLD_ENTRY)
#undef NINEFOLD_ENTRY
        count
};

// Rules that are not heeded, bit by bit. Tests show so that each is needed.
extern uint32_t ignoredRules;
inline bool heeds(Rule rule) { return !(ignoredRules >> uint32_t(rule) & 1); }

// What is drawn into. Its rows are what bands divide, so one batch has one.
struct Target {
    const uint32_t *pixels;
    const uint16_t *plane;
    const uint8_t *z;
    uint32_t shift;
    int32_t height;

    static Target current();
    // Whether rs draws into this.
    bool isCurrent() const
    {
        return rs.dstPixels == pixels && rs.dstShift == shift && rs.shaheiPlane == plane && rs.zBuffer == z &&
               rs.clipBottom <= height;
    }
    bool shares(const Texture &texture) const;
};

// A kernel or a function that draws. What it draws with follows from its id alone.
struct Kind {
    const layer::Needs *needs; // null: not asked for yet
    DrawFunc banded; // null: it is never cut
    float weight; // about so many ns a pixel
    bool nothing; // it draws nothing
    bool plane; // reads or writes the Shahei plane
    bool mayMend; // by line table
    bool driven;
};
extern Kind kinds[layer::recordCount + layer::namedDrawCount];
const Kind &makeKind(layer::Id id);
inline const Kind &kindOf(layer::Id id) { return kinds[id].needs ? kinds[id] : makeKind(id); }

enum class Fate : uint8_t {
    nothing, // no pixel is reached
    cut,
    whole,
    cheap, // drawn at once: recording it would cost as much
};

// What becomes of a call, with rs as it stands. Fills of `draw` all but the state, for Fate::cut.
class Judge {
public:
    Target target{};
    Rows reached{}; // of the draw judged last, for Fate::cut

    // Forgets what is known of textures, which may have changed, and takes rs's target.
    void begin();
    Fate judge(const Kind &kind, Draw &draw);
    // Of the draw judged last.
    float cost() const { return nanoseconds; }
    float area() const { return pixels; } // about as many pixels wait for memory rather than for the processor

    // The operator of the second copy, or the host's own if it is declared pure. Null: the draw is whole.
    PixelOperator bandedFor(PixelOperator function);

private:
    struct Known { // of a texture
        const Texture *texture;
        uint32_t batch;
        bool chain, clean;
        int8_t holes; // of 128 texels; -1: not looked for
    };
    Known known[64] = {};
    uint32_t batch = 0;
    float nanoseconds = 0, pixels = 0;
    PixelOperator asked[2] = {}, given[2] = {};

    Known &knownOf(const Texture *texture, bool chain);
    bool clean(const Texture *texture, bool chain);
    bool sourcesClean(const layer::Needs &needs);
    bool movesBack(int32_t left, int32_t columns);
    bool judgeTable(const Kind &kind, Draw &draw);
};

// What a draw costs in ns, if nothing of it is clipped.
float costAtMost(const Kind &kind);

// Leaves rs as the draw would.
void leaveScratch(const Kind &kind);

void declarePure(PixelOperator function);

} // namespace bands
