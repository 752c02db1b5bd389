// Drawing a recorded draw between two rows. What is declared here is compiled with the second copy of the kernels (thread_state.h)
// and may run on any thread.
#pragma once

#include "layer.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace bands {

// What a draw needs where its clip rectangle is cut into bands, so that a band's pixels come out as they do uncut.
enum class Mend : uint8_t {
    none,
    lineEnd, // the end pixel of a line, which is left out, is left out of every band
    skippedRows, // of a line table: stipple and rule rows go on from where the rows above have left them
    lineLevels, // of a line table: weights of mip levels too
};

// The fields that differ from draw to draw most: color, vertex, uv0 and tex0, which lie side by side.
constexpr size_t busyBegin = offsetof(RenderState, color), busyEnd = offsetof(RenderState, uv1);
struct BusyFields {
    std::byte bytes[busyEnd - busyBegin];
};

// A draw as it was recorded: two lines of the cache, which one thread writes and others read.
struct alignas(64) Draw {
    DrawFunc kernel; // of the second copy
    const RenderState *state; // rs as it stood, but for its busy fields; operators are those of the second copy
    Mend mend;
    bool levels : 1, next : 1, marks : 1, second : 1; // of the kernel's frame, where rows of a line table are passed
    bool leaves : 1; // the kernel changes rs
    BusyFields busy;
};
static_assert(sizeof(Draw) == 128);

// Of a draw: no row outside is read or written.
struct Rows {
    int32_t top, bottom;
};

// Draws the rows from top to bottom - 1 of all draws, in their order.
void drawRows(std::span<const Rows> rows, const Draw *draws, int32_t top, int32_t bottom);

// The second copy's kernel of a record in table order, function (null: it has none), and operator by index.
DrawFunc bandedKernel(uint32_t record);
DrawFunc bandedFunction(layer::Function function);
PixelOperator bandedOperator(int index);

// The tables and the instruction set of the library become those of the second copy.
void takeTables(const int32_t (&shifts)[256], const uint32_t (&steps)[32], int lanes);

// Of the fields that kernels read and write: a copy, and of those which are not busy whether they are the same.
void copyState(RenderState &to, const RenderState &from);
bool sameButBusy(const RenderState &a, const RenderState &b);
void copyBusy(BusyFields &to, const RenderState &from);

} // namespace bands
