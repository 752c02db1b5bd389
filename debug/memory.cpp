#include "memory.h"

#include <algorithm>
#include <array>

#if defined(__linux__)
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <execinfo.h>
#include <sys/syscall.h>
#include <unistd.h>
#elif defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <cstdio>
#include <windows.h>
#elif defined(__EMSCRIPTEN__)
#include <emscripten/heap.h>
#endif

namespace debug {
namespace {

struct Region {
    uintptr_t begin, end;
    bool read, write, execute;
};

constexpr size_t page = 4096;

#if defined(__linux__)

// What the process has mapped, as of the last time that it was read.
std::vector<Region> &regions()
{
    static auto *const list = new std::vector<Region>;
    return *list;
}

void readRegions()
{
    std::vector<Region> &list = regions();
    list.clear();
    std::FILE *const file = std::fopen("/proc/self/maps", "re");
    if (!file)
        return;
    char line[512];
    while (std::fgets(line, sizeof line, file)) {
        char *rest; // of BEGIN-END RIGHTS ...
        const auto begin = uintptr_t(std::strtoull(line, &rest, 16));
        if (*rest != '-')
            continue;
        const auto end = uintptr_t(std::strtoull(rest + 1, &rest, 16));
        if (std::strlen(rest) < 4)
            continue;
        const char *const rights = rest + 1;
        const Region region{begin, end, rights[0] == 'r', rights[1] == 'w', rights[2] == 'x'};
        if (!list.empty() && list.back().end == begin && list.back().read == region.read && list.back().write == region.write &&
            list.back().execute == region.execute)
            list.back().end = end;
        else
            list.push_back(region);
    }
    std::fclose(file);
}

bool isListed(uintptr_t begin, uintptr_t end, bool Region::*right)
{
    for (const Region &region : regions())
        if (region.begin <= begin && begin < region.end && region.*right) {
            if (end <= region.end)
                return true;
            begin = region.end;
        }
    return false;
}

// The kernel copies a signal set from there before it finds that the request is none.
bool canRead(uintptr_t address)
{
    return syscall(SYS_rt_sigprocmask, ~0, address & ~uintptr_t{7}, nullptr, 8L) != 0 && errno == EINVAL;
}

bool ask(uintptr_t begin, uintptr_t end, bool write)
{
    const int before = errno;
    bool can = true;
    for (uintptr_t at = begin; can && at < end; at += page)
        can = canRead(at);
    errno = before;
    if (!can || !write)
        return can;
    if (isListed(begin, end, &Region::write))
        return true;
    readRegions();
    return isListed(begin, end, &Region::write);
}

#elif defined(_WIN32)

bool isRegion(uintptr_t begin, uintptr_t end, DWORD rights)
{
    while (begin < end) {
        MEMORY_BASIC_INFORMATION region;
        if (!VirtualQuery(reinterpret_cast<const void *>(begin), &region, sizeof region) || region.State != MEM_COMMIT ||
            (region.Protect & (PAGE_NOACCESS | PAGE_GUARD)) || !(region.Protect & rights))
            return false;
        begin = uintptr_t(region.BaseAddress) + region.RegionSize;
    }
    return true;
}
bool ask(uintptr_t begin, uintptr_t end, bool write)
{
    constexpr DWORD writable = PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return isRegion(begin, end, write ? writable : writable | PAGE_READONLY | PAGE_EXECUTE_READ);
}

#elif defined(__EMSCRIPTEN__)

// The module's memory is one block; its first page is left alone.
bool ask(uintptr_t begin, uintptr_t end, bool) { return begin >= page && end <= emscripten_get_heap_size(); }

#else

bool ask(uintptr_t, uintptr_t, bool) { return true; }

#endif

// Ranges, pages and blocks of pages that were there when they were last asked about. To ask costs more than a small draw. What is
// unmapped goes in large pieces, so a page is believed for longer while one of its block was asked about lately.
struct Answer {
    uintptr_t begin, end; // of pages and blocks begin alone is used
    uint32_t age;
    bool write;
};
std::array<Answer, 256> ranges;
std::array<Answer, 4096> pages;
std::array<Answer, 1024> blocks;
constexpr uintptr_t pagesPerBlock = 16;
constexpr uint32_t drawsPerAge = 64, agesOfPages = 32;
uint32_t currentAge = agesOfPages, drawsLeft = drawsPerAge;

bool isPageThere(uintptr_t number, bool write)
{
    Answer &known = pages[(number * 2 + write) % pages.size()];
    const bool is = known.begin == number && known.write == write;
    if (is && known.age == currentAge)
        return true;
    const uintptr_t block = number / pagesPerBlock;
    Answer &around = blocks[(block * 2 + write) % blocks.size()];
    if (is && currentAge - known.age < agesOfPages && around.begin == block && around.write == write && around.age == currentAge)
        return true;
    if (!ask(number * page, (number + 1) * page, write))
        return false;
    known = {number, 0, currentAge, write};
    around = {block, 0, currentAge, write};
    return true;
}

bool isThere(const void *memory, size_t size, bool write)
{
    const auto begin = uintptr_t(memory), end = begin + size;
    if (size == 0 || !begin || end < begin)
        return size == 0;
    Answer &range = ranges[(begin / 16 ^ size / 16 * 31 ^ write) % ranges.size()];
    if (range.begin == begin && range.end == end && range.write == write && range.age == currentAge)
        return true;
    for (uintptr_t at = begin / page; at <= (end - 1) / page; ++at)
        if (!isPageThere(at, write))
            return false;
    range = {begin, end, currentAge, write};
    return true;
}

} // namespace

bool isReadable(const void *begin, size_t size) { return isThere(begin, size, false); }
bool isWritable(const void *begin, size_t size) { return isThere(begin, size, true); }

bool isCode(const void *address)
{
#if defined(__linux__)
    const auto at = uintptr_t(address);
    if (isListed(at, at + 1, &Region::execute))
        return true;
    readRegions();
    return isListed(at, at + 1, &Region::execute);
#elif defined(_WIN32)
    return isRegion(uintptr_t(address), uintptr_t(address) + 1,
                    PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY);
#else
    return address != nullptr;
#endif
}

void ageMemory(bool now)
{
    if (now || --drawsLeft == 0) {
        currentAge += now ? agesOfPages : 1;
        drawsLeft = drawsPerAge;
    }
}

std::vector<std::string> hostStack()
{
    std::vector<std::string> stack;
#if defined(__linux__)
    void *frames[64];
    const int count = backtrace(frames, 64);
    Dl_info own{};
    dladdr(reinterpret_cast<const void *>(&hostStack), &own);
    for (int k = 0; k < count; ++k) {
        Dl_info info{};
        dladdr(frames[k], &info);
        if (stack.empty() && info.dli_fbase == own.dli_fbase)
            continue; // the twin itself
        char text[512];
        const auto offset = [&](const void *base) { return (unsigned long)(uintptr_t(frames[k]) - uintptr_t(base)); };
        if (info.dli_sname)
            std::snprintf(text, sizeof text, "%s+0x%lx (%s)", info.dli_sname, offset(info.dli_saddr), info.dli_fname);
        else
            std::snprintf(text, sizeof text, "%s+0x%lx", info.dli_fname ? info.dli_fname : "?", offset(info.dli_fbase));
        stack.emplace_back(text);
    }
#elif defined(_WIN32)
    const auto fileOf = [](const void *address) {
        HMODULE file = nullptr;
        GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<const char *>(address), &file);
        return file;
    };
    void *frames[62]; // as many as the oldest systems give
    const HMODULE own = fileOf(reinterpret_cast<const void *>(&hostStack));
    for (int k = 0, count = CaptureStackBackTrace(0, std::size(frames), frames, nullptr); k < count; ++k) {
        const HMODULE file = fileOf(frames[k]);
        if (stack.empty() && file == own)
            continue; // the twin itself
        char name[MAX_PATH] = "?", text[MAX_PATH + 32];
        if (file)
            GetModuleFileNameA(file, name, sizeof name);
        std::snprintf(text, sizeof text, "%s+0x%llx", name, (unsigned long long)(uintptr_t(frames[k]) - uintptr_t(file)));
        stack.emplace_back(text);
    }
#endif
    return stack;
}

} // namespace debug
