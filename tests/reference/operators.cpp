#include "operators.h"

#include "reference.h"

namespace reference {

static const RenderState *factors = nullptr;

void setOperatorState(const RenderState *state) { factors = state; }

namespace {

// Channels are numbered from the low end: 0 blue, 1 green, 2 red, 3 alpha.
uint32_t channel(uint32_t pixel, int number) { return pixel >> (8 * number) & 255; }

uint32_t placed(uint32_t value, int number) { return value << (8 * number); }

// An operator that treats blue, green and red alike and apart; alpha 0.
template <typename Function>
uint32_t eachColour(uint32_t first, uint32_t second, Function function)
{
    uint32_t result = 0;
    for (int number = 0; number < 3; ++number)
        result |= placed(function(channel(first, number), channel(second, number)), number);
    return result;
}

uint32_t alphaMixed(uint32_t dst, uint32_t src)
{
    const uint32_t alpha = channel(src, 3);
    return eachColour(dst, src, [alpha](uint32_t d, uint32_t s) { return (s * alpha + d * (255 - alpha)) >> 8; });
}

uint32_t alphaMixedFast(uint32_t dst, uint32_t src)
{
    switch (channel(src, 3)) {
    case 255: return src;
    case 0: return dst;
    default: return alphaMixed(dst, src);
    }
}

// Constant factors are not limited to 255, so channels may run into each other: two packed words.
uint32_t constantMixed(uint32_t dst, uint32_t src, uint32_t alpha)
{
    const uint32_t rest = 255 - alpha;
    const uint32_t redBlue = (dst & 0xFF00FF) * rest + (src & 0xFF00FF) * alpha;
    const uint32_t green = (dst & 0xFF00) * rest + (src & 0xFF00) * alpha;
    return ((redBlue & 0xFF00FF00) | (green & 0xFF0000)) >> 8;
}

// Red and green lose the low bit of both operands and always come out odd; blue keeps its own. Alpha is 1.
uint32_t added(uint32_t dst, uint32_t src)
{
    uint32_t result = placed(1, 3);
    const uint32_t blue = channel(dst, 0) + channel(src, 0);
    result |= blue > 255 ? (blue & 255) | 0xFE : blue;
    for (int number = 1; number < 3; ++number) {
        const uint32_t sum = (channel(dst, number) & 0xFE) + (channel(src, number) & 0xFE);
        result |= placed(sum > 255 ? 255 : sum | 1, number);
    }
    return result;
}

// Bit 0 of each channel is set in both operands; a borrow from the channel below is taken off, and is what is left of a channel
// that goes below 0. Alpha wraps.
uint32_t subtracted(uint32_t dst, uint32_t src)
{
    uint32_t result = 0;
    int borrow = 0;
    for (int number = 0; number < 4; ++number) {
        const int difference = static_cast<int>(channel(dst, number) | 1) - static_cast<int>(channel(src, number) | 1) - borrow;
        const bool below = difference < 0;
        const int value = below && number < 3 ? borrow : difference & 255;
        result |= placed(static_cast<uint32_t>(value), number);
        borrow = below ? 1 : 0;
    }
    return result;
}

uint32_t multiplied(uint32_t dst, uint32_t src)
{
    return eachColour(dst, src, [](uint32_t d, uint32_t s) { return d * s >> 8; });
}

// A product of 128 and up gives 255; another is doubled, and takes the top bit of the channel below as its bit 0.
uint32_t multipliedTwice(uint32_t dst, uint32_t src)
{
    const uint32_t product = multiplied(dst, src);
    uint32_t result = 0;
    uint32_t carry = 0;
    for (int number = 0; number < 4; ++number) {
        const uint32_t value = channel(product, number);
        result |= placed(value >= 128 ? 255 : value * 2 | carry, number);
        carry = value >> 7;
    }
    return result;
}

uint32_t screened(uint32_t dst, uint32_t src)
{
    return placed(255, 3) | eachColour(dst, src, [](uint32_t d, uint32_t s) { return 255 - ((255 - d) * (255 - s) >> 8); });
}

uint32_t overlaid(uint32_t dst, uint32_t src)
{
    return eachColour(dst, src,
                      [](uint32_t d, uint32_t s) { return d < 128 ? (d * s >> 8) * 2 : 255 - ((255 - d) * (255 - s) >> 8) * 2; });
}

uint32_t merged(uint32_t dst, uint32_t src) { return (dst & ~factors->writeMask) | (src & factors->writeMask); }

uint32_t luma(uint32_t pixel)
{
    const uint32_t grey = (channel(pixel, 2) * 76 >> 8) + (channel(pixel, 1) * 150 >> 8) + (channel(pixel, 0) * 29 >> 8);
    return placed(grey, 0) | placed(grey, 1) | placed(grey, 2);
}

// The second operand of the second bank.
uint32_t dimmed(uint32_t second) { return scaleRgb(second, factors->prescaleMulti); }

uint32_t faded(uint32_t second) { return scaleAlpha(second, factors->prescaleMulti); }

uint32_t keepAlpha(uint32_t first, uint32_t value) { return (value & 0xFFFFFF) | (first & 0xFF000000); }

uint32_t multiResult(int value, bool secondBank, uint32_t first, uint32_t second)
{
    const uint32_t colour = secondBank ? dimmed(second) : second;
    const uint32_t weighing = secondBank ? faded(second) : second;
    switch (value) {
    case 1: return keepAlpha(first, alphaMixed(first, weighing));
    case 2: {
        const uint32_t mixed = constantMixed(first, second, factors->blendAlpha);
        return secondBank ? keepAlpha(first, mixed) : mixed;
    }
    case 3: return keepAlpha(first, constantMixed(first, second, factors->blendAlphaRgb));
    case 4: return keepAlpha(first, alphaMixedFast(first, weighing));
    case 5: return keepAlpha(first, added(first, colour));
    case 6: return keepAlpha(first, subtracted(first, colour));
    case 7: return keepAlpha(first, multiplied(first, colour));
    case 8: return keepAlpha(first, multipliedTwice(first, colour));
    case 9: return keepAlpha(first, screened(first, colour));
    case 10: return keepAlpha(first, overlaid(first, colour));
    case 11: return merged(first, secondBank ? colour | (second & 0xFF000000) : second);
    case 14: return keepAlpha(first, luma(colour));
    case 15: return keepAlpha(first, luma(first));
    case 16: return first ^ (colour & 0xFFFFFF);
    case 17: return first & (colour | 0xFF000000);
    case 18: return first | (colour & 0xFFFFFF);
    case 19: return first;
    default: return keepAlpha(first, colour);
    }
}

template <int value, bool secondBank>
uint32_t multi(uint32_t first, uint32_t second)
{
    return multiResult(value, secondBank, first, second);
}

template <bool secondBank>
PixelOperator multiOf(long value)
{
    static constexpr PixelOperator rows[20] = {
        multi<0, secondBank>,  multi<1, secondBank>,  multi<2, secondBank>,  multi<3, secondBank>,  multi<4, secondBank>,
        multi<5, secondBank>,  multi<6, secondBank>,  multi<7, secondBank>,  multi<8, secondBank>,  multi<9, secondBank>,
        multi<10, secondBank>, multi<11, secondBank>, multi<0, secondBank>,  multi<0, secondBank>,  multi<14, secondBank>,
        multi<15, secondBank>, multi<16, secondBank>, multi<17, secondBank>, multi<18, secondBank>, multi<19, secondBank>,
    };
    const int32_t row = static_cast<int32_t>(value);
    return rows[row >= 0 && row <= 19 ? row : 0];
}

} // namespace

uint32_t blended(int blend, uint32_t dst, uint32_t src)
{
    switch (blend) {
    case 1: return alphaMixed(dst, src);
    case 2: return constantMixed(dst, src, factors->blendAlpha);
    case 4: return alphaMixedFast(dst, src);
    case 5: return added(dst, src);
    case 6: return subtracted(dst, src);
    case 7: return multiplied(dst, src);
    case 8: return multipliedTwice(dst, src);
    case 9: return screened(dst, src);
    case 10: return overlaid(dst, src);
    case 11: return merged(dst, src);
    case 12: return factors->blendFunc(dst, src);
    default: return src;
    }
}

uint32_t scaleRgb(uint32_t pixel, uint32_t factor)
{
    const uint32_t redBlue = (pixel & 0xFF00FF) * factor;
    const uint32_t green = (pixel & 0xFF00) * factor;
    return (redBlue & 0xFF00FF00) >> 8 | (green & 0xFF0000) >> 8;
}

uint32_t scaleAlpha(uint32_t pixel, uint32_t factor)
{
    return placed(channel(pixel, 3) * factor >> 8 & 255, 3) | (pixel & 0xFFFFFF);
}

uint32_t prescaled(bool alphaBlend, uint32_t src, uint32_t factor)
{
    return alphaBlend ? scaleAlpha(src, factor) : scaleRgb(src, factor) | (src & 0xFF000000);
}

uint32_t weighted(uint32_t first, uint32_t firstWeight, uint32_t second, uint32_t secondWeight)
{
    const uint32_t redBlue = (first & 0xFF00FF) * firstWeight + (second & 0xFF00FF) * secondWeight;
    const uint32_t green = (first & 0xFF00) * firstWeight + (second & 0xFF00) * secondWeight;
    return ((redBlue & 0xFF00FF00) + (green & 0xFF0000)) >> 8;
}

uint32_t softEdge(const RenderState &state, uint32_t dst, uint32_t src, int32_t ruleValue)
{
    const uint32_t above = static_cast<uint32_t>(ruleValue) - static_cast<uint32_t>(state.ruleThreshold);
    uint32_t weight = (above << 8) / static_cast<uint32_t>(state.ruleWidth);
    if (state.ruleCurve == 1)
        weight = 255 - ((255 - weight) * (255 - weight) >> 8);
    else if (state.ruleCurve == 2)
        weight = weight * weight >> 8;
    return constantMixed(dst, src, weight);
}

PixelOperator blendOperator(long mode)
{
    const int32_t value = static_cast<int32_t>(mode);
    if (value < 13)
        return nullptr;
    switch (value) {
    case 14: return [](uint32_t, uint32_t src) { return luma(src); };
    case 15: return [](uint32_t dst, uint32_t) { return luma(dst); };
    case 16: return [](uint32_t dst, uint32_t src) { return dst ^ src; };
    case 17: return [](uint32_t dst, uint32_t src) { return dst & src; };
    case 18: return [](uint32_t dst, uint32_t src) { return dst | src; };
    case 19: return [](uint32_t dst, uint32_t) { return dst; };
    default: return [](uint32_t, uint32_t src) { return src; };
    }
}

PixelOperator multiOperator(long value, bool secondBank) { return secondBank ? multiOf<true>(value) : multiOf<false>(value); }

} // namespace reference
