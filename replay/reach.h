// The memory that a draw reads and may write, as rows of bytes.
#pragma once

#include "footprint.h"

#include <span>
#include <vector>

namespace capture {

struct Rows {
    layer::Field field;
    bool written;
    bool pixels; // words of pixels
    uintptr_t begin;
    size_t rowBytes, rows, stride; // stride: from row to row
    uint8_t element; // bytes of what lies there

    uintptr_t end() const { return begin + (rows - 1) * stride + rowBytes; }
    uintptr_t row(size_t index) const { return begin + index * stride; }
};

// Rectangles of run-length maps may move back from where they begin, by so many pixels at most; 0 where no hole is as long.
uint32_t moveBack(const layer::Footprint &footprint, const layer::Needs &needs);

// Textures that are fetched from, then memory in the order of the footprint. rs is only looked at for its layout. `back`: pixels
// that lie before the first one and are looked at as well. None is empty.
void findRows(const layer::Footprint &footprint, uint32_t back, std::vector<Rows> &rows);

// The part of a source that the draw's corners lie in, as far as that is known and not much larger than what is drawn; without rows
// else. Textures that change between draws, as atlases do, are looked at there.
Rows partRead(const Rows &source, const layer::Footprint &footprint, const layer::Needs &needs);

} // namespace capture
