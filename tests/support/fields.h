// The fields of the render state by name.
#pragma once

#include <cstddef>
#include <vector>

#include <ninefold/render_state.h>

namespace support {

enum class FieldKind { plain, pointer, texture };

struct Field {
    const char *name;
    size_t offset, size;
    FieldKind kind;
};

const std::vector<Field> &fields();

} // namespace support
