// What is drawn: the kernel of a draw code, or an exported function with a name.
#pragma once

#include <string>
#include <vector>

#include "core/catalogue.h"

#include <ninefold/draw_code.h>

namespace support {

struct Subject {
    uint32_t code = 0; // of a named one: a stand-in that seeds its scenes
    const char *exported = nullptr; // name of the exported function; null: found by code
    DrawFunc function = nullptr; // of a named one

    ninefold::Axes axes() const; // of a named one: those of the kernel that it resembles
    std::string name() const;

    bool is(const char *exportName) const;
    bool fillsPlanes() const; // an occlusion triangle
};

// All codes in table order.
const std::vector<Subject> &catalogueSubjects();

// The exported functions that draw without a code, and the three kernels that have a name.
const std::vector<Subject> &namedSubjects();

} // namespace support
