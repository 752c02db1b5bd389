#include "batch.h"

#include <algorithm>

namespace bands {
namespace {

constexpr size_t lineOfCache = 64, drawsAhead = 6;

// What the rows of a band may take of a core's second-level cache where they are drawn again and again, and the fewest rows that
// are worth a band: every draw that crosses its border begins once more.
constexpr int32_t bandBytes = 560 << 10, fewestRows = 16, bandsPerThread = 8, fewBandsPerThread = 6;

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
    count = 0;
    last = nullptr;
    arena.clear();
    nanoseconds = pixels = 0;
}

// The state of a draw: that of the one before, where nothing but busy fields has changed.
const RenderState *Batch::keep(const Kind &kind)
{
    const layer::Needs &n = *kind.needs;
    const bool shifts = n.scanShift && rs.scanShift, asItIs = !n.callsBlend && !n.callsMulti && !n.lineTable0 && !shifts;
    if (asItIs && last && sameButBusy(*last, rs))
        return last;
    auto *const state = static_cast<RenderState *>(arena.take(sizeof(RenderState)));
    copyState(*state, rs);
    if (asItIs)
        return last = state;
    if (n.callsBlend)
        state->blendFunc = judge.bandedFor(rs.blendFunc);
    if (n.callsMulti)
        state->multiFunc = judge.bandedFor(rs.multiFunc);
    const auto [first, end] = judge.reached;
    const auto lines = size_t(end - first);
    if (shifts)
        state->scanShift = arena.copy(rs.scanShift + first, lines) - first;
    if (n.lineTable0) { // begins at the unclipped rectangle's top
        const int32_t line = first - std::min(rs.vertex[0].y + rs.originY, rs.vertex[1].y + rs.originY);
        state->lineTable0 = arena.copy(rs.lineTable0 + line, lines) - line;
        if (n.lineTable1)
            state->lineTable1 = arena.copy(rs.lineTable1 + line, lines) - line;
    }
    return state;
}

Fate Batch::record(layer::Id id, float least)
{
    const Kind &kind = kindOf(id);
    if (empty()) {
        if (costAtMost(kind) < least)
            return Fate::cheap;
        judge.begin();
    }
    if (draws.size() <= count + drawsAhead) {
        draws.resize(std::max(size_t{256}, 2 * draws.size()));
        rows.resize(draws.size());
    }
    Draw &draw = draws[count];
    const Fate fate = judge.judge(kind, draw);
    if (fate == Fate::cut && empty() && judge.cost() < least)
        return Fate::cheap;
    if (fate == Fate::cut) {
        // Other threads have read what lay here in the batch before: writing it takes their copy away, which takes a while.
        for (size_t at = 0; at < sizeof draw; at += lineOfCache)
            __builtin_prefetch(reinterpret_cast<std::byte *>(&draw + drawsAhead) + at, 1);
        draw.state = keep(kind);
        copyBusy(draw.busy, rs);
        top = empty() ? judge.reached.top : std::min(top, judge.reached.top);
        bottom = empty() ? judge.reached.bottom : std::max(bottom, judge.reached.bottom);
        rows[count++] = judge.reached;
        nanoseconds += judge.cost();
        pixels += judge.area();
    }
    if (fate != Fate::whole)
        leaveScratch(kind);
    return fate;
}

int Batch::divide(int threads)
{
    const int32_t height = bottom - top;
    const bool layers = pixels > 2.0 * height * double(1 << judge.target.shift);
    bandRows = layers ? std::max(fewestRows, bandBytes / (4 << judge.target.shift)) : height;
    if (threads > 1) {
        const int32_t bands = (layers ? bandsPerThread : fewBandsPerThread) * threads;
        bandRows = std::min(bandRows, std::max(fewestRows, (height + bands - 1) / bands));
    }
    return (height + bandRows - 1) / bandRows;
}

void Batch::drawBand(int band) const
{
    const int32_t begin = top + band * bandRows;
    drawRows(begin, std::min(begin + bandRows, bottom));
}

void Batch::drawRows(int32_t from, int32_t to) const { bands::drawRows({rows.data(), count}, draws.data(), from, to); }

} // namespace bands
