// Draw codes and the look-up of their kernels.
#include <ninefold/draw_code.h>

#include "core/catalogue.h"
#include "kernels/sets.h"
#include "kernels/table.h"

#include <utility>

namespace ninefold {
namespace {

constexpr uint32_t bucketCount = 0x8000;

// Zero until MakeDrawFuncTable.
DrawFuncRecord records[recordCount];
DrawFuncRecord *buckets[bucketCount];
uint32_t crcTable[256];
bool crcTableMade;

// The last code found. Code 0 with a null function at first.
uint32_t cachedCode;
DrawFunc cachedFunc;

[[gnu::always_inline]] inline uint32_t packed(uint32_t pers, uint32_t rule, uint32_t prescale, uint32_t filter, uint32_t rectOpt,
                                              uint32_t shahei, uint32_t blend, uint32_t multi, uint32_t shape)
{
    // Without branches: a host's modes follow no pattern.
    const uint32_t line = shape == NINEFOLD_SHAPE_LINE, rectangle = shape == NINEFOLD_SHAPE_RECTANGLE,
                   triangle = shape == NINEFOLD_SHAPE_TRIANGLE, colours = hasColoursOnly(int(filter));
    const uint32_t noRectOpt = 0u - (line | triangle | (rectangle & colours));
    const uint32_t noMulti = 0u - (line | colours);
    const uint32_t noPers = 0u - ((shape != NINEFOLD_SHAPE_TRIANGLE) | colours);
    rectOpt = (rectOpt & ~noRectOpt) | (noRectOpt & NINEFOLD_RECT_NONE);
    multi = (multi & ~noMulti) | (noMulti & NINEFOLD_MULTI_NONE);
    pers &= ~noPers;
    // Values too wide for their field spill to the left.
    return pers << 27 | rule << 26 | prescale << 25 | filter << 21 | rectOpt << 18 | shahei << 15 | blend << 10 | multi << 8 |
           shape | 0x68;
}

uint32_t hashOf(uint32_t code)
{
    uint32_t crc = ~0u;
    for (int k = 0; k < 4; ++k, code >>= 8)
        crc = crc << 8 ^ crcTable[crc >> 24 ^ (code & 0xFF)];
    return ~crc;
}

const DrawFuncRecord *find(uint32_t code)
{
    const DrawFuncRecord *record = buckets[hashOf(code) & (bucketCount - 1)];
    while (record && record->code != code)
        record = record->next;
    return record;
}

template <size_t... family>
void fillRecords(std::index_sequence<family...>)
{
    const DrawFunc *next[] = {KernelsOf<Family(family)>::first...};
    DrawFuncRecord *record = records;
    forEachCombination([&](const Axes &a) {
        const uint32_t code = codeOf(a), hash = hashOf(code);
        DrawFuncRecord *&head = buckets[hash & (bucketCount - 1)];
        *record = {head, code, hash, *next[size_t(familyOf(a))]++};
        head = record++;
    });
}

} // namespace
} // namespace ninefold

using namespace ninefold;

unsigned long CreateDrawCodeSub(long pers, long rule, long prescale, long filter, long rectOpt, long shahei, long blend,
                                long multi, long shape)
{
    return packed(pers, rule, prescale, filter, rectOpt, shahei, blend, multi, shape);
}

unsigned long CreateDrawCode(void)
{
    return packed(rs.persMode, rs.ruleAlphaMode, rs.prescaleMode, rs.filterMode, rs.rectOptMode, rs.shaheiMode, rs.blendMode,
                  rs.multiMode, rs.shapeMode);
}

void MakeDrawFuncTable(void)
{
    useSet(usableSets() - 1);
    if (!crcTableMade) {
        crcTableMade = true;
        for (uint32_t byte = 0; byte < 256; ++byte)
            crcTable[byte] = crcEntry(byte);
    }
    for (DrawFuncRecord *&head : buckets)
        head = nullptr;
    fillRecords(std::make_index_sequence<size_t(Family::count)>());
}

DrawFunc SearchDrawFunc(unsigned long drawCode)
{
    // By the two low bits: the flat line, the unit-scale copy, the plain textured triangle.
    static constexpr uint32_t defaults[] = {0xDC0368, 0x369, 0x1C036A};
    uint32_t code = uint32_t(drawCode);
    for (bool isDefault = false;; isDefault = true) {
        if (code == cachedCode)
            return cachedFunc;
        if (const DrawFuncRecord *record = find(code)) {
            cachedCode = code;
            return cachedFunc = record->func;
        }
        if ((code & 3) == 3 || isDefault) // only before MakeDrawFuncTable is a default not found
            return nullptr;
        code = defaults[code & 3];
    }
}
