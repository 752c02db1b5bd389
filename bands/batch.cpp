#include "batch.h"

#include <algorithm>

namespace bands {
namespace {

constexpr size_t lineOfCache = 64;

// What the rows of a band may take of a core's second-level cache where they are drawn again and again, and the fewest rows that
// are worth a band: every draw that crosses its border begins once more.
constexpr int32_t bandBytes = 560 << 10, fewestRows = 16, bandsPerThread = 8, fewBandsPerThread = 4;

} // namespace

void *Arena::take(size_t bytes)
{
    bytes = (bytes + lineOfCache - 1) / lineOfCache * lineOfCache;
    while (used == 0 || at + bytes > blocks[used - 1].size) {
        if (used == blocks.size()) {
            const size_t size = std::max(blockSize, bytes);
            blocks.push_back({std::make_unique_for_overwrite<std::byte[]>(size + lineOfCache), size});
        }
        ++used, at = 0;
    }
    std::byte *const memory = blocks[used - 1].memory.get();
    const size_t gap = (0 - uintptr_t(memory)) % lineOfCache;
    return memory + gap + (at += bytes) - bytes;
}

void Batch::clear()
{
    draws.clear();
    arena.clear();
    nanoseconds = pixels = 0;
}

void Batch::keep(const Kind &kind, Draw &draw)
{
    auto *const state = static_cast<RenderState *>(arena.take(sizeof(RenderState)));
    copyState(*state, rs);
    draw.state = state;
    const layer::Needs &n = *kind.needs;
    if (n.callsBlend)
        state->blendFunc = judge.bandedFor(rs.blendFunc);
    if (n.callsMulti)
        state->multiFunc = judge.bandedFor(rs.multiFunc);
    const auto count = size_t(draw.bottom - draw.top);
    if (n.scanShift && rs.scanShift)
        state->scanShift = arena.copy(rs.scanShift + draw.top, count) - draw.top;
    if (n.lineTable0) { // begins at the unclipped rectangle's top
        const int32_t first = draw.top - std::min(rs.vertex[0].y + rs.originY, rs.vertex[1].y + rs.originY);
        state->lineTable0 = arena.copy(rs.lineTable0 + first, count) - first;
        if (n.lineTable1)
            state->lineTable1 = arena.copy(rs.lineTable1 + first, count) - first;
    }
}

Fate Batch::record(layer::Id id, float least)
{
    const Kind &kind = kindOf(id);
    if (draws.empty()) {
        if (costAtMost(kind) < least)
            return Fate::cheap;
        judge.begin();
    }
    Draw draw;
    const Fate fate = judge.judge(kind, draw);
    if (fate == Fate::cut && draws.empty() && judge.cost() < least)
        return Fate::cheap;
    if (fate == Fate::cut) {
        keep(kind, draw);
        top = draws.empty() ? draw.top : std::min(top, draw.top);
        bottom = draws.empty() ? draw.bottom : std::max(bottom, draw.bottom);
        draws.push_back(draw);
        nanoseconds += judge.cost();
        pixels += judge.area();
    }
    if (fate != Fate::whole)
        leaveScratch(kind);
    return fate;
}

int Batch::divide(int threads)
{
    const int32_t rows = bottom - top;
    const bool layers = pixels > 2.0 * rows * double(1 << judge.target.shift);
    bandRows = layers ? std::max(fewestRows, bandBytes / (4 << judge.target.shift)) : rows;
    if (threads > 1) {
        const int32_t bands = (layers ? bandsPerThread : fewBandsPerThread) * threads;
        bandRows = std::min(bandRows, std::max(fewestRows, (rows + bands - 1) / bands));
    }
    return (rows + bandRows - 1) / bandRows;
}

void Batch::drawBand(int band) const
{
    const int32_t begin = top + band * bandRows;
    drawRows(begin, std::min(begin + bandRows, bottom));
}

void Batch::drawRows(int32_t begin, int32_t end) const
{
    // While one is drawn the state of the next comes, most likely from another core's cache.
    const Draw *found = nullptr;
    for (const Draw &draw : draws) {
        if (draw.top >= end || draw.bottom <= begin)
            continue;
        const auto *const state = reinterpret_cast<const std::byte *>(draw.state);
        for (size_t at = 0; at < sizeof(RenderState); at += lineOfCache)
            __builtin_prefetch(state + at);
        if (found)
            drawBetween(*found, begin, end);
        found = &draw;
    }
    if (found)
        drawBetween(*found, begin, end);
}

} // namespace bands
