#include "ops/operators.h"

#include <cstddef>
#include <utility>

namespace ninefold::ops {
namespace {

template <Op op>
uint32_t function(uint32_t first, uint32_t second)
{
    return apply<op>(first, second, {rs.blendAlpha, rs.blendAlphaRgb, rs.prescaleMulti, rs.writeMask});
}

template <int... index>
constexpr std::array<PixelOperator, opCount> allFunctions(std::integer_sequence<int, index...>)
{
    return {function<static_cast<Op>(index)>...};
}

PixelOperator pointerTo(Op op) { return operators[static_cast<size_t>(op)]; }

} // namespace

constinit const std::array<PixelOperator, opCount> operators = allFunctions(std::make_integer_sequence<int, opCount>());

int operatorIndex(PixelOperator function)
{
    for (int index = 0; index < opCount; ++index) {
        if (operators[static_cast<size_t>(index)] == function)
            return index;
    }
    return -1;
}

} // namespace ninefold::ops

using namespace ninefold::ops;

void SetBlendMode(long mode)
{
    constexpr Op custom[] = {Op::lumaSrc, Op::lumaDst, Op::xorWord, Op::andWord, Op::orWord, Op::dst}; // 14 to 19

    const int32_t value = static_cast<int32_t>(mode);
    if (value <= 12) {
        rs.blendMode = value;
    } else if (value >= 14 && value <= 19) {
        rs.blendMode = 12;
        rs.blendFunc = pointerTo(custom[value - 14]);
    } else {
        rs.blendMode = 0;
        rs.blendFunc = pointerTo(Op::src);
    }
}

void SetBlendModeMulti(long value)
{
    rs.blendModeMulti = static_cast<int32_t>(value);
    const uint32_t row = static_cast<uint32_t>(rs.blendModeMulti);
    rs.multiFunc = pointerTo(multiOperators[rs.prescaleMultiMode != 0][row < 20 ? row : 0]);
}

void SetPrescaleMultiMode(long mode)
{
    rs.prescaleMultiMode = static_cast<int32_t>(mode);
    SetBlendModeMulti(rs.blendModeMulti);
}
