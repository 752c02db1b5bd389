// The state of one picture: a draw code, what its kernel reads, and what lies on the screen before. As text it is what the page has
// in its address and what the native program reads: KEY=VALUE joined by '&', for example
//
//     name=rect.stretch.bilinear.alpha&tex0=horse&vertex=20,16,256,236,176,256
//
// Every key but `name` may be left out: then it has the value that makes a picture of that combination.
#pragma once

#include "choices.h"
#include "pictures.h"

#include <ninefold/ninefold.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace page {

struct State {
    uint32_t code;
    Picture back, tex0, tex1, tex2;
    Plane plane;
    Priority priority;
    Table table0, table1;
    Shift shift;
    int32_t blendOperator; // of NINEFOLD_BLEND_CUSTOM: NINEFOLD_BLEND_LUMA_SRC and up, or ownOperator
    int32_t multiOp, bank, stipple, curve;
    RenderState fields; // those of PAGE_FIELDS
};

constexpr int32_t ownOperator = -1;

// A field of PAGE_FIELDS: where its words lie.
struct FieldInfo {
    const char *name;
    size_t offset, words;
    int64_t least, most;
};
#define PAGE_FIELD(field, kind, least, most, reads)                                                                              \
    {#field, offsetof(RenderState, field), sizeof(RenderState::field) / 4, least, most},
constexpr FieldInfo stateFields[] = {PAGE_FIELDS(PAGE_FIELD)};
#undef PAGE_FIELD

// The words of a field as they stand in a state.
inline const uint32_t *wordsOf(const State &state, const FieldInfo &field)
{
    return reinterpret_cast<const uint32_t *>(reinterpret_cast<const char *>(&state.fields) + field.offset);
}

// Reads a text. Otherwise the result says which key is wrong, its value and what it may be; empty: all is well.
std::string parse(std::string_view text, State &state);

// The text of a state, every key of it.
std::string print(const State &state);

} // namespace page
