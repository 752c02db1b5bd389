// A batch: the draws between two flushes, in their order, and what they were recorded with.
#pragma once

#include "rules.h"

#include <algorithm>

#include <cstddef>
#include <memory>
#include <vector>

namespace bands {

// Memory that is handed out piece by piece and taken back all at once.
class Arena {
public:
    void *take(size_t bytes);
    void clear() { used = at = 0; }
    size_t size() const { return used * blockSize; } // about

    template <class T>
    T *copy(const T *from, size_t count)
    {
        T *const to = static_cast<T *>(take(count * sizeof(T)));
        std::copy_n(from, count, to);
        return to;
    }

private:
    static constexpr size_t blockSize = size_t{1} << 20;
    struct Block {
        std::unique_ptr<std::byte[]> memory;
        size_t size;
    };
    std::vector<Block> blocks;
    size_t used = 0; // blocks
    size_t at = 0; // in the last one of these
};

class Batch {
public:
    bool empty() const { return count == 0; }
    bool full() const { return size() >= mostDraws || arena.size() >= mostBytes; }
    size_t size() const { return count; }
    double cost() const { return nanoseconds; } // of all, by their weights
    const Target &target() const { return judge.target; }

    // With rs as it stands, which is afterwards as the draw would leave it. Fate::whole: the caller draws it, on an empty batch.
    // Fate::cheap: the caller draws it; the batch is empty, and its cost is below `least`.
    Fate record(layer::Id id, float least);

    // Divides the rows into bands, for so many threads. Returns their number.
    int divide(int threads);
    // One of them: on any thread, in any order.
    void drawBand(int band) const;
    // Rows that need not be a band.
    void drawRows(int32_t from, int32_t to) const;
    void drawAll() const { drawRows(top, bottom); }
    int32_t firstRow() const { return top; }
    int32_t endRow() const { return bottom; }

    void clear();

private:
    static constexpr size_t mostDraws = 16384, mostBytes = size_t{64} << 20;
    // Of each draw, and some more.
    std::vector<Rows> rows; // apart, because every band looks at them all
    std::vector<Draw> draws;
    size_t count = 0;
    const RenderState *last = nullptr; // the state of the last draw that has rs as it was
    Arena arena;
    Judge judge;
    int32_t top = 0, bottom = 0, bandRows = 1;
    double nanoseconds = 0;
    double pixels = 0;

    const RenderState *keep(const Kind &kind);
};

} // namespace bands
