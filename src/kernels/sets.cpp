#include "kernels/sets.h"

#include "built_sets.h" // made by CMake
#include "kernels/parts.h"

#include <algorithm>
#include <iterator>

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace ninefold {

#define NINEFOLD_DECLARE_SET(name)                                                                                               \
    namespace name {                                                                                                             \
    extern const InstructionSet set;                                                                                             \
    }
NINEFOLD_BUILT_SETS(NINEFOLD_DECLARE_SET)

namespace {

#define NINEFOLD_SET_ADDRESS(name) &name::set,
constexpr const InstructionSet *sets[] = {NINEFOLD_BUILT_SETS(NINEFOLD_SET_ADDRESS)};

// How many lanes the processor has instructions for.
int usableLanes()
{
#if defined(__x86_64__)
    static int known;
    if (known)
        return known;
    known = 4;
    // Asked of the processor itself: the compiler's runtime would bring an initialiser along.
    const auto has = [](unsigned word, unsigned bits) { return (word & bits) == bits; };
    unsigned a, b, c, d;
    if (!__get_cpuid(1, &a, &b, &c, &d) || !has(c, bit_FMA | bit_MOVBE | bit_OSXSAVE | bit_AVX | bit_F16C))
        return known;
    unsigned saved; // which registers the system saves: 6 those of AVX, E6 those of AVX-512 too
    __asm__("xgetbv" : "=a"(saved), "=d"(d) : "c"(0));
    if (!has(saved, 0x6) || !__get_cpuid(0x80000001, &a, &b, &c, &d) || !has(c, bit_LZCNT) ||
        !__get_cpuid_count(7, 0, &a, &b, &c, &d) || !has(b, bit_AVX2 | bit_BMI | bit_BMI2))
        return known;
    return known = has(saved, 0xE6) && has(b, bit_AVX512F | bit_AVX512BW | bit_AVX512CD | bit_AVX512DQ | bit_AVX512VL) ? 16 : 8;
#else
    return 4;
#endif
}

} // namespace

constinit ActiveSets activeSets = {sets[0], sets[0], sets[0]};

const int setCount = int(std::size(sets));
#define NINEFOLD_SET_NAME(name) #name,
const char *const setNames[] = {NINEFOLD_BUILT_SETS(NINEFOLD_SET_NAME)};

int usableSets()
{
    const int lanes = usableLanes();
    return 1 + int(std::count_if(std::begin(sets) + 1, std::end(sets), [=](const auto *set) { return set->lanes <= lanes; }));
}

bool useSet(int index)
{
    if (index < 0 || index >= usableSets())
        return false;
    const auto upTo = [=](int lanes) {
        int at = index;
        while (at > 0 && sets[at]->lanes > lanes)
            --at;
        return sets[at];
    };
    activeSets = {sets[index], upTo(8), upTo(4)};
    return true;
}

} // namespace ninefold
