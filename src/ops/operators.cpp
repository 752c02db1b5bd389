#include "ops/operators.h"

#include <cstddef>
#include <utility>

namespace ninefold::ops {
namespace {

template <int op>
uint32_t function(uint32_t first, uint32_t second)
{
    return apply<op, true>(first, second, {});
}

template <int... index>
constexpr std::array<PixelOperator, opCount> allFunctions(std::integer_sequence<int, index...>)
{
    return {function<index>...};
}

PixelOperator pointerTo(Op op) { return operators[size_t(indexOf(op))]; }

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
    const int32_t value = static_cast<int32_t>(mode);
    if (value <= NINEFOLD_BLEND_CUSTOM) {
        rs.blendMode = value;
    } else if (value >= NINEFOLD_BLEND_LUMA_SRC && value <= NINEFOLD_BLEND_DST) {
        rs.blendMode = NINEFOLD_BLEND_CUSTOM;
        rs.blendFunc = pointerTo(blendOp(value));
    } else {
        rs.blendMode = NINEFOLD_BLEND_COPY;
        rs.blendFunc = pointerTo(blendOp(NINEFOLD_BLEND_COPY));
    }
}

void SetBlendModeMulti(long value)
{
    rs.blendModeMulti = static_cast<int32_t>(value);
    rs.multiFunc = pointerTo(multiOp(rs.prescaleMultiMode != 0, rs.blendModeMulti));
}

void SetPrescaleMultiMode(long mode)
{
    rs.prescaleMultiMode = static_cast<int32_t>(mode);
    SetBlendModeMulti(rs.blendModeMulti);
}
