// Which instruction set the kernels draw with.
#include "kernels/parts.h"

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace ninefold {

#if defined(__x86_64__)

constinit const SetTable *activeSet = &v1::set;
const char *const setNames[setCount] = {"x86-64", "x86-64-v3", "x86-64-v4"};

int bestSet()
{
    __builtin_cpu_init();
    unsigned a, b, c = 0, d;
    unsigned extended = 0;
    __get_cpuid(1, &a, &b, &c, &d);
    __get_cpuid(0x80000001, &a, &b, &extended, &d);
    const bool movbe = c >> 22 & 1, f16c = c >> 29 & 1, lzcnt = extended >> 5 & 1;
    if (!(movbe && f16c && lzcnt && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
          __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2")))
        return 0;
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512cd") &&
                   __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl")
               ? 2
               : 1;
}

bool useSet(int index)
{
    static constexpr const SetTable *sets[setCount] = {&v1::set, &v3::set, &v4::set};
    if (index < 0 || index > bestSet())
        return false;
    activeSet = sets[index];
    return true;
}

#else

constinit const SetTable *activeSet = &v1::set;
const char *const setNames[setCount] = {"baseline"};
int bestSet() { return 0; }
bool useSet(int index) { return index == 0; }

#endif

} // namespace ninefold
