#include "entries.h"

#include "kernels/plan.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace layer {
namespace {

// In table order. Worked out when first asked for: the compiler would take long over it.
const std::array<uint32_t, recordCount> &codes()
{
    static const std::array<uint32_t, recordCount> list = ninefold::makeCodes();
    return list;
}

// Records by code, for the search.
using ByCode = std::array<std::pair<uint32_t, uint16_t>, recordCount>;
const ByCode &byCode()
{
    static const ByCode list = [] {
        ByCode sorted;
        for (uint32_t k = 0; k < recordCount; ++k)
            sorted[k] = {codes()[k], uint16_t(k)};
        std::sort(sorted.begin(), sorted.end());
        return sorted;
    }();
    return list;
}

DrawFunc kernels[recordCount]; // those that were handed out

// Above 0 calls are not told: inside of a call, and while the companion does not listen.
int depth;
bool listens = true;
struct Inside {
    Inside() { ++depth; }
    ~Inside() { --depth; }
    Inside(const Inside &) = delete;
    Inside &operator=(const Inside &) = delete;
};

// Three kernels of the table are exported: the host finds the same function both ways.
DrawFunc entryOf(Id record)
{
    switch (codeOf(record)) {
    case codeOf(ninefold::namedRuns): return DrawRectTexRunlen_TEST;
    case codeOf(ninefold::namedLine): return DrawLineTest;
    case codeOf(ninefold::namedPers): return DrawPolygon_PERS_TEST;
    default: break;
    }
    static constexpr auto shares = []<Id... share>(std::integer_sequence<Id, share...>)
    {
        return std::array{&Entries<share>::first...};
    }
    (std::make_integer_sequence<Id, shareCount>());
    return (*shares[record / shareSize])[record % shareSize];
}

DrawFunc entryFor(unsigned long drawCode)
{
    static uint32_t lastCode;
    static DrawFunc lastEntry;
    const DrawFunc kernel = own_SearchDrawFunc(drawCode);
    if (!kernel)
        return nullptr;
    uint32_t code = uint32_t(drawCode);
    if (code == lastCode && lastEntry)
        return lastEntry;
    int record = recordOf(code);
    if (record < 0)
        record = recordOf(defaultCode(code));
    lastCode = code;
    kernels[record] = kernel;
    return lastEntry = entryOf(Id(record));
}

template <class T>
uint64_t wordOf(T value)
{
    if constexpr (std::is_pointer_v<T>)
        return uintptr_t(value);
    else
        return uint64_t(value);
}

template <Function function, class Own, class... Arguments>
auto around(Own own, Arguments... arguments)
{
    using Result = decltype(own(arguments...));
    if (depth > 0)
        return own(arguments...);
    const Inside inside;
    Call call{idOf(function), {wordOf(arguments)...}, 0};
    if (!before(call))
        return Result();
    if constexpr (std::is_void_v<Result>) {
        own(arguments...);
        after(call);
    } else {
        const Result result = own(arguments...);
        call.result = wordOf(result);
        after(call);
        return result;
    }
}

// The draw functions are called through the table by most hosts, so they take the short way too.
template <Function function>
[[gnu::noinline]] void tellDraw(DrawFunc own)
{
    const Inside inside;
    Call call;
    call.id = idOf(function);
    if (!before(call))
        return;
    own();
    after(call);
}
template <Function function>
void aroundDraw(DrawFunc own)
{
    if (depth > 0)
        return own();
    tellDraw<function>(own);
}

[[gnu::noinline]] void tellRecord(Id record)
{
    const Inside inside;
    Call call;
    call.id = record;
    if (!before(call))
        return;
    kernels[record]();
    after(call);
}

// What stands behind an export: the library's own function, but SearchDrawFunc hands out entries.
template <Function function, class F>
constexpr F *behind(F *own)
{
    if constexpr (function == Function::SearchDrawFunc)
        return entryFor;
    else
        return own;
}

} // namespace

void drawRecord(Id record)
{
    if (depth > 0) // a jump and no more, also where the companion does not listen
        return kernels[record]();
    tellRecord(record);
}

void listen(bool wanted)
{
    depth += int(listens) - int(wanted);
    listens = wanted;
}

int recordOf(uint32_t code)
{
    const auto found = std::lower_bound(byCode().begin(), byCode().end(), code,
                                        [](const auto &one, uint32_t wanted) { return one.first < wanted; });
    return found != byCode().end() && found->first == code ? found->second : -1;
}

uint32_t defaultCode(uint32_t code)
{
    static constexpr uint32_t defaults[] = {0xDC0368, 0x369, 0x1C036A, 0};
    return defaults[code & 3];
}

uint32_t codeOf(Id record) { return codes()[record]; }

DrawFunc ownKernel(Id record) { return kernels[record]; }

const char *functionName(Function function)
{
    static constexpr const char *names[] = {
#define NINEFOLD_NAME(name) #name,
        NINEFOLD_NAMED_DRAWS(NINEFOLD_NAME)
#undef NINEFOLD_NAME
#define NINEFOLD_NAME(result, name, parameters, arguments) #name,
            NINEFOLD_FUNCTIONS(NINEFOLD_NAME)
#undef NINEFOLD_NAME
    };
    return names[size_t(function)];
}

std::string nameOf(Id id)
{
    return isRecord(id) ? ninefold::nameOf(ninefold::axesOf(codeOf(id))) : functionName(Function(id - recordCount));
}

} // namespace layer

using layer::Function;

#define NINEFOLD_DRAW(name)                                                                                                      \
    void name(void) { layer::aroundDraw<Function::name>(own_##name); }
NINEFOLD_NAMED_DRAWS(NINEFOLD_DRAW)

// The arguments of one call behind another: (a, b) becomes , a, b.
#define NINEFOLD_ARGUMENTS(...) __VA_OPT__(, ) __VA_ARGS__
#define NINEFOLD_CALL(result, name, parameters, arguments)                                                                       \
    result name parameters                                                                                                       \
    {                                                                                                                            \
        return layer::around<Function::name>(layer::behind<Function::name>(own_##name) NINEFOLD_ARGUMENTS arguments);            \
    }
NINEFOLD_FUNCTIONS(NINEFOLD_CALL)
