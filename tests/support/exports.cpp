#include "exports.h"

#include <algorithm>
#include <cstring>

#include "core/catalogue.h"
#include "host.h"
#include "pools.h"
#include "random.h"
#include "reference/reference.h"

#include <ninefold/ninefold.h>

namespace support {

namespace {

std::string checkCodes()
{
    const std::vector<uint32_t> expected = reference::catalogue();
    const auto codes = ninefold::makeCodes();
    if (!std::equal(codes.begin(), codes.end(), expected.begin(), expected.end()))
        return "the catalogues differ\n";
    for (const uint32_t code : codes) {
        const auto axes = ninefold::axesOf(code);
        const unsigned long made = CreateDrawCodeSub(axes.pers, axes.rule, axes.prescale, axes.filter, axes.rectOpt, axes.shahei,
                                                     axes.blend, axes.multi, axes.shape);
        const bool colours = ninefold::hasColoursOnly(axes.filter); // have no perspective, but codes with it
        if (made != code && !(axes.pers && colours))
            return "CreateDrawCodeSub does not make code " + std::to_string(code) + "\n";
        if (SearchDrawFunc(code) == nullptr)
            return "SearchDrawFunc does not find code " + std::to_string(code) + "\n";
    }
    return "";
}

std::string checkTables()
{
    std::string text;
    for (int index = 0; index < 262; ++index) {
        SetPresetDrawMask(index);
        const auto rows = reference::stipple(index);
        if (!std::equal(rows.begin(), rows.end(), rs.drawMask))
            text += "stipple " + std::to_string(index) + "\n";
    }
    for (uint32_t word = 0; word < 0x10000; ++word) {
        const std::vector<int8_t> list = reference::runList(static_cast<uint16_t>(word));
        if (std::memcmp(GetShaheiTable()[word], list.data(), list.size()) != 0)
            text += "run list " + std::to_string(word) + "\n";
    }
    return text;
}

std::string checkTexture(Random &random)
{
    const int log2Width = random.between(0, 9), log2Height = random.between(0, 12 - std::max(log2Width, 3));
    Texture *const texture = CreateTexture(1ul << log2Width, 1ul << log2Height);
    const uint32_t pixels = texture->width * texture->height;
    const std::byte *const pool = poolBytes(random.pick({noisePool, solidPool, extremePool, runPool, alphaPool, stripePool}));
    std::memcpy(texture->pixels, pool + 4 * random.below(poolWords - pixels), 4 * size_t{pixels});

    std::string text;
    const std::string size = std::to_string(texture->width) + " by " + std::to_string(texture->height);
    CreateRunlengthMap(texture);
    CreateZeroPixelMap(texture);
    CreateMipmapTexture(texture);
    const std::vector<int8_t> runs = reference::runLengthMap(*texture);
    if (std::memcmp(texture->runlengthMap, runs.data(), runs.size()) != 0)
        text += "run-length map of a texture of " + size + "\n";
    const std::vector<uint16_t> zeros = reference::zeroPixelMap(*texture);
    if (std::memcmp(texture->zeroPixelMap, zeros.data(), 2 * zeros.size()) != 0)
        text += "zero-pixel map of a texture of " + size + "\n";
    if (texture->mipCount != static_cast<uint32_t>(std::min(log2Width, log2Height)) + 1)
        text += "levels of a texture of " + size + "\n";
    for (uint32_t level = 1; level < texture->mipCount; ++level) {
        const Texture &made = *texture->mip[level];
        std::vector<uint32_t> expected(made.width * made.height);
        Texture filled;
        filled.pixels = expected.data();
        filled.width = made.width;
        filled.height = made.height;
        filled.log2Width = made.log2Width;
        filled.log2Height = made.log2Height;
        reference::fillMipLevel(*texture->mip[level - 1], filled);
        if (std::memcmp(made.pixels, expected.data(), 4 * expected.size()) != 0)
            text += "level " + std::to_string(level) + " of a texture of " + size + "\n";
    }
    DeleteTexture(texture);
    return text;
}

std::string checkOperators(Random &random)
{
    const auto factor = [&random] { return random.percent(70) ? random.below(257) : random.word(); };
    rs.blendAlpha = factor();
    rs.blendAlphaRgb = factor();
    rs.prescale = factor();
    rs.prescaleMulti = factor();
    rs.writeMask = random.word();
    reference::setOperatorState(&rs);
    const uint32_t *const words = reinterpret_cast<const uint32_t *>(poolBytes(random.pick({noisePool, solidPool, extremePool})));
    for (int number = libraryOperators; number < operatorCount; ++number) {
        const OperatorPair pair = operatorPair(number);
        for (int i = 0; i < 64; ++i) {
            const uint32_t first = words[random.below(poolWords)], second = words[random.below(poolWords)];
            if (pair.library(first, second) != pair.reference(first, second))
                return "operator " + operatorName(number) + "\n";
        }
    }

    // setters take any number
    const int32_t value = random.percent(70) ? random.between(-3, 40) : static_cast<int32_t>(random.word());
    const int bank = random.between(0, 1);
    SetPrescaleMultiMode(bank);
    SetBlendModeMulti(value);
    rs.blendFunc = nullptr;
    SetBlendMode(value);
    const auto differ = [&](PixelOperator library, PixelOperator expected) {
        const uint32_t first = random.word(), second = random.word();
        return (library == nullptr) != (expected == nullptr) ||
               (library != nullptr && library(first, second) != expected(first, second));
    };
    if (differ(rs.multiFunc, reference::multiOperator(value, bank == 1)) || differ(rs.blendFunc, reference::blendOperator(value)))
        return "operator of number " + std::to_string(value) + "\n";
    return "";
}

} // namespace

std::string checkExports(uint64_t seed, uint32_t rounds)
{
    startLibrary();
    RenderState before;
    std::memcpy(&before, &rs, sizeof rs);
    std::string text = checkCodes() + checkTables();
    Random random(seed);
    for (uint32_t round = 0; round < rounds && text.size() < 4000; ++round) {
        text += checkTexture(random);
        text += checkOperators(random);
    }
    reference::setOperatorState(nullptr);
    std::memcpy(&rs, &before, sizeof rs);
    return text;
}

} // namespace support
