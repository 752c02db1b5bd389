// The benchmark's vocabulary: a job is one kind of work, a contender one implementation of it.
#pragma once

#include <ninefold/ninefold.h>

#include "core/catalogue.h"
#include "map.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

constexpr int frameSize = 1024; // the frame buffer is square

// What a texture holds. Noise and shapes that sprites have: noise alone would flatter, as no run of it is worth a shortcut. Only
// peers that want premultiplied sources read a copy.
enum class Content : uint8_t {
    opaque, // alpha 255
    key, // 30 % of the words are 0, the rest has alpha 255
    sprite, // 30 % zeros, 20 % alpha 255 or 0, the rest all alphas
    soft, // alphas 1 to 254
    holes10, // that many per cent of zeros in runs, the rest soft
    holes30,
    holes50,
    holes70,
    holes90,
    discs, // all over, in columns: a third 0, the rest alpha 255 but for a rim of three pixels; no row has 128 zeros side by side
    discs32, // one in each cell of 32 by 32
    discs64, // one in each cell of 64 by 64
    cutouts, // a cup or a horse, cut out of the gallery's pictures, in each cell of 64 by 64
    count
};

// What is drawn. The primitive's fields are those that the library reads for it; peers translate.
enum class Kind : uint8_t {
    fill, // rectangle vertex[0..1] of color[0]
    blit, // unit scale from the whole texel uv[0]
    stretch, // uv[0] to uv[1] over the rectangle
    corners, // uv[0..3] at the corners top left, top right, bottom left, bottom right; affine
    table, // rows of a line table, a floor in perspective
    triangle, // vertex[0..2] at uv[0..2]
    perspective, // a rectangle as two triangles in perspective, depths in vertex[].z; corners as above
    flatTriangle,
    gouraudTriangle, // color[0..2]
    gouraudRect, // color[0..3] at the corners
    line, // vertex[0] to vertex[1] of color[0]
    other // the job brings its contenders itself
};

enum Blend : uint8_t { // the library's blend axis
    copy = NINEFOLD_BLEND_COPY,
    alpha = NINEFOLD_BLEND_ALPHA,
    constAlpha = NINEFOLD_BLEND_CONST_ALPHA,
    alphaFast = NINEFOLD_BLEND_ALPHA_FAST,
    add = NINEFOLD_BLEND_ADD,
    subtract = NINEFOLD_BLEND_SUB,
    multiply = NINEFOLD_BLEND_MUL,
    multiply2 = NINEFOLD_BLEND_MUL2,
    screen = NINEFOLD_BLEND_SCREEN,
    overlay = NINEFOLD_BLEND_OVERLAY,
    merge = NINEFOLD_BLEND_MERGE
};

struct Primitive {
    Vertex vertex[4];
    TexCoord uv[4];
    uint32_t color[4];

    int width() const { return vertex[1].x - vertex[0].x; } // of rectangles
    int height() const { return vertex[1].y - vertex[0].y; }
    int texelU() const { return uv[0].u >> 16; }
    int texelV() const { return uv[0].v >> 16; }
    // The size of a stretch's source, in whole texels.
    int sourceWidth() const { return (uv[1].u - uv[0].u + 0x8000) >> 16; }
    int sourceHeight() const { return (uv[1].v - uv[0].v + 0x8000) >> 16; }
};

struct Work {
    Kind kind = Kind::other;
    Blend blend = copy;
    bool bilinear = false;
    bool mipmapped = false;
    Content content = Content::sprite;
    int textureSize = frameSize;
    std::vector<Primitive> primitives; // drawn in turn; their number is a power of two
    std::vector<Map> maps; // of each primitive, where textured

    bool weighsByAlpha() const { return blend == alpha || blend == alphaFast; }
};

enum class Role : uint8_t {
    memcpy, // the same bytes copied
    ours, // one of the library's instruction sets
    scalar, // the same kernel as a plain loop
    yardstick, // something else of ours or of the language that the job is to be measured by
    peer,
    less // a peer that leaves work out: shown, not a rival
};

struct Contender {
    std::string name;
    Role role;
    std::string note; // where the work is only near, in what
    std::function<void()> prepare; // untimed, before each of its turns; may be empty
    std::function<void(long calls)> run; // timed; when it returns all pixels are in the frame buffer
    double patience = 1; // how much longer its turns are, so that what each costs at its end is spread
    double tolerance = 4; // most that its pixels may differ from ours on average, of 255
    long cycle = 64; // a turn of more calls is a multiple of it, so that each turn draws every primitive alike
    // Instead of timing run(): for work that is interrupted by what is none. `clock` gives seconds.
    std::function<double(long calls, double (*clock)())> seconds = {};
    std::function<std::string()> verify = {}; // of work that knows its pixels: empty, or what is wrong; may be empty itself
};
using Contenders = std::vector<Contender>;

struct Job {
    std::string name;
    std::string note; // on the library's way of doing it
    Work work;
    double pixels = 0; // drawn per call, on average
    bool perCall = false; // report nanoseconds per call instead of per pixel
    const char *unit = nullptr; // what a pixel is called, if it is none
    double frames = 0; // of a call, where the job has a row by frames besides
    double goal = 1; // at most this ratio to the best peer, or to the yardstick where there is one; 0: none
    double scalarGoal = 1; // the same to the scalar loop
    double budget = 0; // nanoseconds of a call, as the yardstick
    ninefold::Axes axes{}; // of the library's kernel
    DrawFunc kernel = nullptr; // in place of one with a draw code
    DrawFunc scalar = nullptr;
    std::function<void()> setup; // what rs needs beyond prepareState
    std::function<void(Contenders &)> more; // contenders beside the common ones
    bool ownOnly = false; // no peer has it
    bool refused = false; // draws nothing, which is the point
    bool cold = false; // every turn begins with nothing in the caches
    std::vector<double> samples; // nanoseconds of a call, taken before; in place of contenders

    const char *unitName() const { return unit ? unit : perCall ? "call" : "pixel"; }
};

// Takes the time of the start-up calls in processes that have not called anything yet: to be called first of all.
void recordStartUp(int samples);

// A contender that draws one primitive a call, by index; `finish` ends a turn, for those that queue.
template <class Draw, class Finish>
Contender contender(std::string name, Role role, std::string note, const Work &work, Draw draw, Finish finish)
{
    const long mask = long(work.primitives.empty() ? 1 : work.primitives.size()) - 1;
    return {std::move(name),
            role,
            std::move(note),
            {},
            [draw, finish, mask](long calls) {
                for (long i = 0; i < calls; ++i)
                    draw(size_t(i & mask));
                finish();
            },
            1,
            4,
            std::max(64L, mask + 1)};
}
template <class Draw>
Contender contender(std::string name, Role role, std::string note, const Work &work, Draw draw)
{
    return contender(std::move(name), role, std::move(note), work, draw, [] {});
}

// Peers register themselves: a maker adds its contenders for a work, none if it has no such operation.
using Maker = void (*)(const Work &, Contenders &);
struct Peer {
    Peer(const char *name, Maker make);
};
const std::vector<std::pair<std::string, Maker>> &peers();

// All contenders of a job. It must outlive them.
Contenders contendersOf(const Job &job);

// The library's contenders (one for each set that the machine has) and the scalar loop.
void addOurs(const Job &job, Contenders &contenders);
void addMemcpy(const Job &job, Contenders &contenders);

int bestSet(); // of the library, on this machine and where contenders are held

// A kernel of ours in the best set, in another role.
Contender kernelAs(std::string name, Role role, const Job &job, const ninefold::Axes &axes, std::function<void()> setup);

// Fills rs for a work: frame buffer, clip, textures, planes, factors. The planes keep what they hold.
void prepareState(const Work &work);

std::vector<Job> allJobs();

} // namespace bench
