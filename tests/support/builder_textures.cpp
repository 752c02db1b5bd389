// What a scene draws from: textures, positions in them, line tables.
#include "builder.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "reference/reference.h"

namespace support {

Builder::Size Builder::textureSize()
{
    const uint32_t style = random.below(100);
    Size size;
    if (offsets && style < 70) { // rows as long as the frame buffer's, so that the distance stays what it is
        const TextureSpec &frameTexture = scene.textures[static_cast<size_t>(scene.frameTexture)];
        size = {frameTexture.log2Width, frameTexture.log2Height};
    } else if (large) {
        size = {random.between(0, 12), random.between(0, 12)};
    } else if (axes().rectOpt == NINEFOLD_RECT_RUNS) {
        size.log2Width = guard                ? random.between(0, 6)
                         : random.percent(60) ? random.between(7, 9)
                                              : random.between(2, big ? 11 : 9);
        size.log2Height = random.between(0, 3);
    } else if (style < 5) {
        size = {0, 0};
    } else if (style < 12) {
        size = {0, random.between(0, 7)};
    } else if (style < 19) {
        size = {random.between(0, 8), 0};
    } else if (style < 65) {
        size = {random.between(1, 5), random.between(1, 5)};
    } else if (style < 85 || small) { // rows that hold whole vectors
        size = {random.between(4, 7), random.between(0, 4)};
    } else {
        size.log2Width = random.between(1, big ? 11 : 9);
        size.log2Height = random.between(0, (big ? 14 : 11) - size.log2Width);
    }
    return size;
}

// A texture in a slot, and with `chain` its levels in the slots behind it.
int Builder::texture(int slot, Size size, Pool pool, bool chain)
{
    // halved, or of a host's own making: any sizes
    const bool regular = !chain || !random.percent(12);
    int count = 1;
    if (chain) {
        if (regular) {
            size.log2Width = std::max(size.log2Width, 1);
            size.log2Height = std::max(size.log2Height, 1);
        }
        const int full = std::min(size.log2Width, size.log2Height) + 1;
        count = regular ? (random.percent(60) ? full : random.between(2, full)) : random.between(2, levelLimit);
    }
    const int base = scene.textureCount;
    scene.textureCount += count;
    for (int i = 0; i < count; ++i) {
        TextureSpec &wanted = scene.textures[static_cast<size_t>(base + i)];
        Size level = size;
        if (i > 0)
            level = regular ? Size{size.log2Width - i, size.log2Height - i} : Size{random.between(0, 5), random.between(0, 5)};
        wanted.log2Width = static_cast<uint8_t>(level.log2Width);
        wanted.log2Height = static_cast<uint8_t>(level.log2Height);
        wanted.pixels = place(slot + i, 4 * wanted.width() * wanted.height(), 16, 64, 64);
        fill(scene.windows[static_cast<size_t>(scene.windowCount - 1)], pool);
    }
    if (chain) {
        TextureSpec &wanted = scene.textures[static_cast<size_t>(base)];
        wanted.levels = static_cast<uint8_t>(count);
        for (int i = 0; i < count; ++i)
            wanted.level[static_cast<size_t>(i)] = static_cast<int8_t>(base + i);
    }
    return base;
}

int Builder::source(int firstSlot)
{
    Pool pool = random.percent(90) ? random.pick({noisePool, noisePool, solidPool, extremePool, alphaPool})
                                   : random.pick({runPool, stripePool});
    if (!small && random.percent(unit ? 30 : 10))
        pool = spritePool;
    if (axes().rectOpt == NINEFOLD_RECT_RUNS)
        pool = guard ? noisePool : random.pick({runPool, runPool, stripePool, noisePool, solidPool});
    return texture(firstSlot, textureSize(), pool, chains);
}

void Builder::textures()
{
    if (textured())
        scene.tex0 = source(tex0Slot);
    const bool needsSecond = axes().multi == NINEFOLD_MULTI_TEXTURE || scene.subject.is("DrawRectGradRule_GEN_RULE_MIPMAP_TEST");
    if (needsSecond || random.percent(30)) // or one that an earlier draw left behind
        scene.tex1 = source(tex1Slot);
    if (axes().rule || random.percent(10)) {
        const Size size = textureSize();
        scene.tex2 = texture(ruleSlot, size, random.pick({noisePool, solidPool, solidPool, extremePool}), false);
        const Window &window = scene.windows[static_cast<size_t>(scene.windowCount - 1)];
        if (random.percent(50)) { // values around the ends of the soft edge
            std::byte *const bytes = world.begin(window.slot) + window.begin;
            const int32_t low = scene.state.ruleThreshold, high = wrapping(int64_t{low} + scene.state.ruleWidth);
            for (uint32_t at = 0; at + 4 <= window.end - window.begin; at += 4) {
                const uint32_t noise = static_cast<uint32_t>(bytes[at]);
                const uint32_t around = static_cast<uint32_t>(noise & 1 ? low : high);
                bytes[at] = static_cast<std::byte>(around + (noise >> 1) % 5 - 2);
            }
        }
    }
    // what an earlier draw of a mip filter left behind
    const bool readsStale = scene.subject.is("DrawRectGradRule_GEN_RULE_TEST");
    if (readsStale || random.percent(50)) {
        const Size size = textureSize(), size1 = textureSize();
        scene.mipTex = texture(stale0Slot, size, noisePool, false);
        scene.mipTex1 = texture(stale1Slot, size1, solidPool, false);
    }
    scene.state.mipFrac = random.between(0, 255);
    scene.state.mipFrac1 = random.between(0, 255);
    scene.state.mipRatio = static_cast<int32_t>(random.word());
}

// Moves textures into memory that the draw writes.
void Builder::overlaps()
{
    std::vector<int> sources;
    for (const int base : {scene.tex0, scene.tex1, scene.tex2})
        if (base >= 0) {
            sources.push_back(base);
            for (int i = 1; i < scene.textures[static_cast<size_t>(base)].levels; ++i)
                sources.push_back(scene.textures[static_cast<size_t>(base)].level[static_cast<size_t>(i)]);
        }
    for (const int stale : {scene.mipTex, scene.mipTex1})
        if (stale >= 0)
            sources.push_back(stale);
    if (sources.empty())
        return;
    const uint32_t share = sources.size() > 3 ? 40 : 60;
    const int certain = sources[random.below(static_cast<uint32_t>(std::min<size_t>(sources.size(), 3)))];
    for (const int index : sources) {
        if (index != certain && !random.percent(share))
            continue;
        TextureSpec &wanted = scene.textures[static_cast<size_t>(index)];
        const int64_t lines = random.percent(70) ? 0 : random.between(-2, static_cast<int32_t>(scene.frameHeight));
        const int64_t distance = random.percent(60) ? random.between(-20, 20) : random.between(-130, 130);
        int64_t offset = scene.pixels.offset + 4 * (lines * scene.frameWidth + distance);
        int slot = frameSlot;
        if (ninefold::marksPlane(axes().shahei)) {
            const uint32_t where = random.below(10);
            if (where < 3) {
                slot = planeSlot;
                offset = (scene.plane.offset & ~3) +
                         4 * random.between(-40, static_cast<int32_t>(scene.frameWidth * scene.frameHeight / 32));
            } else if (where < 5 && axes().shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY) {
                slot = prioritySlot;
                offset = (scene.priority.offset & ~3) +
                         4 * random.between(-40, static_cast<int32_t>(scene.frameWidth * scene.frameHeight / 4));
            }
        }
        const int64_t bytes = 4 * int64_t{wanted.width()} * wanted.height();
        // in front of what is written, where rows of runs reach that move back
        const bool inFront = axes().rectOpt == NINEFOLD_RECT_RUNS && random.percent(50);
        if (inFront) {
            const RenderState &state = scene.state;
            const auto first = [](int64_t a, int64_t b, int32_t origin, int32_t low, int32_t high) {
                return std::clamp(wrapping(std::min(a, b) + origin), low, high);
            };
            const int64_t x = first(state.vertex[0].x, state.vertex[1].x, state.originX, state.clipLeft, state.clipRight);
            const int64_t y = first(state.vertex[0].y, state.vertex[1].y, state.originY, state.clipTop, state.clipBottom);
            const int32_t gap = random.between(0, random.percent(60) ? 20 : 300);
            slot = frameSlot;
            offset = scene.pixels.offset + 4 * (y * scene.frameWidth + x - gap) - bytes;
        }
        for (int i = 0; i < scene.written; ++i) {
            const Window &window = scene.windows[static_cast<size_t>(i)];
            if (window.slot == slot && offset >= window.begin && offset + bytes <= window.end) {
                const Place there{slot, offset};
                if (inFront) { // with its holes, or with those of some rows
                    uint32_t *const texels = world.at<uint32_t>(there);
                    std::memcpy(texels, world.at<uint32_t>(wanted.pixels), static_cast<size_t>(bytes));
                    const uint32_t kept = random.percent(60) ? ~0u : random.word();
                    for (uint32_t k = 0; k < wanted.width() * wanted.height(); ++k)
                        texels[k] |= ~kept >> (k >> wanted.log2Width) & 1;
                }
                wanted.pixels = there;
            }
        }
    }
}

// Puts a texture, all its levels included, at the scene's distance from the frame buffer.
void Builder::atOffset()
{
    std::vector<int> sources;
    for (const int base : {scene.tex0, scene.tex1, scene.tex2})
        if (base >= 0 && base != scene.frameTexture)
            sources.push_back(base);
    if (sources.empty())
        return;
    const Place there{frameSlot, scene.pixels.offset + 4 * offsetOf(scene)};
    TextureSpec &wanted = scene.textures[static_cast<size_t>(sources[random.below(static_cast<uint32_t>(sources.size()))])];
    wanted.pixels = there;
    for (int i = 1; i < wanted.levels; ++i)
        scene.textures[static_cast<size_t>(wanted.level[static_cast<size_t>(i)])].pixels = there;
    const Window &window = scene.windows[0];
    if (there.offset < window.begin || there.offset + 4 * int64_t{wanted.width()} * wanted.height() > window.end)
        std::abort(); // there is room for all
}

void Builder::maps()
{
    if (scene.tex0 < 0)
        return;
    TextureSpec &wanted = scene.textures[static_cast<size_t>(scene.tex0)];
    Texture bound;
    bound.pixels = world.at<uint32_t>(wanted.pixels);
    bound.width = wanted.width();
    bound.height = wanted.height();
    bound.log2Width = wanted.log2Width;
    bound.log2Height = wanted.log2Height;
    if (axes().rectOpt == NINEFOLD_RECT_RUNS) {
        const std::vector<int8_t> map = reference::runLengthMap(bound);
        scene.runs = place(runsSlot, static_cast<uint32_t>(map.size()), 1, 32, 32);
        fill(scene.windows[static_cast<size_t>(scene.windowCount - 1)], solidPool);
        std::memcpy(world.at<std::byte>(scene.runs), map.data(), map.size());
        wanted.runs = true;
    }
    if (axes().rectOpt == NINEFOLD_RECT_PLANE_RUNS) {
        // a bit for each pixel of the frame buffer, whatever the texture's size
        scene.zeros = place(zerosSlot, static_cast<uint32_t>(2 * (endWord - firstWord)), 2, 32, 32);
        scene.zeros.offset -= 2 * firstWord;
        fill(scene.windows[static_cast<size_t>(scene.windowCount - 1)], random.pick({noisePool, runPool, stripePool}));
        wanted.zeros = true;
    }
}

// Whether each pixel is to read the texel of its own column and row: then the distance that is read at is that of the texture.
bool Builder::readsInPlace() { return offsets && random.percent(60); }

// A 16.16 step from a pixel to the next.
int32_t Builder::step()
{
    const int32_t finest = chains ? -1 : -4, coarsest = chains ? 7 : 4;
    const int32_t exponent = random.between(finest, coarsest);
    const int64_t mantissa = random.percent(30) ? 0x10000 : random.between(0x10000, 0x1FFFF);
    const int64_t size = exponent < 0 ? mantissa >> -exponent : mantissa << exponent;
    return static_cast<int32_t>(random.percent(30) ? -size : size);
}

// Positions at the ends of `count` pixels.
Builder::Path Builder::path(int32_t count, int log2Size)
{
    const int32_t size = 1 << log2Size;
    const uint32_t style = random.below(100);
    Path result;
    int64_t from = int64_t{random.between(-2 * size, 2 * size)} * 0x10000;
    from += random.pick({0, 0x8000, 0xFFFF, random.between(0, 0xFFFF)}); // where floors and halves go over
    int64_t to;
    if (style < (chains ? 8u : 25u))
        to = from + int64_t{count} * 0x10000 + (random.percent(30) ? random.between(-300, 300) : 0);
    else if (style < 65)
        to = from + int64_t{count} * step();
    else if (style < 70)
        to = from;
    else if (style < 80) {
        from = random.between(-0x20000, 0x20000);
        to = random.between(-0x20000, 0x20000);
    } else if (style < 88) {
        from = random.between(-0x800000, 0x800000);
        to = random.between(-0x800000, 0x800000);
    } else {
        from = static_cast<int32_t>(random.word());
        to = static_cast<int32_t>(random.word());
        if (random.percent(50)) // from where it may wrap soon
            to = from + int64_t{count} * step();
    }
    if (!small && random.percent(unit ? 25 : 8)) { // ends at the edge of the texture, or next to it
        from = int64_t{size - count + random.between(-1, 1)} * 0x10000;
        to = int64_t{size} * 0x10000;
    }
    result = {wrapping(from), wrapping(to)};
    if (forward) // and far enough from 0 that no step, rounded down for a level, leads below it
        result = {(result.from & 0x3FFFFFFF) | 0x08000000, (result.to & 0x3FFFFFFF) | 0x08000000};
    return result;
}

void Builder::positions(TexCoord (&uv)[4], int textureIndex)
{
    const RenderState &state = scene.state;
    const Vertex *const vertex = state.vertex;
    if (readsInPlace()) {
        const auto position = [this](int32_t pixel) {
            const int32_t result = wrapping(int64_t{pixel} * 0x10000);
            return forward ? (result & 0x3FFFFFFF) | 0x08000000 : result;
        };
        for (int i = 0; i < 4; ++i) {
            // the corners of a rectangle follow from two of them
            const Vertex &forU = axes().shape == NINEFOLD_SHAPE_TRIANGLE ? vertex[i] : vertex[i & 1];
            const Vertex &forV = axes().shape == NINEFOLD_SHAPE_TRIANGLE   ? vertex[i]
                                 : axes().rectOpt == NINEFOLD_RECT_CORNERS ? vertex[i >> 1]
                                                                           : vertex[i & 1];
            uv[i] = {position(forU.x + state.originX), position(forV.y + state.originY)};
        }
        if (axes().shape == NINEFOLD_SHAPE_RECTANGLE &&
            (axes().rectOpt == NINEFOLD_RECT_UNIT || axes().rectOpt >= NINEFOLD_RECT_RUNS))
            uv[0] = {std::min(uv[0].u, uv[1].u), std::min(uv[0].v, uv[1].v)};
        return;
    }
    const Size size = textureIndex < 0 ? Size{4, 4}
                                       : Size{scene.textures[static_cast<size_t>(textureIndex)].log2Width,
                                              scene.textures[static_cast<size_t>(textureIndex)].log2Height};
    if (axes().shape != NINEFOLD_SHAPE_TRIANGLE) {
        const int32_t width = distanceOf(vertex[1].x, vertex[0].x), height = distanceOf(vertex[1].y, vertex[0].y);
        const Path across = path(width, size.log2Width), down = path(height, size.log2Height);
        uv[0] = {across.from, down.from};
        uv[1] = {across.to, down.to};
        for (int i = 2; i < 4; ++i)
            uv[i] = {path(width, size.log2Width).to, path(height, size.log2Height).to};
        const bool corners = axes().rectOpt == NINEFOLD_RECT_CORNERS;
        if (corners && random.percent(70)) { // a skewed picture, perhaps with one corner moved
            const Path skewU = path(height, size.log2Width), skewV = path(width, size.log2Height);
            const auto along = [this](int32_t from, Path by) {
                const int32_t sum = wrapping(int64_t{from} + by.to - by.from);
                return forward ? (sum & 0x3FFFFFFF) | 0x08000000 : sum;
            };
            uv[1] = {across.to, along(down.from, skewV)};
            uv[2] = {along(across.from, skewU), down.to};
            uv[3] = {along(across.to, skewU), along(down.to, skewV)};
            if (random.percent(30))
                uv[3] = uv[random.below(3)];
        }
        return;
    }
    const uint32_t style = random.below(100);
    const int32_t across[2] = {step(), random.percent(50) ? 0 : step()};
    const int32_t down[2] = {random.percent(50) ? 0 : step(), step()};
    const Path start{path(8, size.log2Width).from, path(8, size.log2Height).from};
    for (int i = 0; i < 4; ++i) {
        if (style < 75) { // a picture laid over the triangle
            const int64_t x = int64_t{vertex[i].x} - vertex[0].x, y = int64_t{vertex[i].y} - vertex[0].y;
            uv[i] = {wrapping(start.from + x * across[0] + y * across[1]), wrapping(start.to + x * down[0] + y * down[1])};
        } else {
            uv[i] = {path(8, size.log2Width).to, path(8, size.log2Height).to};
        }
    }
    if (axes().pers && !random.percent(15)) {
        // perspective serves positions from 0 up
        const int bits = random.percent(70) ? 24 : random.between(16, 31);
        for (TexCoord &corner : uv) {
            corner.u &= wrapping((int64_t{1} << bits) - 1);
            corner.v &= wrapping((int64_t{1} << bits) - 1);
        }
    }
}

// Steps with which the last position of a vector is next to the first.
void Builder::lap(TexCoord (&uv)[4])
{
    const Vertex *const vertex = scene.state.vertex;
    const int32_t lanes = random.pick({4, 8, 16});
    const int64_t step = (int64_t{1} << 32) / (lanes - 1) * random.between(1, lanes - 2) + random.between(-0x8000, 0x8000);
    uv[1].u = wrapping(uv[0].u + step * wrapping(int64_t{vertex[1].x} - vertex[0].x));
}

void Builder::lineTable(Place &table, int slot, int textureIndex, bool skips)
{
    const RenderState &state = scene.state;
    const int32_t width = distanceOf(state.vertex[1].x, state.vertex[0].x),
                  height = distanceOf(state.vertex[1].y, state.vertex[0].y);
    const TextureSpec &wanted = scene.textures[static_cast<size_t>(textureIndex)];
    table = place(slot, static_cast<uint32_t>(height) * sizeof(LineTableRecord), 4, 64, 64);
    fill(scene.windows[static_cast<size_t>(scene.windowCount - 1)], solidPool);
    LineTableRecord *const records = world.at<LineTableRecord>(table);
    const uint32_t skipped = !skips ? 3 : random.pick<uint32_t>({0, 0, 0, 20, 20, 20, 50, 90});
    const bool alike = random.percent(40), inPlace = readsInPlace();
    const int32_t left = std::min(state.vertex[0].x, state.vertex[1].x) + state.originX;
    const int32_t top = std::min(state.vertex[0].y, state.vertex[1].y) + state.originY;
    Path u = path(width, wanted.log2Width), v = path(width, wanted.log2Height);
    for (int32_t line = 0; line < height; ++line) {
        if (!alike || random.percent(5)) {
            u = path(width, wanted.log2Width);
            v = path(width, wanted.log2Height);
        }
        if (inPlace) {
            u = {wrapping(left * int64_t{0x10000}), wrapping((left + int64_t{width}) * 0x10000)};
            v.from = v.to = wrapping((top + int64_t{line}) * 0x10000);
            if (forward)
                for (int32_t *position : {&u.from, &u.to, &v.from, &v.to})
                    *position = (*position & 0x3FFFFFFF) | 0x08000000;
        }
        records[line] = {u.from, v.from, u.to, v.to};
        if (random.percent(skipped))
            records[line].startU = NINEFOLD_SKIP_ROW;
        if (random.percent(30) && !forward)
            v = {wrapping(int64_t{v.from} + 0x10000), wrapping(int64_t{v.to} + 0x10000)};
    }
}

} // namespace support
