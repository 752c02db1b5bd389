#include "host.h"

#include "reference/reference.h"

#include <ninefold/draw_code.h>

namespace support {

Calls calls;
Sight sight;

namespace {

uint32_t record(uint64_t who, uint32_t first, uint32_t second, uint64_t seen = 0)
{
    ++calls.count;
    uint64_t digest = calls.digest ^ seen ^ (static_cast<uint64_t>(first) << 32 | second);
    digest = (digest + who) * 0x9E3779B97F4A7C15;
    digest ^= digest >> 29;
    calls.digest = digest;
    return first ^ (second << 9 | second >> 23) ^ static_cast<uint32_t>(digest >> 40);
}

uint32_t hostMultiOperator(uint32_t first, uint32_t second) { return record(0xA11, first, second); }

uint32_t hostBlendOperator(uint32_t first, uint32_t second) { return record(0xB1E0, first, second); }

// The pixels to the left and above, the pixel itself, and one further back, farther from call to call.
uint64_t look()
{
    const size_t call = calls.count;
    if (sight.byReference)
        sight.places.resize(call + 1, reference::pixelInHand);
    if (call >= sight.places.size()) // more calls than the reference made, which is found out by their number
        return 0;
    const int64_t here = sight.places[call];
    uint64_t seen = 0;
    for (const int64_t place : {here - 1, here - sight.pitch, here, here - 2 - static_cast<int64_t>(call % 300)}) {
        seen *= 0x9E3779B97F4A7C15;
        if (place >= sight.firstPixel && place < sight.endPixel)
            seen += sight.pixels[place];
        if (place >= sight.firstPriority && place < sight.endPriority)
            seen += static_cast<uint64_t>(sight.priorities[place]) << 40;
    }
    return seen;
}

uint32_t watchingMultiOperator(uint32_t first, uint32_t second) { return record(0xA11, first, second, look()); }

uint32_t watchingBlendOperator(uint32_t first, uint32_t second) { return record(0xB1E0, first, second, look()); }

OperatorPair pairs[pairCount];

} // namespace

OperatorPair operatorPair(int number) { return pairs[number]; }

std::string operatorName(int number)
{
    if (number == nullOperator)
        return "null";
    if (number == hostMulti)
        return "host's multi";
    if (number == hostBlend)
        return "host's blend";
    if (number == watchingMulti)
        return "host's multi that watches";
    if (number == watchingBlend)
        return "host's blend that watches";
    if (number >= blendOperators)
        return "blend " + std::to_string(number - blendOperators + 13);
    const int value = number - multiOperators;
    return "multi " + std::to_string(value % 20) + (value < 20 ? "" : ", second bank");
}

void startLibrary()
{
    static bool started = false;
    if (started)
        return;
    started = true;
    MakeUVLShiftTable();
    MakeShaheiRunlengthTbl();
    MakeDrawFuncTable();
    MakeDrawMaskTable();

    pairs[hostMulti] = {hostMultiOperator, hostMultiOperator};
    pairs[hostBlend] = {hostBlendOperator, hostBlendOperator};
    pairs[watchingMulti] = {watchingMultiOperator, watchingMultiOperator};
    pairs[watchingBlend] = {watchingBlendOperator, watchingBlendOperator};
    for (int bank = 0; bank < 2; ++bank)
        for (int value = 0; value < 20; ++value) {
            SetPrescaleMultiMode(bank);
            SetBlendModeMulti(value);
            pairs[multiOperators + 20 * bank + value] = {rs.multiFunc, reference::multiOperator(value, bank == 1)};
        }
    for (int mode = 13; mode <= 20; ++mode) {
        SetBlendMode(mode);
        pairs[blendOperators + mode - 13] = {rs.blendFunc, reference::blendOperator(mode)};
    }
}

} // namespace support
