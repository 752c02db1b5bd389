// What stands between host and library: every exported function, and every kernel that SearchDrawFunc hands out, tells the
// companion behind it of each call, before and after.
//
// A companion is a shared library with the library's soname and exports: the layer's objects, its own, which define before() and
// after(), and the library's own objects, in which the exported functions were renamed (own_ in front). rs stays one global. What
// the library calls inside itself is not told, nor what a host's operator calls in the middle of a draw.
#pragma once

#include "exports.h"

#include "core/catalogue.h"

#include <cstdint>

namespace layer {

// What was called: a record of the catalogue by its index in table order, or recordCount + a Function.
using Id = uint32_t;

enum class Function : uint8_t {
#define NINEFOLD_ENTRY(name) name,
    NINEFOLD_NAMED_DRAWS(NINEFOLD_ENTRY)
#undef NINEFOLD_ENTRY
#define NINEFOLD_ENTRY(result, name, parameters, arguments) name,
        NINEFOLD_FUNCTIONS(NINEFOLD_ENTRY)
#undef NINEFOLD_ENTRY
            count
};
constexpr Id recordCount = uint32_t(ninefold::recordCount);
constexpr Id idCount = recordCount + Id(Function::count);
constexpr int namedDrawCount = int(Function::MakeUVLShiftTable);

constexpr Id idOf(Function function) { return recordCount + Id(function); }
constexpr bool isRecord(Id id) { return id < recordCount; }
constexpr bool draws(Id id) { return id < recordCount + namedDrawCount; }

// A call, its arguments and afterwards its result as words. Those that draw have neither.
struct Call {
    Id id;
    uint64_t argument[9];
    uint64_t result;

    bool is(Function function) const { return id == idOf(function); }
    Texture *texture(int index = 0) const { return reinterpret_cast<Texture *>(uintptr_t(argument[index])); }
    Texture *made() const { return reinterpret_cast<Texture *>(uintptr_t(result)); }
};

// Of the companion. False leaves the call out: it then returns 0, and after() is not told.
bool before(Call &call);
void after(Call &call);

// Whether calls are told, as they are at first. Those that are not go straight through.
void listen(bool wanted);

// The record of a draw code, -1 if there is none, and of the code that is drawn in its place.
int recordOf(uint32_t code);
uint32_t defaultCode(uint32_t code);
uint32_t codeOf(Id record);

// The kernel behind an entry that was handed out.
DrawFunc ownKernel(Id record);

// The export's name; of records the readable name of the combination.
const char *functionName(Function function);
std::string nameOf(Id id);

} // namespace layer

// The library's own functions.
extern "C" {
#define NINEFOLD_OWN(name) extern decltype(name) own_##name;
NINEFOLD_NAMED_DRAWS(NINEFOLD_OWN)
#undef NINEFOLD_OWN
#define NINEFOLD_OWN(result, name, parameters, arguments) extern decltype(name) own_##name;
NINEFOLD_FUNCTIONS(NINEFOLD_OWN)
#undef NINEFOLD_OWN
}
