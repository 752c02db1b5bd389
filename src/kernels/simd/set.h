// The parts of this instruction set, each piece made in a unit of its own.
#pragma once

#include "kernels/parts.h"

#include <array>

namespace ninefold::NINEFOLD_SET {

using Fronts = std::array<Front, FrontKey::count>;
using Seconds = std::array<Second, SecondKey::count>;
template <Reading reading>
struct PartsOf {
    static const Fronts fronts;
    static const Seconds seconds;
};

extern const std::array<Back, BackKey::count> backs[2];
extern const std::array<RowOperator, ops::opCount> operators[2];
extern const std::array<Block, Blocks::count> blocks;
extern const std::array<FusedSpan, Spans::count> fusedSpans;
extern const std::array<FusedSpan, MultiSpanKey::count> multiSpans;
extern const InstructionSet set;

} // namespace ninefold::NINEFOLD_SET
