#include "hold.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace bench {

namespace {

constexpr char mark[] = "NINEFOLD_BENCH_HELD";

struct Variable {
    const char *name, *value;
};
// What else is held: the library by its choice of set, libyuv and Blend2D by calls. Mesa's rasteriser can only be held to less than
// v3, and is left out. The others have no code beyond AVX2.
constexpr Variable variables[] = {{"OPENCV_CPU_DISABLE", "AVX512-SKX"},
                                  {"GLIBC_TUNABLES", "glibc.cpu.hwcaps=-AVX512F,-AVX512VL,-AVX512BW,-AVX512DQ,-AVX512CD"}};

} // namespace

bool isHeldToV3() { return std::getenv(mark); }

void holdToV3(char **argv)
{
    if (isHeldToV3())
        return;
    setenv(mark, "v3", 1);
    for (const Variable &variable : variables)
        if (hasMoreThanV3()) // OpenCV complains where there is nothing to switch off
            setenv(variable.name, variable.value, 1);
    execv("/proc/self/exe", argv);
    std::fprintf(stderr, "ninefold-bench: cannot start itself anew for --v3: %s\n", std::strerror(errno));
    std::exit(1);
}

bool hasMoreThanV3()
{
#if defined(__x86_64__) || defined(__i386__)
    return __builtin_cpu_supports("avx512f");
#else
    return false;
#endif
}

} // namespace bench
