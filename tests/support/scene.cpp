#include "scene.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "builder.h"
#include "host.h"

namespace support {

const char *kindName(Kind kind)
{
    static constexpr const char *names[kindCount] = {"plain", "big", "small", "overlap", "guard", "offset", "large"};
    return names[static_cast<int>(kind)];
}

int64_t offsetOf(const Scene &scene)
{
    // few scenes of each code still reach all distances between them
    const uint64_t first = Random(scene.subject.code).below(offsetCount);
    return static_cast<int64_t>((first + scene.id.number) % offsetCount) - offsetReach;
}

Scene makeScene(const Subject &subject, SceneId id, World &world)
{
    Scene scene;
    scene.subject = subject;
    scene.id = id;
    uint64_t seed = Random(id.seed).bits() ^ static_cast<uint64_t>(id.kind) << 56;
    seed = Random(seed ^ subject.code).bits() + (subject.exported != nullptr ? 1 : 0);
    seed = Random(seed + id.number).bits();
    Builder(scene, world, Random(seed, id.bytes)).build();
    return scene;
}

RenderState bindScene(const Scene &scene, World &world, bool library)
{
    const auto textureAt = [&world](int index) { return index < 0 ? nullptr : &world.textures[static_cast<size_t>(index)]; };
    for (int i = 0; i < scene.textureCount; ++i) {
        const TextureSpec &wanted = scene.textures[static_cast<size_t>(i)];
        Texture &texture = *textureAt(i);
        texture.pixels = world.at<uint32_t>(wanted.pixels);
        texture.width = wanted.width();
        texture.height = wanted.height();
        texture.log2Width = wanted.log2Width;
        texture.log2Height = wanted.log2Height;
        texture.mipCount = wanted.levels;
        for (int level = 0; level < levelLimit; ++level)
            texture.mip[level] = level < wanted.levels ? textureAt(wanted.level[static_cast<size_t>(level)]) : nullptr;
        texture.runlengthMap = wanted.runs ? world.at<int8_t>(scene.runs) : nullptr;
        texture.zeroPixelMap = wanted.zeros ? world.at<uint16_t>(scene.zeros) : nullptr;
        texture.flags = NINEFOLD_TEXTURE_HOST_PIXELS;
        texture.refCount = 0;
        texture.origWidth = texture.width;
        texture.origHeight = texture.height;
    }
    RenderState state;
    std::memcpy(&state, &scene.state, sizeof state); // with what lies between the fields
    state.dstPixels = world.at<uint32_t>(scene.pixels);
    state.frameBuffer = textureAt(scene.frameTexture);
    state.shaheiPlane = world.at<uint16_t>(scene.plane);
    state.zBuffer = world.at<uint8_t>(scene.priority);
    state.tex0 = textureAt(scene.tex0);
    state.tex1 = textureAt(scene.tex1);
    state.tex2 = textureAt(scene.tex2);
    state.mipTex = textureAt(scene.mipTex);
    state.mipTex1 = textureAt(scene.mipTex1);
    state.lineTable0 = world.at<LineTableRecord>(scene.lines0);
    state.lineTable1 = world.at<LineTableRecord>(scene.lines1);
    state.scanShift = world.at<int32_t>(scene.shifts);
    const OperatorPair multi = operatorPair(scene.multiOperator), blend = operatorPair(scene.blendOperator);
    state.multiFunc = library ? multi.library : multi.reference;
    state.blendFunc = library ? blend.library : blend.reference;
    return state;
}

std::string describeScene(const Scene &scene, const World &world)
{
    const RenderState &state = scene.state;
    std::string text;
    char part[256];
    const auto print = [&](const char *format, auto... values) {
        std::snprintf(part, sizeof part, format, values..., 0); // clang wants a value beside a format that is no literal
        text += part;
    };
    print("frame buffer %u x %u, clip %d..%d x %d..%d, origin %d %d\n", scene.frameWidth, scene.frameHeight, state.clipLeft,
          state.clipRight, state.clipTop, state.clipBottom, state.originX, state.originY);
    for (int i = 0; i < 4; ++i)
        print("vertex %d: %d %d %d  uv0 %08x %08x  uv1 %08x %08x  uv2 %08x %08x  color %08x\n", i, state.vertex[i].x,
              state.vertex[i].y, state.vertex[i].z, static_cast<unsigned>(state.uv0[i].u), static_cast<unsigned>(state.uv0[i].v),
              static_cast<unsigned>(state.uv1[i].u), static_cast<unsigned>(state.uv1[i].v), static_cast<unsigned>(state.uv2[i].u),
              static_cast<unsigned>(state.uv2[i].v), state.color[i]);
    const auto printTexture = [&](const char *name, int index) {
        if (index < 0)
            return;
        const TextureSpec &wanted = scene.textures[static_cast<size_t>(index)];
        print("%s: %u x %u, %d levels, slot %d", name, wanted.width(), wanted.height(), wanted.levels, wanted.pixels.slot);
        if (wanted.pixels.slot == frameSlot)
            print(", at pixel %d of the frame buffer", static_cast<int>((wanted.pixels.offset - scene.pixels.offset) / 4));
        for (int i = 1; i < wanted.levels; ++i) {
            const TextureSpec &level = scene.textures[static_cast<size_t>(wanted.level[static_cast<size_t>(i)])];
            print("; %u x %u", level.width(), level.height());
            if (level.pixels.slot <= prioritySlot)
                print(" (slot %d)", level.pixels.slot);
        }
        text += "\n";
    };
    printTexture("tex0", scene.tex0);
    printTexture("tex1", scene.tex1);
    printTexture("tex2", scene.tex2);
    printTexture("mipTex", scene.mipTex);
    printTexture("mipTex1", scene.mipTex1);
    print("blendAlpha %x, blendAlphaRgb %x, prescale %x, prescaleMulti %x, writeMask %08x, zRef %x\n", state.blendAlpha,
          state.blendAlphaRgb, state.prescale, state.prescaleMulti, state.writeMask, state.zRef);
    print("rule: threshold %d, width %d, curve %d; mosaic %d, %d; mipFrac %d, %d\n", state.ruleThreshold, state.ruleWidth,
          state.ruleCurve, state.mosaicSize, state.mosaicSize1, state.mipFrac, state.mipFrac1);
    print("multiFunc: %s; blendFunc: %s\n", operatorName(scene.multiOperator).c_str(), operatorName(scene.blendOperator).c_str());
    text += "drawMask:";
    for (const uint16_t row : state.drawMask)
        print(" %04x", row);
    text += "\n";
    if (const int32_t *table = world.at<int32_t>(scene.shifts)) {
        text += "scanShift:";
        for (uint32_t line = 0; line < scene.frameHeight && line < 64; ++line)
            print(" %d", table[line]);
        text += "\n";
    }
    if (const LineTableRecord *table = world.at<LineTableRecord>(scene.lines0))
        for (int line = 0; line < std::min<int64_t>(64, std::abs(int64_t{state.vertex[1].y} - state.vertex[0].y)); ++line)
            print("line %d: %08x %08x to %08x %08x\n", line, static_cast<unsigned>(table[line].startU),
                  static_cast<unsigned>(table[line].startV), static_cast<unsigned>(table[line].endU),
                  static_cast<unsigned>(table[line].endV));
    return text;
}

} // namespace support
