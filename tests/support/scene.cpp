#include "scene.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "host.h"
#include "random.h"
#include "reference/reference.h"

namespace support {

const char *kindName(Kind kind)
{
    static constexpr const char *names[kindCount] = {"plain", "big", "small", "overlap", "guard"};
    return names[static_cast<int>(kind)];
}

namespace {

/* Pools of pixels, made once, from which buffers are filled. */
enum Pool { noisePool, solidPool, extremePool, runPool, alphaPool, stripePool, poolCount };

constexpr uint32_t poolWords = 0x10000;

std::vector<uint32_t> makePool(int pool)
{
    Random random(0x9001 + static_cast<uint64_t>(pool));
    std::vector<uint32_t> words(poolWords);
    uint32_t left = 0;
    bool empty = false;
    uint32_t colour = 0;
    for (uint32_t &word : words) {
        const uint32_t noise = random.word();
        switch (pool) {
        case noisePool: word = random.percent(30) ? 0 : noise; break;
        case solidPool: word = noise | (noise == 0); break;
        case extremePool: {
            static constexpr uint8_t edges[8] = {0x00, 0x01, 0x02, 0x7F, 0x80, 0x81, 0xFE, 0xFF};
            word = 0;
            for (int shift = 0; shift < 32; shift += 8)
                word |= static_cast<uint32_t>(edges[noise >> shift & 7]) << shift;
            if (random.percent(20))
                word = 0;
            break;
        }
        case alphaPool:
            word = random.percent(10)   ? 0
                   : random.percent(40) ? noise | 0xFF000000
                   : random.percent(50) ? noise & 0xFFFFFF
                                        : noise;
            break;
        default: /* runs, of noise or of one colour */
            if (left == 0) {
                left = random.pick<uint32_t>(
                    {1, 2, 3, 5, 8, 15, 16, 17, 31, 32, 33, 63, 64, 65, 126, 127, 128, 129, 255, 256, 257, 300});
                empty = !empty;
                colour = noise | 1;
            }
            --left;
            word = empty ? 0 : pool == runPool ? noise | 1 : colour;
            break;
        }
    }
    return words;
}

const std::byte *poolBytes(int pool)
{
    static const std::vector<uint32_t> pools[poolCount] = {makePool(0), makePool(1), makePool(2),
                                                           makePool(3), makePool(4), makePool(5)};
    return reinterpret_cast<const std::byte *>(pools[pool].data());
}

int32_t wrapping(int64_t value)
{
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value)));
}

/* Sums of scenes are checked in, so no expression may draw two random numbers in an order that a compiler is free to choose. */
class Builder {
public:
    Builder(Scene &sceneToFill, World &worldToFill, uint64_t seed) : scene(sceneToFill), world(worldToFill), random(seed) {}
    void build();

private:
    Scene &scene;
    World &world;
    Random random;

    bool big = false, small = false, overlap = false, guard = false;
    bool atEnd = false; /* of the slot, with guard */
    bool tight =
        false; /* with guard: there is nothing but what lies between the first and the last pixel of the clip rectangle */
    bool chains = false; /* levels are walked */
    bool forward = false; /* texture positions must not be negative */
    bool writesPlanes = false, readsPriority = false;
    int64_t firstWord = 0, endWord = 0; /* of the Shahei plane */

    ninefold::Axes &axes() { return scene.axes; }
    bool textured() { return axes().filter != 6 && axes().filter != 7 && !scene.subject.fillsPlanes(); }

    /* memory */
    Place place(int slot, uint32_t bytes, uint32_t align, uint32_t roomBefore, uint32_t roomAfter);
    void addWindow(int slot, int64_t begin, int64_t end);
    void fill(const Window &window, int pool);

    /* what is drawn into */
    void frame();
    void clipRange(int32_t size, int32_t &low, int32_t &high);
    void planes();

    /* where */
    void primitive();
    bool visible() const;
    void rectangle();
    void range(int32_t low, int32_t high, int32_t size, int32_t &from, int32_t &to);
    void line();
    void triangle();
    void origin();

    /* textures and positions in them */
    struct Size {
        int log2Width, log2Height;
    };
    Size textureSize();
    int texture(int slot, Size size, int pool, bool chain);
    int source(int firstSlot);
    void textures();
    void overlaps();
    void maps();
    struct Path {
        int32_t from, to;
    };
    int32_t step();
    Path path(int32_t count, int log2Size);
    void positions(TexCoord (&uv)[4], int texture);
    void lineTable(Place &table, int slot, int texture, bool skips);
    void shifts();

    /* the rest */
    void colours();
    void factors();
    void rule();
    void modes();
};

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

void Builder::fill(const Window &window, int pool)
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

/* A clip range within 0 to size. */
void Builder::clipRange(int32_t size, int32_t &low, int32_t &high)
{
    low = 0;
    high = size;
    const uint32_t style = random.below(100);
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
    if (big) {
        log2Width = random.pick({9, 10, 11, 11});
        log2Height = random.between(1, 15 - log2Width);
    } else {
        log2Width = random.pick({4, 4, 4, 5, 5, 5, 6, 6, 6, 7, 7, 8});
        if (!writesPlanes && random.percent(10))
            log2Width = random.between(0, 3);
        log2Height = random.percent(10) ? 0 : random.between(2, small ? 4 : std::min(6, 12 - log2Width));
        if (small)
            log2Width = std::min(log2Width, 7);
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
        /* pixels stay aligned as a texture's are */
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
    /* a run of 128 zeros moves back 128 columns, as often as the row is long */
    const uint32_t before = overlap ? 0x8800 : axes().rectOpt == 5 ? 4 * (pitch + 160) : 4 * (pitch + 64);
    const uint32_t after = overlap ? 0x8800 : 4 * 64;

    scene.pixels = place(frameSlot, 4 * pixels, 16, before, after);
    scene.pixels.offset -= 4 * firstPixel;
    const bool hasPlane = axes().shahei == 1 || axes().shahei == 2 || writesPlanes;
    firstWord = firstPixel >> 4;
    endWord = (endPixel + 15) >> 4;
    if (hasPlane || (log2Width >= 4 && random.percent(30))) {
        scene.plane =
            place(planeSlot, static_cast<uint32_t>(2 * (endWord - firstWord)), 2, overlap ? 0x4400 : 64, overlap ? 0x4400 : 64);
        scene.plane.offset -= 2 * firstWord;
    }
    if (readsPriority || axes().shahei == 2 || writesPlanes || random.percent(30)) {
        scene.priority = place(prioritySlot, pixels, 1, overlap ? 0x8800 : before / 4, overlap ? 0x8800 : 64);
        scene.priority.offset -= firstPixel;
    }
    scene.written = scene.windowCount;

    scene.frameTexture = scene.textureCount++;
    TextureSpec &spec = scene.textures[static_cast<size_t>(scene.frameTexture)];
    spec.pixels = scene.pixels;
    spec.log2Width = static_cast<uint8_t>(log2Width);
    spec.log2Height = static_cast<uint8_t>(log2Height);
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
            if (style < 2) { /* free, or taken, but for some words */
                Random words(random.bits());
                for (uint32_t at = 0; at < size; at += 2)
                    if (words.percent(75))
                        std::memset(bytes + at, style == 0 ? 0 : 255, std::min<uint32_t>(2, size - at));
            }
        } else {
            fill(window, random.pick({noisePool, solidPool, extremePool}));
            if (random.percent(60)) { /* around the reference value */
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

/* Lengths around the sizes of vectors, plane words and chunks. */
constexpr int32_t lengths[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,  16,  17,  18, 23,
                               24, 25, 31, 32, 33, 47, 48, 49, 63, 64, 65, 79, 80, 81, 127, 128, 129, 200};

/* Ends of a primitive against the clip range low to high: inside, over either end or both, outside, touching, of no size. */
void Builder::range(int32_t low, int32_t high, int32_t size, int32_t &from, int32_t &to)
{
    const int32_t room = high - low;
    const uint32_t style = random.below(100);
    if (style < 60 && size <= room)
        from = random.between(low, high - size);
    else if (style < 70)
        from = low - random.between(1, size / 2 + 1);
    else if (style < 80)
        from = high - random.between(0, size);
    else if (style < 95)
        from = low - random.between(0, 20);
    else if (style < 96)
        from = high; /* touches */
    else if (style < 97)
        from = low - size;
    else
        from = random.between(low - size, high);
    to = from + size;
    if (style >= 80 && style < 95) /* wider than the clip rectangle */
        to = std::max(to, high + random.between(0, 20));
    if (random.percent(1))
        to = from;
}

void Builder::rectangle()
{
    RenderState &state = scene.state;
    const auto length = [this](int32_t room) {
        if (big && random.percent(70))
            return random.between(1, room + 40);
        if (random.percent(75))
            return std::min(random.pick({lengths[random.below(std::size(lengths))]}), 3 * room + 3);
        return random.between(1, room + 8);
    };
    const int32_t columns = state.clipRight - state.clipLeft, lines = state.clipBottom - state.clipTop;
    int32_t left, right, top, bottom;
    range(state.clipLeft, state.clipRight, length(columns), left, right);
    range(state.clipTop, state.clipBottom, random.percent(60) ? random.between(std::min(lines, 4), lines + 3) : length(lines),
          top, bottom);
    if (random.percent(2) && !forward) { /* far out */
        left -= random.between(0, 70000);
        right += random.between(0, 70000);
        if (axes().rectOpt != 3) {
            top -= random.between(0, 70000);
            bottom += random.between(0, 70000);
        }
    }
    if (random.percent(40))
        std::swap(left, right);
    if (random.percent(40))
        std::swap(top, bottom);
    state.vertex[0].x = left;
    state.vertex[0].y = top;
    state.vertex[1].x = right;
    state.vertex[1].y = bottom;
    for (int i = 2; i < 4; ++i)
        state.vertex[i] = {random.between(-100, 100), random.between(-100, 100), 0};
    for (Vertex &vertex : state.vertex)
        vertex.z = static_cast<int32_t>(random.word());
}

void Builder::line()
{
    RenderState &state = scene.state;
    const int32_t width = state.clipRight - state.clipLeft, height = state.clipBottom - state.clipTop;
    const auto somewhere = [this](int32_t low, int32_t size) {
        const uint32_t style = random.below(100);
        if (style < 55)
            return low + random.between(0, std::max(0, size - 1));
        if (style < 85)
            return low + random.between(-size / 2 - 3, size + size / 2 + 3);
        if (style < 95)
            return random.pick({low - 1, low, low + size - 1, low + size});
        return low + random.between(-5000, 5000);
    };
    Vertex &from = state.vertex[0], &to = state.vertex[1];
    from = {somewhere(state.clipLeft, width), somewhere(state.clipTop, height), 0};
    to = {somewhere(state.clipLeft, width), somewhere(state.clipTop, height), 0};
    const uint32_t style = random.below(12);
    if (style == 0)
        to.x = from.x;
    if (style == 1)
        to.y = from.y;
    if (style == 2) { /* diagonal, or next to it */
        const int32_t direction = random.pick({-1, 1});
        to.y = from.y + direction * (to.x - from.x) + random.between(-1, 1);
    }
    if (style == 3 && random.percent(20))
        to = from;
    for (int i = 2; i < 4; ++i)
        state.vertex[i] = {random.between(-100, 100), random.between(-100, 100), 0};
}

void Builder::triangle()
{
    RenderState &state = scene.state;
    const int32_t width = state.clipRight - state.clipLeft, height = state.clipBottom - state.clipTop;
    const int32_t reachX = random.pick({8, width, width + 4, 2 * width + 20, 3 * width});
    const int32_t reachY = random.pick({5, height, height + 3, 2 * height + 10, 3 * height});
    const int32_t centreX = state.clipLeft + width / 2 + random.between(-width, width) / 4;
    const int32_t centreY = state.clipTop + height / 2 + random.between(-height, height) / 4;
    Vertex *const vertex = state.vertex;
    for (int i = 0; i < 4; ++i) {
        vertex[i].x = centreX + random.between(-reachX, reachX) / 2;
        vertex[i].y = centreY + random.between(-reachY, reachY) / 2;
    }
    if (random.percent(50)) { /* one corner left, one right, one below or above: of some area */
        vertex[0].x = centreX - random.between(1, reachX) / 2 - 1;
        vertex[1].x = centreX + random.between(1, reachX) / 2 + 1;
        vertex[2].y = centreY + random.pick({-1, 1}) * (reachY / 2 + 2);
    }
    switch (random.below(20)) {
    case 0: /* flat top or bottom, as the third falls */
    case 1: vertex[1].y = vertex[0].y; break;
    case 2: /* upright edge */ vertex[1].x = vertex[0].x; break;
    case 3: { /* on one line, or next to it */
        const int32_t dx = vertex[1].x - vertex[0].x, dy = vertex[1].y - vertex[0].y;
        const int32_t times = random.pick({-1, 2, 3});
        vertex[2].x = vertex[0].x + times * dx + random.between(-1, 1);
        vertex[2].y = vertex[0].y + times * dy;
        break;
    }
    case 4: /* one row, or one point */
        if (random.percent(20))
            vertex[1].y = vertex[2].y = vertex[0].y;
        else
            vertex[1].y = vertex[0].y + 1, vertex[2].y = vertex[0].y + random.between(0, 1);
        break;
    case 5: /* the middle vertex at an edge of the clip rectangle */
        vertex[0].y = state.clipTop - random.between(1, 20);
        vertex[1].y = random.pick(
            {state.clipTop - 1, state.clipTop, state.clipTop + 1, state.clipBottom - 1, state.clipBottom, state.clipBottom + 1});
        vertex[2].y = state.clipBottom + random.between(-2, 20);
        break;
    case 6: /* touches from outside */
        vertex[0].y = random.pick({state.clipTop, state.clipBottom});
        vertex[1].y = vertex[0].y + random.between(-10, 10);
        break;
    case 7: /* one far away */
        vertex[0].x += random.between(-2000, 2000);
        vertex[0].y += random.between(-2000, 2000);
        if (random.percent(10))
            vertex[1].x += random.between(-90000, 90000);
        break;
    case 8: /* covers all */
        vertex[0] = {state.clipLeft - width - 4, state.clipTop - 3, 0};
        vertex[1] = {state.clipRight + width + 4, state.clipTop - 3, 0};
        vertex[2] = {state.clipLeft + width / 2, state.clipBottom + height + 9, 0};
        break;
    default: break;
    }
    const uint32_t order = random.below(6);
    if (order & 1)
        std::swap(vertex[0], vertex[1]);
    if (order >= 4)
        std::swap(vertex[1], vertex[2]);
    else if (order >= 2)
        std::swap(vertex[0], vertex[2]);

    const uint32_t depths = random.below(5);
    const int32_t near = random.between(1, 1000);
    for (int i = 0; i < 4; ++i)
        switch (depths) {
        case 0: vertex[i].z = near; break;
        case 1: vertex[i].z = random.between(1, 8); break;
        case 2: vertex[i].z = random.between(1, 0xFFFF); break;
        case 3: vertex[i].z = near * random.between(1, 20); break;
        default:
            vertex[i].z = static_cast<int32_t>(random.word() >> 1);
            vertex[i].z = vertex[i].z >> random.between(0, 29) | 1;
            break;
        }
    if (!axes().pers && random.percent(30))
        vertex[0].z = vertex[2].z = 0;
}

void Builder::primitive()
{
    switch (axes().shape) {
    case 0: line(); break;
    case 1: rectangle(); break;
    default: triangle(); break;
    }
}

/* Whether some of the primitive is likely to be seen. */
bool Builder::visible() const
{
    const RenderState &state = scene.state;
    const Vertex *const vertex = state.vertex;
    const int count = scene.axes.shape == 2 ? 3 : 2;
    int32_t left = vertex[0].x, right = left, top = vertex[0].y, bottom = top;
    for (int i = 1; i < count; ++i) {
        left = std::min(left, vertex[i].x);
        right = std::max(right, vertex[i].x);
        top = std::min(top, vertex[i].y);
        bottom = std::max(bottom, vertex[i].y);
    }
    if (scene.axes.shape == 0)
        ++right, ++bottom;
    if (std::max(left, state.clipLeft) >= std::min(right, state.clipRight) ||
        std::max(top, state.clipTop) >= std::min(bottom, state.clipBottom))
        return false;
    if (count == 2)
        return true;
    const int64_t cross = int64_t{vertex[1].x - vertex[0].x} * (vertex[2].y - vertex[0].y) -
                          int64_t{vertex[2].x - vertex[0].x} * (vertex[1].y - vertex[0].y);
    return std::abs(cross) >= 30;
}

void Builder::origin()
{
    RenderState &state = scene.state;
    if (random.percent(40))
        return;
    const int32_t far = random.percent(90) ? 40 : 100000;
    state.originX = random.between(-far, far);
    state.originY = random.between(-far, far);
    for (Vertex &vertex : state.vertex) {
        vertex.x -= state.originX;
        vertex.y -= state.originY;
    }
}

Builder::Size Builder::textureSize()
{
    const uint32_t style = random.below(100);
    Size size;
    if (axes().rectOpt == 5) {
        size.log2Width = guard ? random.between(0, 6) : random.between(2, big ? 11 : 9);
        size.log2Height = random.between(0, 3);
    } else if (style < 5) {
        size = {0, 0};
    } else if (style < 12) {
        size = {0, random.between(0, 7)};
    } else if (style < 19) {
        size = {random.between(0, 8), 0};
    } else if (style < 85 || small) {
        size = {random.between(1, 5), random.between(1, 5)};
    } else {
        size.log2Width = random.between(1, big ? 11 : 9);
        size.log2Height = random.between(0, (big ? 14 : 11) - size.log2Width);
    }
    return size;
}

/* A texture in a slot, and with `chain` its levels in the slots behind it. */
int Builder::texture(int slot, Size size, int pool, bool chain)
{
    /* halved, or of a host's own making: any sizes */
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
        TextureSpec &spec = scene.textures[static_cast<size_t>(base + i)];
        Size level = size;
        if (i > 0)
            level = regular ? Size{size.log2Width - i, size.log2Height - i} : Size{random.between(0, 5), random.between(0, 5)};
        spec.log2Width = static_cast<uint8_t>(level.log2Width);
        spec.log2Height = static_cast<uint8_t>(level.log2Height);
        spec.pixels = place(slot + i, 4 * spec.width() * spec.height(), 16, 64, 64);
        fill(scene.windows[static_cast<size_t>(scene.windowCount - 1)], pool);
    }
    if (chain) {
        TextureSpec &spec = scene.textures[static_cast<size_t>(base)];
        spec.levels = static_cast<uint8_t>(count);
        for (int i = 0; i < count; ++i)
            spec.level[static_cast<size_t>(i)] = static_cast<int8_t>(base + i);
    }
    return base;
}

int Builder::source(int firstSlot)
{
    int pool = random.percent(90) ? random.pick({noisePool, noisePool, solidPool, extremePool, alphaPool})
                                  : random.pick({runPool, stripePool});
    if (axes().rectOpt == 5)
        pool = guard ? noisePool : random.pick({runPool, runPool, stripePool, noisePool, solidPool});
    return texture(firstSlot, textureSize(), pool, chains);
}

void Builder::textures()
{
    if (textured())
        scene.tex0 = source(tex0Slot);
    const bool needsSecond = axes().multi == 0 || scene.subject.is("DrawRectGradRule_GEN_RULE_MIPMAP_TEST");
    if (needsSecond || random.percent(30)) /* or one that an earlier draw left behind */
        scene.tex1 = source(tex1Slot);
    if (axes().rule || random.percent(10)) {
        const Size size = textureSize();
        scene.tex2 = texture(ruleSlot, size, random.pick({noisePool, solidPool, solidPool, extremePool}), false);
        const Window &window = scene.windows[static_cast<size_t>(scene.windowCount - 1)];
        if (random.percent(50)) { /* values around the ends of the soft edge */
            std::byte *const bytes = world.begin(window.slot) + window.begin;
            const int32_t low = scene.state.ruleThreshold, high = wrapping(int64_t{low} + scene.state.ruleWidth);
            for (uint32_t at = 0; at + 4 <= window.end - window.begin; at += 4) {
                const uint32_t noise = static_cast<uint32_t>(bytes[at]);
                const uint32_t around = static_cast<uint32_t>(noise & 1 ? low : high);
                bytes[at] = static_cast<std::byte>(around + (noise >> 1) % 5 - 2);
            }
        }
    }
    /* what an earlier draw of a mip filter left behind */
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

/* Moves textures into memory that the draw writes. */
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
        TextureSpec &spec = scene.textures[static_cast<size_t>(index)];
        const int64_t lines = random.percent(70) ? 0 : random.between(-2, static_cast<int32_t>(scene.frameHeight));
        const int64_t distance = random.percent(60) ? random.between(-20, 20) : random.between(-130, 130);
        int64_t offset = scene.pixels.offset + 4 * (lines * scene.frameWidth + distance);
        int slot = frameSlot;
        if (axes().shahei == 1 || axes().shahei == 2) {
            const uint32_t where = random.below(10);
            if (where < 3) {
                slot = planeSlot;
                offset = (scene.plane.offset & ~3) +
                         4 * random.between(-40, static_cast<int32_t>(scene.frameWidth * scene.frameHeight / 32));
            } else if (where < 5 && axes().shahei == 2) {
                slot = prioritySlot;
                offset = (scene.priority.offset & ~3) +
                         4 * random.between(-40, static_cast<int32_t>(scene.frameWidth * scene.frameHeight / 4));
            }
        }
        for (int i = 0; i < scene.written; ++i) {
            const Window &window = scene.windows[static_cast<size_t>(i)];
            const int64_t bytes = 4 * int64_t{spec.width()} * spec.height();
            if (window.slot == slot && offset >= window.begin && offset + bytes <= window.end)
                spec.pixels = {slot, offset};
        }
    }
}

void Builder::maps()
{
    if (scene.tex0 < 0)
        return;
    TextureSpec &spec = scene.textures[static_cast<size_t>(scene.tex0)];
    Texture bound;
    bound.pixels = world.at<uint32_t>(spec.pixels);
    bound.width = spec.width();
    bound.height = spec.height();
    bound.log2Width = spec.log2Width;
    bound.log2Height = spec.log2Height;
    if (axes().rectOpt == 5) {
        const std::vector<int8_t> map = reference::runLengthMap(bound);
        scene.runs = place(runsSlot, static_cast<uint32_t>(map.size()), 1, 32, 32);
        fill(scene.windows[static_cast<size_t>(scene.windowCount - 1)], solidPool);
        std::memcpy(world.at<std::byte>(scene.runs), map.data(), map.size());
        spec.runs = true;
    }
    if (axes().rectOpt == 6) {
        /* a bit for each pixel of the frame buffer, whatever the texture's size */
        scene.zeros = place(zerosSlot, static_cast<uint32_t>(2 * (endWord - firstWord)), 2, 32, 32);
        scene.zeros.offset -= 2 * firstWord;
        fill(scene.windows[static_cast<size_t>(scene.windowCount - 1)], random.pick({noisePool, runPool, stripePool}));
        spec.zeros = true;
    }
}

/* A 16.16 step from a pixel to the next. */
int32_t Builder::step()
{
    const int32_t finest = chains ? -1 : -4, coarsest = chains ? 7 : 4;
    const int32_t exponent = random.between(finest, coarsest);
    const int64_t mantissa = random.percent(30) ? 0x10000 : random.between(0x10000, 0x1FFFF);
    const int64_t size = exponent < 0 ? mantissa >> -exponent : mantissa << exponent;
    return static_cast<int32_t>(random.percent(30) ? -size : size);
}

/* Positions at the ends of `count` pixels. */
Builder::Path Builder::path(int32_t count, int log2Size)
{
    const int32_t size = 1 << log2Size;
    const uint32_t style = random.below(100);
    Path result;
    int64_t from = int64_t{random.between(-2 * size, 2 * size)} * 0x10000;
    from += random.pick({0, 0x8000, random.between(0, 0xFFFF)});
    int64_t to = from;
    if (style < (chains ? 8u : 25u))
        to = from + int64_t{count} * 0x10000 + (random.percent(30) ? random.between(-300, 300) : 0);
    else if (style < 65)
        to = from + int64_t{count} * step();
    else if (style < 70)
        to = from;
    else if (style < 80) {
        from = random.between(-0x20000, 0x20000);
        to = random.between(-0x20000, 0x20000);
    } else if (style < 93) {
        from = random.between(-0x800000, 0x800000);
        to = random.between(-0x800000, 0x800000);
    } else {
        from = static_cast<int32_t>(random.word());
        to = static_cast<int32_t>(random.word());
    }
    result = {wrapping(from), wrapping(to)};
    if (forward) /* and far enough from 0 that no step, rounded down for a level, leads below it */
        result = {(result.from & 0x3FFFFFFF) | 0x08000000, (result.to & 0x3FFFFFFF) | 0x08000000};
    return result;
}

void Builder::positions(TexCoord (&uv)[4], int textureIndex)
{
    const RenderState &state = scene.state;
    const Vertex *const vertex = state.vertex;
    const Size size = textureIndex < 0 ? Size{4, 4}
                                       : Size{scene.textures[static_cast<size_t>(textureIndex)].log2Width,
                                              scene.textures[static_cast<size_t>(textureIndex)].log2Height};
    if (axes().shape != 2) {
        const int32_t width = std::abs(vertex[1].x - vertex[0].x), height = std::abs(vertex[1].y - vertex[0].y);
        const Path across = path(width, size.log2Width), down = path(height, size.log2Height);
        uv[0] = {across.from, down.from};
        uv[1] = {across.to, down.to};
        for (int i = 2; i < 4; ++i)
            uv[i] = {path(width, size.log2Width).to, path(height, size.log2Height).to};
        const bool corners = axes().rectOpt == 2;
        if (corners && random.percent(70)) { /* a skewed picture, perhaps with one corner moved */
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
        if (style < 75) { /* a picture laid over the triangle */
            const int64_t x = vertex[i].x - vertex[0].x, y = vertex[i].y - vertex[0].y;
            uv[i] = {wrapping(start.from + x * across[0] + y * across[1]), wrapping(start.to + x * down[0] + y * down[1])};
        } else {
            uv[i] = {path(8, size.log2Width).to, path(8, size.log2Height).to};
        }
    }
    if (axes().pers && !random.percent(15)) {
        /* perspective serves positions from 0 up */
        const int bits = random.percent(70) ? 24 : random.between(16, 31);
        for (int i = 0; i < 4; ++i) {
            uv[i].u &= wrapping((int64_t{1} << bits) - 1);
            uv[i].v &= wrapping((int64_t{1} << bits) - 1);
        }
    }
}

void Builder::lineTable(Place &table, int slot, int textureIndex, bool skips)
{
    const RenderState &state = scene.state;
    const int32_t width = std::abs(state.vertex[1].x - state.vertex[0].x),
                  height = std::abs(state.vertex[1].y - state.vertex[0].y);
    const TextureSpec &spec = scene.textures[static_cast<size_t>(textureIndex)];
    table = place(slot, static_cast<uint32_t>(height) * sizeof(LineTableRecord), 4, 64, 64);
    fill(scene.windows[static_cast<size_t>(scene.windowCount - 1)], solidPool);
    LineTableRecord *const records = world.at<LineTableRecord>(table);
    const uint32_t skipped = !skips ? 3 : random.pick<uint32_t>({0, 0, 0, 20, 20, 20, 50, 90});
    const bool alike = random.percent(40);
    Path u = path(width, spec.log2Width), v = path(width, spec.log2Height);
    for (int32_t line = 0; line < height; ++line) {
        if (!alike || random.percent(5)) {
            u = path(width, spec.log2Width);
            v = path(width, spec.log2Height);
        }
        records[line] = {u.from, v.from, u.to, v.to};
        if (random.percent(skipped))
            records[line].startU = NINEFOLD_SKIP_ROW;
        if (random.percent(30) && !forward)
            v = {wrapping(int64_t{v.from} + 0x10000), wrapping(int64_t{v.to} + 0x10000)};
    }
}

void Builder::shifts()
{
    const uint32_t share = axes().shape == 2 ? 40 : 15;
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
        axes().multi != 3
            ? (random.percent(80) ? random.between(0, 9) == 0 ? hostMulti : random.between(multiOperators, blendOperators - 1)
                                  : anyOperator())
            : random.pick<int>({nullOperator, hostMulti});
    scene.blendOperator = axes().blend == 12 ? (random.percent(50)   ? random.between(blendOperators, operatorCount - 1)
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

void Builder::build()
{
    const Kind kind = scene.id.kind;
    overlap = kind == Kind::overlap;
    guard = kind == Kind::guard;
    small = kind == Kind::small;
    big = kind == Kind::big || (!small && random.percent(overlap || guard ? 4 : 8));
    atEnd = (scene.id.number & 1) == 0;
    scene.axes = scene.subject.axes();
    const bool firstTexel = axes().filter == 5 && axes().shahei != 1 && axes().shahei != 2;
    chains = axes().filter >= 2 && axes().filter <= 5;
    forward = firstTexel && axes().shape == 1 && (axes().rectOpt == 2 || axes().rectOpt == 3);
    writesPlanes = scene.subject.fillsPlanes() || axes().shahei == 1 || axes().shahei == 2;
    readsPriority = axes().shahei == 3 || axes().shahei == 5;

    frame();
    planes();
    do
        primitive();
    while (!visible() && !random.percent(15));
    origin();
    rule();
    textures();
    if (overlap)
        overlaps();
    maps();
    positions(scene.state.uv0, scene.tex0);
    positions(scene.state.uv1, scene.tex1);
    const bool wrapsRule = forward;
    forward = false;
    positions(scene.state.uv2, scene.tex2);
    forward = wrapsRule;
    if (axes().rectOpt == 3) {
        lineTable(scene.lines0, lines0Slot, scene.tex0, true);
        if (axes().multi == 0)
            lineTable(scene.lines1, lines1Slot, scene.tex1, false);
    }
    shifts();
    colours();
    factors();
    modes();
}

} // namespace

Scene makeScene(const Subject &subject, SceneId id, World &world)
{
    Scene scene;
    scene.subject = subject;
    scene.id = id;
    uint64_t seed = Random(id.seed).bits() ^ static_cast<uint64_t>(id.kind) << 56;
    seed = Random(seed ^ subject.code).bits() + (subject.exported != nullptr ? 1 : 0);
    seed = Random(seed + id.number).bits();
    Builder(scene, world, seed).build();
    return scene;
}

RenderState bindScene(const Scene &scene, World &world, bool library)
{
    const auto textureAt = [&world](int index) { return index < 0 ? nullptr : &world.textures[static_cast<size_t>(index)]; };
    for (int i = 0; i < scene.textureCount; ++i) {
        const TextureSpec &spec = scene.textures[static_cast<size_t>(i)];
        Texture &texture = *textureAt(i);
        texture.pixels = world.at<uint32_t>(spec.pixels);
        texture.width = spec.width();
        texture.height = spec.height();
        texture.log2Width = spec.log2Width;
        texture.log2Height = spec.log2Height;
        texture.mipCount = spec.levels;
        for (int level = 0; level < levelLimit; ++level)
            texture.mip[level] = level < spec.levels ? textureAt(spec.level[static_cast<size_t>(level)]) : nullptr;
        texture.runlengthMap = spec.runs ? world.at<int8_t>(scene.runs) : nullptr;
        texture.zeroPixelMap = spec.zeros ? world.at<uint16_t>(scene.zeros) : nullptr;
        texture.flags = 1;
        texture.refCount = 0;
        texture.origWidth = texture.width;
        texture.origHeight = texture.height;
    }
    RenderState state;
    std::memcpy(&state, &scene.state, sizeof state); /* with what lies between the fields */
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
        std::snprintf(part, sizeof part, format, values...);
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
        const TextureSpec &spec = scene.textures[static_cast<size_t>(index)];
        print("%s: %u x %u, %d levels, slot %d", name, spec.width(), spec.height(), spec.levels, spec.pixels.slot);
        if (spec.pixels.slot == frameSlot)
            print(", at pixel %d of the frame buffer", static_cast<int>((spec.pixels.offset - scene.pixels.offset) / 4));
        for (int i = 1; i < spec.levels; ++i) {
            const TextureSpec &level = scene.textures[static_cast<size_t>(spec.level[static_cast<size_t>(i)])];
            print("; %u x %u", level.width(), level.height());
            if (level.pixels.slot <= prioritySlot)
                print(" (slot %d)", level.pixels.slot);
        }
        print("\n");
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
        for (int line = 0; line < std::min(64, std::abs(state.vertex[1].y - state.vertex[0].y)); ++line)
            print("line %d: %08x %08x to %08x %08x\n", line, static_cast<unsigned>(table[line].startU),
                  static_cast<unsigned>(table[line].startV), static_cast<unsigned>(table[line].endU),
                  static_cast<unsigned>(table[line].endV));
    return text;
}

} // namespace support
