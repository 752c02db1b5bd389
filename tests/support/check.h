// Draws a scene with the library and with the reference, and compares all that is left behind.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "scene.h"

namespace support {

class Comparer {
public:
    // Starts the library and fetches the kernels, before anything is drawn. Large scenes want memory of their own.
    explicit Comparer(Kind kind = Kind::plain);

    // What differs, if anything, with one instruction set; -1: with each. `all`: not the first difference only, and the scene.
    std::optional<std::string> check(const Subject &subject, SceneId id, int set = -1, bool all = false);

    // A sum over what the reference, or the library, leaves behind.
    uint32_t referenceSum(const Subject &subject, SceneId id);
    uint32_t librarySum(const Subject &subject, SceneId id, int set);

    // Tells which set is about to draw.
    void (*beforeDraw)(int set) = nullptr;

private:
    World libraryWorld, referenceWorld;
    std::vector<std::pair<uint32_t, DrawFunc>> kernels; // by code
    std::vector<std::byte> before; // the windows that are written, as they were
    std::vector<std::byte> textureBytes; // the library's texture records
    Scene scene;
    RenderState libraryStart, referenceStart, referenceEnd;

    void prepare(const Subject &subject, SceneId id);
    void openEyes(const World &world, bool byReference) const;
    void drawReference();
    void drawLibrary(int set, bool restore);
    uint32_t sum(const World &world, const RenderState &start, const RenderState &end) const;
    std::string differences(bool all) const;
    std::string pixelDifferences(const Window &window, size_t beforeOffset, bool all) const;
};

// Functions that the kernel table names.
size_t distinctKernels();

} // namespace support
