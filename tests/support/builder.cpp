// What a scene draws into, and everything that is a number.
#include "builder.h"

#include <algorithm>
#include <cstring>

#include "host.h"
#include "reference/reference.h"

namespace support {

Place Builder::place(int slot, uint32_t bytes, uint32_t align, uint32_t roomBefore, uint32_t roomAfter)
{
    Place result{slot, 0};
    if (guard) {
        if (atEnd)
            result.offset = (slotBytes(slot) - bytes) & ~(align - 1);
        addWindow(slot, std::max<int64_t>(0, result.offset - 256),
                  std::min<int64_t>(slotBytes(slot), result.offset + bytes + 256));
    } else {
        result.offset = (roomBefore + align - 1) / align * align + align * random.below(8);
        addWindow(slot, result.offset - roomBefore, result.offset + bytes + roomAfter);
    }
    return result;
}

void Builder::addWindow(int slot, int64_t begin, int64_t end)
{
    scene.windows[static_cast<size_t>(scene.windowCount++)] = {slot, static_cast<uint32_t>(begin), static_cast<uint32_t>(end)};
}

void Builder::fill(const Window &window, Pool pool)
{
    std::byte *next = world.begin(window.slot) + window.begin;
    const std::byte *const bytes = poolBytes(pool);
    uint32_t from = 4 * random.below(poolWords) + (window.begin & 3);
    for (uint32_t left = window.end - window.begin; left > 0;) {
        from &= 4 * poolWords - 1;
        const uint32_t part = std::min(left, 4 * poolWords - from);
        std::memcpy(next, bytes + from, part);
        next += part;
        left -= part;
        from += part;
    }
}

// A clip range within 0 to size.
void Builder::clipRange(int32_t size, int32_t &low, int32_t &high)
{
    low = 0;
    high = size;
    const uint32_t style = random.below(100);
    if (large && style < 60) { // a few pixels of many, or one
        const int32_t length = style < 10 ? 1 : std::min(size, random.pick({2, 15, 16, 17, 64, 100, 300}));
        low = random.pick({0, size - length, random.between(0, size - length)});
        high = low + length;
        return;
    }
    if (large && style < 80)
        return;
    if (style < 50)
        return;
    if (style < 90) {
        const int32_t trim = std::min(size / 3, 20);
        low = random.between(0, trim);
        high = size - random.between(0, trim);
    } else {
        low = random.between(0, size - 1);
        high = random.percent(10) ? low + 1 : random.between(low, size);
    }
    if (high == low && !random.percent(5))
        low < size ? ++high : --low;
}

void Builder::frame()
{
    RenderState &state = scene.state;
    int log2Width, log2Height;
    if (large) {
        log2Width = random.between(4, 12);
        log2Height = random.between(4, 12);
    } else if (big) {
        log2Width = random.pick({9, 10, 11, 11});
        log2Height = random.between(1, 15 - log2Width);
    } else {
        log2Width = random.pick({4, 4, 4, 5, 5, 5, 6, 6, 6, 7, 7, 8});
        if (!writesPlanes && random.percent(10))
            log2Width = random.between(0, 3);
        log2Height = random.percent(10) ? 0 : random.between(2, small ? 4 : std::min(6, 12 - log2Width));
        if (small)
            log2Width = std::min(log2Width, 7);
        if (axes().rectOpt == NINEFOLD_RECT_RUNS && !guard && random.percent(50)) { // room to move back in
            log2Width = random.between(8, 9);
            log2Height = random.between(0, 2);
        }
    }
    scene.frameWidth = 1u << log2Width;
    scene.frameHeight = 1u << log2Height;
    state.dstShift = static_cast<uint32_t>(log2Width);
    state.dstPitch = scene.frameWidth;
    state.dstHeight = scene.frameHeight;
    clipRange(static_cast<int32_t>(scene.frameWidth), state.clipLeft, state.clipRight);
    clipRange(static_cast<int32_t>(scene.frameHeight), state.clipTop, state.clipBottom);

    const int64_t pitch = scene.frameWidth;
    int64_t firstPixel = 0, endPixel = pitch * scene.frameHeight;
    tight = guard && log2Width >= 2 && random.percent(60) && !scene.subject.fillsPlanes();
    if (tight) {
        // pixels stay aligned as a texture's are
        state.clipLeft &= ~3;
        if ((state.clipRight & ~3) > state.clipLeft)
            state.clipRight &= ~3;
        tight = state.clipRight > state.clipLeft && state.clipBottom > state.clipTop;
    }
    if (tight) {
        firstPixel = state.clipTop * pitch + state.clipLeft;
        endPixel = (state.clipBottom - 1) * pitch + state.clipRight;
    }
    const uint32_t pixels = static_cast<uint32_t>(endPixel - firstPixel);
    // a run of 128 zeros moves back 128 columns, as often as the row is long
    const uint32_t before = overlap ? 0x8800 : axes().rectOpt == NINEFOLD_RECT_RUNS ? 4 * (pitch + 160) : 4 * (pitch + 64);
    const uint32_t after = overlap ? 0x8800 : 4 * 64;

    scene.pixels = place(frameSlot, 4 * pixels, 16, before, after);
    scene.pixels.offset -= 4 * firstPixel;
    const bool hasPlane =
        axes().shahei == NINEFOLD_SHAHEI_PLANE || axes().shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY || writesPlanes;
    firstWord = firstPixel >> 4;
    endWord = (endPixel + 15) >> 4;
    if (hasPlane || (log2Width >= 4 && random.percent(30))) {
        scene.plane =
            place(planeSlot, static_cast<uint32_t>(2 * (endWord - firstWord)), 2, overlap ? 0x4400 : 64, overlap ? 0x4400 : 64);
        scene.plane.offset -= 2 * firstWord;
    }
    if (readsPriority || axes().shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY || writesPlanes || random.percent(30)) {
        scene.priority = place(prioritySlot, pixels, 1, overlap ? 0x8800 : before / 4, overlap ? 0x8800 : 64);
        scene.priority.offset -= firstPixel;
    }
    scene.written = scene.windowCount;

    scene.frameTexture = scene.textureCount++;
    TextureSpec &wanted = scene.textures[static_cast<size_t>(scene.frameTexture)];
    wanted.pixels = scene.pixels;
    wanted.log2Width = static_cast<uint8_t>(log2Width);
    wanted.log2Height = static_cast<uint8_t>(log2Height);
}

void Builder::planes()
{
    RenderState &state = scene.state;
    state.zRef = random.percent(60)   ? random.below(160)
                 : random.percent(50) ? random.word()
                                      : random.pick<uint32_t>({0, 1, 127, 128, 254, 255});
    if (scene.subject.is("DrawZbufferPolygon"))
        state.zRef &= 255;
    for (int i = 0; i < scene.written; ++i) {
        const Window &window = scene.windows[static_cast<size_t>(i)];
        std::byte *const bytes = world.begin(window.slot) + window.begin;
        const uint32_t size = window.end - window.begin;
        if (window.slot == frameSlot) {
            fill(window, random.pick({noisePool, solidPool, extremePool, alphaPool}));
        } else if (window.slot == planeSlot) {
            fill(window, random.pick({noisePool, noisePool, solidPool, runPool}));
            const uint32_t style = random.below(10) < 5 ? 0 : random.below(5);
            if (style < 2) { // free, or taken, but for some words
                Random words(random.bits());
                for (uint32_t at = 0; at < size; at += 2)
                    if (words.percent(75))
                        std::memset(bytes + at, style == 0 ? 0 : 255, std::min<uint32_t>(2, size - at));
            }
        } else {
            fill(window, random.pick({noisePool, solidPool, extremePool}));
            if (random.percent(60)) { // around the reference value
                const uint8_t around = static_cast<uint8_t>(state.zRef);
                for (uint32_t at = 0; at < size; ++at)
                    bytes[at] = static_cast<std::byte>(around + (static_cast<uint8_t>(bytes[at]) >> 5) % 3 - 1);
            }
        }
    }

    const uint32_t style = random.below(10);
    for (uint16_t &row : state.drawMask) {
        const uint32_t noise = random.word();
        row = static_cast<uint16_t>(style < 3 ? noise : style < 7 ? noise & noise >> 16 : style == 7 ? 0x5555 << (noise & 1) : 0);
    }
    if (style == 9) {
        const std::array<uint16_t, 16> rows =
            reference::stipple(random.percent(90) ? random.between(60, 261) : random.between(0, 60));
        std::copy(rows.begin(), rows.end(), state.drawMask);
    }
}

void Builder::shifts()
{
    const uint32_t share = axes().shape == NINEFOLD_SHAPE_TRIANGLE ? 40 : 15;
    if (!random.percent(share))
        return;
    scene.shifts = place(shiftsSlot, scene.frameHeight * 4, 4, 64, 64);
    fill(scene.windows[static_cast<size_t>(scene.windowCount - 1)], solidPool);
    int32_t *const table = world.at<int32_t>(scene.shifts);
    const int32_t far = random.pick({0, 1, 3, 20, 20, 300, 5000});
    for (uint32_t line = 0; line < scene.frameHeight; ++line)
        table[line] = random.between(-far, far);
}

void Builder::colours()
{
    RenderState &state = scene.state;
    const uint32_t style = random.below(8);
    for (uint32_t &colour : state.color) {
        colour = random.word();
        if (style == 0)
            colour = random.pick<uint32_t>({0, 0xFFFFFFFF, 0xFF000000, 0x00FFFFFF});
        else if (style == 1)
            colour = state.color[0];
        else if (style == 2)
            colour |= 0xFF000000;
        else if (style == 3)
            colour &= 0xFFFFFF;
    }
}

void Builder::factors()
{
    RenderState &state = scene.state;
    const auto factor = [this](uint32_t top) {
        const uint32_t style = random.below(100);
        if (style < 60)
            return random.below(top + 1);
        if (style < 80)
            return random.pick<uint32_t>({0, 1, 127, 128, 254, 255, 256});
        if (style < 92)
            return random.pick<uint32_t>({257, 258, 300, 511, 512, 0x7FFF, 0x8000, 0xFFFF, 0x10000, 0x10001});
        return random.word();
    };
    state.blendAlpha = factor(255);
    state.blendAlphaRgb = factor(255);
    state.prescale = factor(256);
    state.prescaleMulti = factor(256);
    state.writeMask =
        random.percent(60) ? random.word() : random.pick<uint32_t>({0, 0xFFFFFFFF, 0x00FFFFFF, 0xFF000000, 0xFF00FF});
    for (int32_t *size : {&state.mosaicSize, &state.mosaicSize1})
        *size = random.percent(70)   ? random.between(1, 9)
                : random.percent(80) ? random.pick({10, 16, 17, 32, 63, 100, 255, 256})
                                     : random.pick({1000, 4096, 0x7FFF, 0x8000, 0x10001, 0x7FFFFFFF});

    const auto anyOperator = [this] {
        const uint32_t style = random.below(100);
        if (style < 12)
            return static_cast<int>(hostMulti);
        if (style < 18)
            return static_cast<int>(hostBlend);
        return random.between(libraryOperators, operatorCount - 1);
    };
    scene.multiOperator =
        axes().multi != NINEFOLD_MULTI_NONE
            ? (random.percent(80) ? random.between(0, 9) == 0 ? hostMulti : random.between(multiOperators, blendOperators - 1)
                                  : anyOperator())
            : random.pick<int>({nullOperator, hostMulti});
    scene.blendOperator = axes().blend == NINEFOLD_BLEND_CUSTOM
                              ? (random.percent(50)   ? random.between(blendOperators, operatorCount - 1)
                                 : random.percent(50) ? static_cast<int>(hostBlend)
                                                      : anyOperator())
                              : random.pick<int>({nullOperator, hostBlend});
}

void Builder::rule()
{
    RenderState &state = scene.state;
    state.ruleThreshold = random.percent(70)   ? random.between(-5, 120)
                          : random.percent(90) ? random.pick({-1, 0, 1, 100, 127, 128, 200, 253, 254, 255})
                                               : random.between(-1000000, 1000000);
    state.ruleWidth = random.percent(50)   ? random.between(2, 255)
                      : random.percent(80) ? random.pick({-1000, -2, -1, 0, 1, 2, 3, 15, 16, 17, 255, 256, 257})
                                           : random.between(256, 2000000);
    // From this width on the shifted difference may reach bit 31; the quotient steps within the values. Golden sums stay as they are.
    if (!small && random.percent(4)) {
        state.ruleThreshold = random.between(0, 255) - (random.between(1, 255) << 15);
        state.ruleWidth = 0x800000;
    }
    state.ruleCurve = random.pick({0, 1, 2, 1, 2, 3, -1, wrapping(random.word())});
}

void Builder::modes()
{
    RenderState &state = scene.state;
    for (int32_t *mode :
         {&state.prescaleMode, &state.prescaleMultiMode, &state.filterMode, &state.rectOptMode, &state.shaheiMode,
          &state.blendMode, &state.blendModeMulti, &state.multiMode, &state.shapeMode, &state.ruleAlphaMode, &state.persMode})
        *mode = random.percent(90) ? random.between(0, 12) : wrapping(random.word());
    const std::vector<Subject> &all = catalogueSubjects();
    scene.draws = random.percent(6) ? 2 : 1;
    scene.searchedBefore = all[random.below(static_cast<uint32_t>(all.size()))].code;
}

// Operators that look at the picture. Chosen last, so that no scene without them changes; sums are made of scenes of the library
// alone, which has no one to say where a call looks.
void Builder::watchers()
{
    if (small || large)
        return;
    if (axes().multi != NINEFOLD_MULTI_NONE && random.percent(8))
        scene.multiOperator = watchingMulti;
    if (axes().blend == NINEFOLD_BLEND_CUSTOM && random.percent(25))
        scene.blendOperator = watchingBlend;
}

void Builder::build()
{
    const Kind kind = scene.id.kind;
    overlap = kind == Kind::overlap || kind == Kind::offset;
    guard = kind == Kind::guard;
    small = kind == Kind::small;
    offsets = kind == Kind::offset;
    large = kind == Kind::large;
    big = kind == Kind::big || (!small && !offsets && !large && random.percent(overlap || guard ? 4 : 8));
    atEnd = (scene.id.number & 1) == 0;
    scene.axes = scene.subject.axes();
    const bool firstTexel = axes().filter == NINEFOLD_FILTER_MIP_BILINEAR && !ninefold::marksPlane(axes().shahei);
    chains = ninefold::readsLevels(axes().filter);
    forward = firstTexel && axes().shape == NINEFOLD_SHAPE_RECTANGLE &&
              (axes().rectOpt == NINEFOLD_RECT_CORNERS || axes().rectOpt == NINEFOLD_RECT_TABLE);
    writesPlanes = scene.subject.fillsPlanes() || ninefold::marksPlane(axes().shahei);
    readsPriority = ninefold::testsPriority(axes().shahei);

    frame();
    planes();
    do
        primitive();
    while (!visible() && !random.percent(15));
    if (large)
        farOut();
    unit = axes().shape == NINEFOLD_SHAPE_RECTANGLE && axes().rectOpt == NINEFOLD_RECT_UNIT;
    laps = !small && !offsets && !forward && axes().shape == NINEFOLD_SHAPE_RECTANGLE &&
           axes().rectOpt == NINEFOLD_RECT_STRETCH && random.percent(6);
    if (laps)
        wrapWidth();
    origin();
    rule();
    textures();
    if (offsets)
        atOffset();
    else if (overlap)
        overlaps();
    maps();
    positions(scene.state.uv0, scene.tex0);
    positions(scene.state.uv1, scene.tex1);
    if (laps) {
        lap(scene.state.uv0);
        lap(scene.state.uv1);
    }
    const bool wrapsRule = forward;
    forward = false;
    positions(scene.state.uv2, scene.tex2);
    forward = wrapsRule;
    if (axes().rectOpt == NINEFOLD_RECT_TABLE) {
        lineTable(scene.lines0, lines0Slot, scene.tex0, true);
        if (axes().multi == NINEFOLD_MULTI_TEXTURE)
            lineTable(scene.lines1, lines1Slot, scene.tex1, false);
    }
    shifts();
    colours();
    factors();
    modes();
    watchers();
}

} // namespace support
