// Sources that share memory with what is drawn into: pixels come out as if drawn one at a time, left to right, top to bottom.
#include "support/sweep.h"

#include <gtest/gtest.h>

#include <set>

using namespace support;

TEST(Overlap, SourcesOverTheFrameBufferAndThePlanes)
{
    const std::vector<Subject> subjects = sharedCatalogue();
    const SweepResult result = sweep(subjects, {.kind = Kind::overlap, .scenes = scenesWanted(8), .seed = seedWanted()});
    EXPECT_TRUE(result.failed.empty()) << result.text << tableByAxis(subjects, result.failed);
}

// Pixels from the frame buffer to the source; between them, the codes go through all distances.
TEST(Overlap, SourcesAtEachOffset)
{
    const std::vector<Subject> subjects = sharedCatalogue();
    World world;
    std::set<int64_t> offsets;
    const std::vector<Subject> &all = catalogueSubjects(); // not a share of them
    for (size_t index = 0; index < all.size(); index += 8) {
        const Scene scene = makeScene(all[index], {.kind = Kind::offset}, world);
        bool laid = false;
        for (const int texture : {scene.tex0, scene.tex1, scene.tex2})
            if (texture >= 0) {
                const Place &place = scene.textures[static_cast<size_t>(texture)].pixels;
                laid = laid || (place.slot == frameSlot && place.offset - scene.pixels.offset == 4 * offsetOf(scene));
            }
        ASSERT_TRUE(laid || (scene.tex0 < 0 && scene.tex1 < 0 && scene.tex2 < 0)) << all[index].name();
        if (laid)
            offsets.insert(offsetOf(scene));
    }
    EXPECT_EQ(offsets.size(), static_cast<size_t>(offsetCount));
    const SweepResult result = sweep(subjects, {.kind = Kind::offset, .scenes = (scenesWanted(8) + 3) / 4, .seed = seedWanted()});
    EXPECT_TRUE(result.failed.empty()) << result.text << tableByAxis(subjects, result.failed);
}

TEST(Overlap, NamedFunctions)
{
    const SweepResult result =
        sweep(namedSubjects(), {.kind = Kind::overlap, .scenes = 30 * scenesWanted(8), .seed = seedWanted()});
    EXPECT_TRUE(result.failed.empty()) << result.text;
}
