#include "thread_draws.h"

#include "line_table.h"

#include "core/startup.h"
#include "kernels/sets.h"
#include "kernels/table.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>
#include <vector>

#if !defined(_WIN32)
__thread RenderState ninefoldThreadState;
#endif

namespace ninefold {

int32_t uvlShift[256];
uint32_t stippleSteps[32];

} // namespace ninefold

namespace bands {
namespace {

using namespace ninefold;

// Bytes by vectors: neither a call nor a string instruction is worth it.
using Block [[gnu::vector_size(16), gnu::aligned(1), gnu::may_alias]] = uint64_t;
constexpr size_t blockSize = 16;
template <size_t size, class Body>
[[gnu::always_inline]] inline void forEachBlock(Body &&body)
{
    [&]<size_t... k>(std::index_sequence<k...>)
    {
        (body(k * blockSize), ...);
        if constexpr (size % blockSize != 0) // the last one overlaps the one before
            body(size - blockSize);
    }
    (std::make_index_sequence<size / blockSize>());
}
template <size_t size>
[[gnu::always_inline]] inline void copyBytes(void *to, const void *from)
{
    forEachBlock<size>([&](size_t at) {
        *reinterpret_cast<Block *>(static_cast<std::byte *>(to) + at) =
            *reinterpret_cast<const Block *>(static_cast<const std::byte *>(from) + at);
    });
}
template <size_t begin, size_t end>
[[gnu::always_inline]] inline void copyFields(RenderState &to, const RenderState &from)
{
    copyBytes<end - begin>(reinterpret_cast<std::byte *>(&to) + begin, reinterpret_cast<const std::byte *>(&from) + begin);
}
template <size_t begin, size_t end>
[[gnu::always_inline]] inline Block difference(const RenderState &a, const RenderState &b)
{
    Block found{};
    forEachBlock<end - begin>([&](size_t at) {
        found |= *reinterpret_cast<const Block *>(reinterpret_cast<const std::byte *>(&a) + begin + at) ^
                 *reinterpret_cast<const Block *>(reinterpret_cast<const std::byte *>(&b) + begin + at);
    });
    return found;
}

// Behind the busy fields up to the modes, then the scratch, and the mosaic's sizes with what lies before them.
constexpr size_t factorsEnd = offsetof(RenderState, prescaleMode), scratchBegin = offsetof(RenderState, mipFrac),
                 scratchEnd = offsetof(RenderState, fontName), mosaicBegin = sizeof(RenderState) - blockSize;
static_assert(mosaicBegin <= offsetof(RenderState, mosaicSize1));

// A line flatter than steep that ends inside the clip rectangle leaves its end pixel out, which may lie a row off the end vertex.
// A band without the row of the vertex takes the end for outside: there the column is cut off.
bool cutEnd(const RenderState &whole)
{
    const int32_t end = rs.vertex[1].x + rs.originX, row = rs.vertex[1].y + rs.originY;
    if (row < whole.clipTop || row >= whole.clipBottom || (row >= rs.clipTop && row < rs.clipBottom))
        return true;
    if (rs.vertex[0].x + rs.originX > end)
        rs.clipLeft = std::max(rs.clipLeft, end + 1);
    else
        rs.clipRight = std::min(rs.clipRight, end);
    return rs.clipLeft < rs.clipRight;
}

// Goes through the rows above the band.
void passRows(const Draw &draw)
{
    const int32_t top = rs.clipTop, bottom = rs.clipBottom;
    rs.clipTop = draw.state->clipTop, rs.clipBottom = draw.state->clipBottom;
    Box box;
    const bool visible = box.make();
    rs.clipTop = top, rs.clipBottom = bottom;
    if (!visible || top <= box.top)
        return;
    const CarriedRows rows{draw.levels, draw.next, draw.marks, draw.second};
    const uint32_t skipped = rows.pass(box, uint32_t(top - box.top));
    if (skipped == 0)
        return;
    // Row y of the band takes the stipple and the rule of row y - skipped.
    const RenderState &whole = *draw.state;
    for (uint32_t row = 0; row < std::size(rs.drawMask); ++row)
        rs.drawMask[row] = whole.drawMask[(row - skipped) & 15];
    const uint32_t back = along(uint32_t(rs.uv2[0].v), uint32_t(rs.uv2[1].v), box.flippedY, box.byHeight, 0).step * skipped;
    for (TexCoord &uv : rs.uv2)
        uv.v = int32_t(uint32_t(uv.v) - back);
}

// Draws the rows from top to bottom - 1 of it. `loaded` is the state that rs still holds, null at first.
void drawBetween(const Draw &draw, int32_t top, int32_t bottom, const RenderState *&loaded)
{
    const RenderState &state = *draw.state;
    if (!loaded || loaded != &state)
        copyState(rs, state);
    copyBytes<sizeof draw.busy.bytes>(reinterpret_cast<std::byte *>(&rs) + busyBegin, draw.busy.bytes);
    rs.clipTop = std::max(state.clipTop, top);
    rs.clipBottom = std::min(state.clipBottom, bottom);
    loaded = draw.leaves || draw.mend != Mend::none ? nullptr : &state;
    if (draw.mend == Mend::lineEnd) {
        if (!cutEnd(state))
            return;
    } else if (draw.mend != Mend::none) {
        passRows(draw);
    }
    draw.kernel();
}

template <size_t... family>
std::vector<DrawFunc> makeKernels(std::index_sequence<family...>)
{
    const DrawFunc *next[] = {KernelsOf<Family(family)>::first...};
    std::vector<DrawFunc> kernels;
    kernels.reserve(recordCount);
    forEachCombination([&](const Axes &a) { kernels.push_back(*next[size_t(familyOf(a))]++); });
    return kernels;
}

} // namespace

void copyState(RenderState &to, const RenderState &from)
{
    copyFields<0, factorsEnd>(to, from);
    copyFields<scratchBegin, scratchEnd>(to, from);
    copyFields<mosaicBegin, sizeof(RenderState)>(to, from);
}

bool sameButBusy(const RenderState &a, const RenderState &b)
{
    const Block found =
        difference<0, busyBegin>(a, b) | difference<busyEnd, factorsEnd>(a, b) | difference<scratchBegin, scratchEnd>(a, b);
    return (found[0] | found[1]) == 0 && a.mosaicSize == b.mosaicSize && a.mosaicSize1 == b.mosaicSize1;
}

void copyBusy(BusyFields &to, const RenderState &from)
{
    copyBytes<sizeof to.bytes>(to.bytes, reinterpret_cast<const std::byte *>(&from) + busyBegin);
}

void drawRows(std::span<const Rows> rows, const Draw *draws, int32_t top, int32_t bottom)
{
#if defined(_WIN32)
    RenderState own{}; // what a kernel reads is copied into it
    RenderState *const callers = ninefoldThreadState;
    ninefoldThreadState = &own;
#endif
    const RenderState *loaded = nullptr;
    for (size_t k = 0; k < rows.size(); ++k)
        if (rows[k].top < bottom && rows[k].bottom > top)
            drawBetween(draws[k], top, bottom, loaded);
#if defined(_WIN32)
    ninefoldThreadState = callers;
#endif
}

DrawFunc bandedKernel(uint32_t record)
{
    static const std::vector<DrawFunc> kernels = makeKernels(std::make_index_sequence<size_t(Family::count)>());
    return kernels[record];
}

// In the objects of the second copy the names of exported functions are those of its own.
DrawFunc bandedFunction(layer::Function function)
{
    switch (function) {
    case layer::Function::DrawRectTexRunlen_TEST: return ::DrawRectTexRunlen_TEST;
    case layer::Function::DrawLineTest: return ::DrawLineTest;
    case layer::Function::DrawPolygon_PERS_TEST: return ::DrawPolygon_PERS_TEST;
    case layer::Function::DrawRectTexRule: return ::DrawRectTexRule;
    case layer::Function::DrawRectGradRule: return ::DrawRectGradRule;
    case layer::Function::DrawRectGradRule_GEN_RULE_TEST: return ::DrawRectGradRule_GEN_RULE_TEST;
    case layer::Function::DrawRectGradRule_GEN_RULE_MIPMAP_TEST: return ::DrawRectGradRule_GEN_RULE_MIPMAP_TEST;
    default: return nullptr;
    }
}

PixelOperator bandedOperator(int index) { return ops::operators[size_t(index)]; }

void takeTables(const int32_t (&shifts)[256], const uint32_t (&steps)[32], int lanes)
{
    std::copy(std::begin(shifts), std::end(shifts), uvlShift);
    std::copy(std::begin(steps), std::end(steps), stippleSteps);
    // The one that the library draws by, or the next lower one.
    for (int set = usableSets(); set-- > 0;)
        if (useSet(set) && activeSets.any->lanes <= lanes)
            return;
}

} // namespace bands
