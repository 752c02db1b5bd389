// Where a scene draws.
#include "builder.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace support {

// Lengths around the sizes of vectors, plane words and chunks.
constexpr int32_t lengths[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,  16,  17,  18, 23,
                               24, 25, 31, 32, 33, 47, 48, 49, 63, 64, 65, 79, 80, 81, 127, 128, 129, 200};

// Ends of a primitive against the clip range low to high: inside, over either end or both, outside, touching, of no size.
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
        from = high; // touches
    else if (style < 97)
        from = low - size;
    else
        from = random.between(low - size, high);
    to = from + size;
    if (style >= 80 && style < 95) // wider than the clip rectangle
        to = std::max(to, high + random.between(0, 20));
    if (random.percent(1))
        to = from;
}

// So wide that the width wraps to a small one, most often to -1, by which a division leaves every step whole.
void Builder::wrapWidth()
{
    scene.state.vertex[0].x = INT32_MIN + random.pick({0, 0, 0, 1});
    scene.state.vertex[1].x = INT32_MAX - random.pick({0, 0, 0, 1});
}

void Builder::rectangle()
{
    RenderState &state = scene.state;
    const auto length = [this](int32_t room) {
        if ((big || large || axes().rectOpt == NINEFOLD_RECT_RUNS) && random.percent(70))
            return random.percent(50) ? room + random.between(0, 40) : random.between(1, room + 40);
        if (random.percent(75))
            return std::min(lengths[random.below(std::size(lengths))], 3 * room + 3);
        return random.between(1, room + 8);
    };
    const int32_t columns = state.clipRight - state.clipLeft, lines = state.clipBottom - state.clipTop;
    int32_t left, right, top, bottom;
    range(state.clipLeft, state.clipRight, length(columns), left, right);
    range(state.clipTop, state.clipBottom, random.percent(60) ? random.between(std::min(lines, 4), lines + 3) : length(lines),
          top, bottom);
    if (random.percent(2) && !forward) { // far out
        left -= random.between(0, 70000);
        right += random.between(0, 70000);
        if (axes().rectOpt != NINEFOLD_RECT_TABLE) {
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
    if (style == 2) { // diagonal, or next to it
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
    if (random.percent(50)) { // one corner left, one right, one below or above: of some area
        vertex[0].x = centreX - random.between(1, reachX) / 2 - 1;
        vertex[1].x = centreX + random.between(1, reachX) / 2 + 1;
        vertex[2].y = centreY + random.pick({-1, 1}) * (reachY / 2 + 2);
    }
    switch (random.below(20)) {
    case 0: // flat top or bottom, as the third falls
    case 1: vertex[1].y = vertex[0].y; break;
    case 2: vertex[1].x = vertex[0].x; break; // upright edge
    case 3: { // on one line, or next to it
        const int32_t dx = vertex[1].x - vertex[0].x, dy = vertex[1].y - vertex[0].y;
        const int32_t times = random.pick({-1, 2, 3});
        vertex[2].x = vertex[0].x + times * dx + random.between(-1, 1);
        vertex[2].y = vertex[0].y + times * dy;
        break;
    }
    case 4: // one row, or one point
        if (random.percent(20))
            vertex[1].y = vertex[2].y = vertex[0].y;
        else
            vertex[1].y = vertex[0].y + 1, vertex[2].y = vertex[0].y + random.between(0, 1);
        break;
    case 5: // the middle vertex at an edge of the clip rectangle
        vertex[0].y = state.clipTop - random.between(1, 20);
        vertex[1].y = random.pick(
            {state.clipTop - 1, state.clipTop, state.clipTop + 1, state.clipBottom - 1, state.clipBottom, state.clipBottom + 1});
        vertex[2].y = state.clipBottom + random.between(-2, 20);
        break;
    case 6: // touches from outside
        vertex[0].y = random.pick({state.clipTop, state.clipBottom});
        vertex[1].y = vertex[0].y + random.between(-10, 10);
        break;
    case 7: // one far away
        vertex[0].x += random.between(-2000, 2000);
        vertex[0].y += random.between(-2000, 2000);
        if (random.percent(10))
            vertex[1].x += random.between(-90000, 90000);
        break;
    case 8: // covers all
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

// Whether some of the primitive is likely to be seen.
bool Builder::visible() const
{
    const RenderState &state = scene.state;
    const Vertex *const vertex = state.vertex;
    const int count = scene.axes.shape == NINEFOLD_SHAPE_TRIANGLE ? 3 : 2;
    int32_t left = vertex[0].x, right = left, top = vertex[0].y, bottom = top;
    for (int i = 1; i < count; ++i) {
        left = std::min(left, vertex[i].x);
        right = std::max(right, vertex[i].x);
        top = std::min(top, vertex[i].y);
        bottom = std::max(bottom, vertex[i].y);
    }
    if (scene.axes.shape == NINEFOLD_SHAPE_LINE)
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

// Moves vertices far away, to where products and shifts of coordinates lose bits. A rectangle's sizes may grow into their sign;
// lines and triangles stay below 2^31. What is looked up row by row stays near, and so does a line's start: some lines are drawn
// without a test.
void Builder::farOut()
{
    if (forward || !random.percent(25))
        return;
    Vertex *const vertex = scene.state.vertex;
    const auto distance = [this] {
        const int32_t any = static_cast<int32_t>(random.word() >> 2 >> random.between(0, 22));
        return random.pick({any, any, 0x3FFFFFFF, 0x7FFF, 0x8000, 0x8001, 0xFFFF, 0x10000});
    };
    switch (axes().shape) {
    case 0:
        for (int32_t *coordinate : {&vertex[1].x, &vertex[1].y})
            if (random.percent(60))
                *coordinate += random.pick({-1, 1}) * distance();
        break;
    case 1: {
        const auto apart = [&](int32_t &one, int32_t &other) {
            if (random.percent(60))
                (one < other ? one : other) -= distance();
            if (random.percent(60))
                (one < other ? other : one) += distance();
        };
        apart(vertex[0].x, vertex[1].x);
        if (axes().rectOpt != NINEFOLD_RECT_TABLE)
            apart(vertex[0].y, vertex[1].y);
        break;
    }
    default:
        for (int i = 0; i < 3; ++i) {
            if (random.percent(40))
                vertex[i].x += random.pick({-1, 1}) * distance();
            if (random.percent(40))
                vertex[i].y += random.pick({-1, 1}) * (distance() / 2);
        }
        break;
    }
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
        vertex.x = wrapping(int64_t{vertex.x} - state.originX);
        vertex.y = wrapping(int64_t{vertex.y} - state.originY);
    }
}

} // namespace support
