// The operators that blendFunc and multiFunc can point to, without their texts. One list covers both kinds, since a host may put
// any of them behind either pointer; kernels ask operatorIndex which one a pointer is and draw with its row form.
#pragma once

#include <ninefold/axes.h>
#include <ninefold/render_state.h>

#include <array>
#include <cstddef>

namespace ninefold::ops {

// Blends that are weighed by an alpha. Their sources have all four channels, and prescale scales their opacity.
constexpr bool weighsByAlpha(int blend)
{
    return blend == NINEFOLD_BLEND_ALPHA || blend == NINEFOLD_BLEND_CONST_ALPHA || blend == NINEFOLD_BLEND_ALPHA_FAST;
}

// What an operator does. Those of the multi stage have the numbers of the blends that they are.
struct Op {
    int blend; // or NINEFOLD_MULTI_OP_CONST_ALPHA_RGB, which is none
    bool keepsAlpha; // alpha comes from the first operand
    bool scales; // the second operand is scaled by prescaleMulti first, as the source of the blend is by prescale

    constexpr bool operator==(const Op &) const = default;
};

// Behind blendFunc.
constexpr Op blendOp(int value) { return {value, false, false}; }

// Behind multiFunc, by bank and value of SetBlendModeMulti. Values without an operator are the second operand.
constexpr Op multiOp(bool bank, int value)
{
    switch (value) {
    case NINEFOLD_MULTI_OP_FIRST: return blendOp(value);
    case NINEFOLD_MULTI_OP_CONST_ALPHA: return {value, bank, false}; // reads no alpha that could be scaled
    case NINEFOLD_MULTI_OP_CONST_ALPHA_RGB:
    case NINEFOLD_MULTI_OP_LUMA_FIRST: return {value, true, false};
    case NINEFOLD_MULTI_OP_MERGE: return {value, false, bank};
    }
    const bool exists = (value > NINEFOLD_MULTI_OP_SECOND && value < NINEFOLD_MULTI_OP_MERGE) ||
                        (value >= NINEFOLD_MULTI_OP_LUMA_SECOND && value < NINEFOLD_MULTI_OP_FIRST);
    return {exists ? value : NINEFOLD_MULTI_OP_SECOND, true, bank};
}

constexpr int opCount = 39;

// Each is one function with an address of its own.
constexpr std::array<Op, opCount> opList = [] {
    std::array<Op, opCount> list{};
    int count = 0;
    const auto add = [&](Op op) {
        bool known = false;
        for (int k = 0; k < count; ++k)
            known |= list[size_t(k)] == op;
        if (!known)
            list[size_t(count++)] = op;
    };
    add(blendOp(NINEFOLD_BLEND_COPY));
    for (int value = NINEFOLD_BLEND_LUMA_SRC; value <= NINEFOLD_BLEND_DST; ++value)
        add(blendOp(value));
    for (bool bank : {false, true})
        for (int value = 0; value <= NINEFOLD_MULTI_OP_FIRST; ++value)
            add(multiOp(bank, value));
    return list;
}();

constexpr int indexOf(Op op)
{
    int index = 0;
    while (opList[size_t(index)] != op)
        ++index;
    return index;
}
static_assert(indexOf(multiOp(true, NINEFOLD_MULTI_OP_OR)) == opCount - 1);

// The functions, by their place in opList; each reads its factors from rs.
extern const std::array<PixelOperator, opCount> operators;

// The place of a pointer's operator, -1 for null and for a host's own function.
int operatorIndex(PixelOperator function);

} // namespace ninefold::ops
