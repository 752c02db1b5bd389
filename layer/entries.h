// A function for each record of the catalogue, which calls drawRecord with its index: what hosts call in the place of kernels.
// entries.cpp is compiled once for each share of them, NINEFOLD_SHARE: so many functions in one unit keep a compiler busy.
#pragma once

#include "layer.h"

namespace layer {

void drawRecord(Id record);

constexpr Id shareSize = 3864, shareCount = 8;
static_assert(shareSize * shareCount == recordCount);

template <Id share>
struct Entries {
    static const DrawFunc *const first;
};

} // namespace layer
