#include "pixel.h"

#include <vector>

#include "operators.h"
#include "reference.h"

namespace reference {

Channels::Channels(uint32_t packed)
{
    for (int i = 0; i < 4; ++i)
        value[i] = fromWhole(static_cast<int32_t>(packed >> (24 - 8 * i) & 255));
}

uint32_t packedInRange(const Ramp (&colour)[4], int32_t distance)
{
    uint32_t result = 0;
    for (const Ramp &channel : colour)
        result = result << 8 | (static_cast<uint32_t>(channel.at(distance)) >> 16 & 255);
    return result;
}

// Each channel as a whole number of sixteen bits, put down where its eight bits belong; the upper eight run into the channel above,
// those of alpha out of the word.
uint32_t packedGouraud(const Ramp (&colour)[4], int32_t distance)
{
    uint64_t result = 0;
    int place = 24;
    for (const Ramp &channel : colour) {
        const uint64_t number = static_cast<uint32_t>(channel.at(distance)) / 65536;
        result |= number << place;
        place -= 8;
    }
    return static_cast<uint32_t>(result);
}

Form formOf(const Modes &modes)
{
    const bool isTriangle = modes.shape == triangle;
    switch (modes.filter) {
    case 1:
    case 4: return isTriangle || modes.option < 2 || modes.plane() ? Form::fourTexels : Form::stippled;
    case 2:
        if (modes.multi != 3)
            return Form::pointLevels;
        return !modes.rule && (isTriangle || modes.plane()) ? Form::pointBelow : Form::point;
    case 5: return isTriangle || modes.option == 1 || modes.plane() ? Form::fourLevels : Form::firstTexel;
    case 6: return Form::flat;
    case 7: return Form::gouraud;
    case 8: return Form::mosaic;
    default: return Form::point;
    }
}

// The fraction of u / depth in 32 bits, brought back to 16.16.
static int32_t perspective(int32_t scaled, int32_t depth, uint32_t shift)
{
    const uint32_t weight = static_cast<uint32_t>(depth);
    const uint64_t rest = static_cast<uint32_t>(scaled) % weight;
    return static_cast<int32_t>(static_cast<uint32_t>((rest << 32) / weight)) >> (shift + 1);
}

Position Painter::position(const SourceRow &from, int32_t distance) const
{
    const Position at{from.u.at(distance), from.v.at(distance)};
    if (!modes.pers)
        return at;
    const int32_t depth = row.depth.at(distance);
    return {perspective(at.u, depth, from.shiftU), perspective(at.v, depth, from.shiftV)};
}

uint32_t Painter::pointTexelOfRow(const Texture &texture, Position at) const
{
    return modes.shape == rectangle && modes.option == 1 ? pointTexelRowToZero(texture, at) : pointTexel(texture, at);
}

uint32_t Painter::blockTexel(const Texture &texture, Position at) const
{
    const int32_t column = at.u >> 16;
    if (modes.shape == rectangle && modes.option == 0)
        return texelAt(texture, quantised(wrapped(column, texture.width), state.mosaicSize1),
                       quantised(wrapped(at.v >> 16, texture.height), state.mosaicSize));
    const int32_t line = modes.shape == rectangle && modes.option == 1 ? whole(at.v) : at.v >> 16;
    return texelAt(texture, quantised(column, state.mosaicSize), quantised(line, state.mosaicSize));
}

// Columns of the second texture wrap before they are taken to a block, and have a block width of their own.
uint32_t Painter::secondBlockTexel(const Texture &texture, Position at) const
{
    const int32_t column = quantised(wrapped(at.u >> 16, texture.width), state.mosaicSize1);
    int32_t line = at.v >> 16;
    if (modes.shape == triangle || modes.option == 0)
        line = wrapped(line, texture.height);
    else if (modes.option == 1)
        line = whole(at.v);
    return texelAt(texture, column, quantised(line, state.mosaicSize));
}

int32_t Painter::ruleValue(int32_t distance) const
{
    return static_cast<int32_t>(texelAt(*state.tex2, whole(row.ruleU.at(distance)), whole(row.ruleV.at(distance))) & 255);
}

// Fetch, transparent test and multi: the source as it comes to prescale, or nothing where none is to be drawn.
std::optional<uint32_t> Painter::source(int32_t distance, int32_t behind) const
{
    if (form == Form::flat)
        return state.color[0];
    if (form == Form::gouraud)
        return packedGouraud(row.colour, distance);

    const Texture &texture = *row.source[0].texture;
    const Position at = position(row.source[0], sub(distance, behind));
    uint32_t centre;
    if (form == Form::mosaic)
        centre = blockTexel(texture, at);
    else if (form == Form::firstTexel)
        centre = firstTexel(texture, at);
    else if (form == Form::point || form == Form::pointLevels || form == Form::pointBelow)
        centre = pointTexelOfRow(texture, at);
    else
        centre = pointTexel(texture, at);
    if (centre == 0 && !modes.zeroIsDrawn())
        return std::nullopt;

    const uint32_t share = static_cast<uint32_t>(state.mipFrac);
    uint32_t first = centre;
    switch (form) {
    case Form::stippled: first = stippledTexel(texture, at, add(row.origin, distance)); break;
    case Form::fourTexels: first = FourTexels(at).mix(texture, at, modes.alphaBlend()); break;
    case Form::pointLevels: first = weighted(centre, share, pointTexelBelow(*state.mipTex, at), 255 - share); break;
    case Form::pointBelow: first = pointTexelBelow(*state.mipTex, at); break;
    case Form::fourLevels: {
        const FourTexels four(at);
        const uint32_t below =
            modes.shape == triangle ? four.mixBelowInTriangle(*state.mipTex, at, false) : four.mixBelow(*state.mipTex, at, false);
        first = weighted(four.mix(texture, at, false), share, below, 255 - share);
        break;
    }
    default: break;
    }

    uint32_t result = first;
    if (modes.multi == 0)
        result = withSecondTexture(centre, first, distance);
    else if (modes.multi == 1)
        result = state.multiFunc(first, packedInRange(row.colour, distance));
    else if (modes.multi == 2)
        result = state.multiFunc(first, state.color[0]);

    // Triangles of two point levels without rule throw the operator's result away.
    if (form == Form::pointLevels && modes.shape == triangle && !modes.rule)
        return first;
    return result;
}

// A zero in the second texture is no hole: the first goes on.
uint32_t Painter::withSecondTexture(uint32_t centre, uint32_t first, int32_t distance) const
{
    const Texture &texture = *row.source[1].texture;
    const Position at = position(row.source[1], distance);
    const uint32_t share = static_cast<uint32_t>(state.mipFrac1);
    switch (form) {
    case Form::mosaic: {
        const uint32_t second = secondBlockTexel(texture, at);
        return second == 0 ? first : state.multiFunc(first, second);
    }
    case Form::firstTexel: {
        const uint32_t second = firstTexel(texture, at);
        return second == 0 ? first : state.multiFunc(first, second);
    }
    case Form::stippled:
    case Form::fourTexels:
        if (pointTexel(texture, at) == 0)
            return first;
        return state.multiFunc(first, FourTexels(at).mix(texture, at, true));
    case Form::pointLevels: {
        const uint32_t second = pointTexelOfRow(texture, at);
        if (second == 0)
            return centre;
        if (modes.shape == triangle)
            return state.multiFunc(first, second);
        return state.multiFunc(first, weighted(second, share, pointTexelBelow(*state.mipTex1, at), 255 - share));
    }
    case Form::fourLevels: {
        if (pointTexel(texture, at) == 0)
            return first;
        const FourTexels four(at);
        const uint32_t below =
            modes.shape == triangle ? four.mixBelowInTriangle(*state.mipTex1, at, true) : four.mixBelow(*state.mipTex1, at, true);
        return state.multiFunc(first, levelsMixedWithAlpha(four.mix(texture, at, true), below, share));
    }
    default: {
        const uint32_t second = pointTexelOfRow(texture, at);
        return second == 0 ? first : state.multiFunc(first, second);
    }
    }
}

Outcome Painter::pixel(int32_t column, int32_t behind)
{
    const int32_t distance = sub(column, row.origin);
    const int32_t index = add(row.pixels, column);

    pixelInHand = index;
    const int32_t value = modes.rule ? ruleValue(distance) : 0;
    if (modes.rule && state.ruleThreshold >= value)
        return Outcome::refusedByRule;
    if (modes.zTest() && state.zBuffer[index] < (state.zRef & 255))
        return Outcome::dropped;
    if (modes.stippled() && (row.mask & 0x8000 >> (column & 15)) != 0)
        return Outcome::dropped;

    const std::optional<uint32_t> fetched = source(distance, behind);
    if (!fetched)
        return Outcome::dropped;
    uint32_t result = *fetched;
    if (modes.prescale)
        result = prescaled(modes.alphaBlend(), result, state.prescale);
    uint32_t &destination = state.dstPixels[index];
    if (modes.blend != 0)
        result = blended(modes.blend, destination, result);
    if (modes.rule && add(state.ruleThreshold, state.ruleWidth) > value)
        result = softEdge(state, destination, result, value);
    destination = result;
    return Outcome::written;
}

void Painter::span(int32_t left, int32_t right)
{
    if (modes.plane()) {
        words(left, right);
        return;
    }
    for (int32_t column = left; column < right; ++column)
        pixel(column);
}

namespace {

// The plane from some word on, as a list of bits.
class PlaneBits {
public:
    explicit PlaneBits(uint16_t *firstWord) : words(firstWord) {}

    bool operator[](int32_t bit) const { return words[bit / 16] / (32768 >> bit % 16) % 2 != 0; }
    void put(int32_t bit, bool taken)
    {
        const int32_t others = words[bit / 16] - ((*this)[bit] ? 32768 >> bit % 16 : 0);
        words[bit / 16] = static_cast<uint16_t>(others + (taken ? 32768 >> bit % 16 : 0));
    }

private:
    uint16_t *words;
};

} // namespace

// Shahei modes 1 and 2: word by word of the plane. What a row shares its first and last word with counts as taken for as long as
// the row is walked. Which pixels of a word are free is known before one of them is drawn, and they are marked after the last.
void Painter::words(int32_t left, int32_t right)
{
    if (left >= right)
        return;
    PlaneBits plane(state.shaheiPlane + row.plane);
    const int32_t begin = left % 16, end = begin + right - left; // of the row's own bits
    std::vector<int32_t> neighbours; // bits that are free, and not the row's
    for (int32_t bit = 0; bit < end || bit % 16 != 0; ++bit)
        if ((bit < begin || bit >= end) && !plane[bit]) {
            neighbours.push_back(bit);
            plane.put(bit, true);
        }

    const bool mapped = modes.option == 6;
    // filled rectangles mark also what the rule refused
    const bool markRefused = modes.shape == rectangle && !modes.textured();
    std::vector<int32_t> wanted, marked;
    for (int32_t word = 0; word < end; word += 16) {
        wanted.clear(), marked.clear();
        for (int32_t bit = word; bit < word + 16; ++bit) {
            const bool stippled = row.mask / (32768 >> bit % 16) % 2 != 0;
            const bool zero = mapped && state.tex0->zeroPixelMap[row.plane + bit / 16] / (32768 >> bit % 16) % 2 != 0;
            if (!plane[bit] && !stippled && !zero)
                wanted.push_back(bit);
        }
        for (const int32_t bit : wanted) {
            const int32_t column = left - begin + bit;
            const Outcome outcome = pixel(column);
            if (outcome == Outcome::dropped || (outcome == Outcome::refusedByRule && !markRefused))
                continue;
            marked.push_back(bit);
            if (modes.shahei == 2)
                state.zBuffer[add(row.pixels, column)] = static_cast<uint8_t>(state.zRef);
        }
        for (const int32_t bit : marked)
            plane.put(bit, true);
    }

    for (const int32_t bit : neighbours)
        plane.put(bit, false);
}

} // namespace reference
