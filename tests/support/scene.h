// Scenes: what a kernel is called with. A scene follows from its number alone, by integer arithmetic alone. It stays inside the
// domain where what is drawn is defined, and goes to its edges.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "subject.h"
#include "world.h"

#include <ninefold/render_state.h>

namespace support {

enum class Kind {
    plain,
    big, // frame buffers and spans up to 2048 pixels
    small, // none larger than 128 pixels: for sums that are checked in
    overlap, // sources share memory with what is written
    guard, // buffers end, or begin, at a page without access
    offset, // a source so many pixels before or behind the frame buffer's; one scene after another, each distance up to reach
    large // frame buffers and textures up to 4096 by 4096, coordinates up to the ends of their 32 bits
};
constexpr int kindCount = 7;
const char *kindName(Kind kind);

struct SceneId {
    Kind kind = Kind::plain;
    uint64_t seed = 1;
    uint32_t number = 0;
    std::span<const uint8_t> bytes{}; // a fuzzer's: choices are made by them first
};

constexpr int offsetReach = 130, offsetCount = 2 * offsetReach + 1;

// A texture record with its pixels by place and its levels by index.
struct TextureSpec {
    Place pixels;
    uint8_t log2Width = 0, log2Height = 0;
    uint8_t levels = 0; // mipCount
    std::array<int8_t, levelLimit> level{};
    bool runs = false, zeros = false; // has maps
    uint32_t width() const { return 1u << log2Width; }
    uint32_t height() const { return 1u << log2Height; }
};

// Bytes of a slot that are copied and compared.
struct Window {
    int slot;
    uint32_t begin, end;
};

struct Scene {
    Subject subject;
    SceneId id;
    ninefold::Axes axes{};

    RenderState state{}; // all but pointers
    Place pixels, plane, priority, lines0, lines1, shifts, runs, zeros;
    int frameTexture = -1, tex0 = -1, tex1 = -1, tex2 = -1, mipTex = -1, mipTex1 = -1;
    std::array<TextureSpec, World::textureLimit> textures;
    int textureCount = 0;
    int multiOperator = 0, blendOperator = 0;
    uint32_t frameWidth = 0, frameHeight = 0;
    uint32_t searchedBefore = 0; // code of the look-up before the draw
    int draws = 1; // one after another, the next on what the one before left behind

    // the first `written` of them may be drawn into
    std::array<Window, slotCount> windows;
    int windowCount = 0, written = 0;
};

// Of a scene of Kind::offset: pixels from the frame buffer to the source.
int64_t offsetOf(const Scene &scene);

// Makes a scene and fills the memory of `world` with it.
Scene makeScene(const Subject &subject, SceneId id, World &world);

// Fills the texture records of `world` and returns the state that points into it. `library`: with the library's operators.
RenderState bindScene(const Scene &scene, World &world, bool library);

// What a reader of a failure wants to see.
std::string describeScene(const Scene &scene, const World &world);

} // namespace support
