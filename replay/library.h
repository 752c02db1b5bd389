// A library to draw with: the one that this program is linked with, or another build from a file.
#pragma once

#include "cells.h"
#include "layer.h"

#include <memory>
#include <string>
#include <vector>

namespace capture {

// A started library of the program's, by what it is drawn with.
struct Exports {
    RenderState *state;
    decltype(&SearchDrawFunc) search;
    decltype(&SetBlendMode) blend;
    decltype(&SetBlendModeMulti) multi;
    decltype(&SetPrescaleMultiMode) bank;
    std::vector<DrawFunc> named; // as in NINEFOLD_NAMED_DRAWS
};

class Library {
public:
    // The linked one, started. There is one.
    static Library &linked();
    static std::unique_ptr<Library> of(const Exports &exports);
    // Null, and why, where the file is no such library.
    static std::unique_ptr<Library> load(const std::string &path, std::string &error);
    ~Library();
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

    DrawFunc kernel(layer::Id id);
    RenderState &state() const { return *renderState; }
    const Operators &operators() const { return *own; }
    bool isLinked() const { return renderState == &rs; }
    void *find(const char *name) const; // another export of one that was loaded, null if it has none

private:
    Library() = default;

    void *module = nullptr;
    RenderState *renderState = nullptr;
    decltype(&SearchDrawFunc) search = nullptr;
    std::vector<DrawFunc> named; // by Function
    std::vector<DrawFunc> kernels; // of records, as far as they were asked for
    std::unique_ptr<Operators> own;
};

} // namespace capture
