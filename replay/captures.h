// libninefold-captures: a capture's draws for a program that has a library of its own to make them with. Such a program loads it when
// it is asked for a capture, and is built without it.
#pragma once

#include <ninefold/ninefold.h>

#include <cstddef>
#include <cstdint>

namespace capture {

// The program's library, started.
struct Host {
    RenderState *state;
    decltype(&SearchDrawFunc) search;
    decltype(&SetBlendMode) blend;
    decltype(&SetBlendModeMulti) multi;
    decltype(&SetPrescaleMultiMode) bank;
    const DrawFunc *named; // by the list of functions that draw, NINEFOLD_NAMED_DRAWS
};

class Draws {
public:
    virtual ~Draws() = default;
    virtual uint64_t draws() const = 0; // those that can be made
    virtual uint64_t refused() const = 0; // the others
    virtual uint64_t frames() const = 0;
    virtual const char *refusal() const = 0; // why the first of the others is one
    // Makes all of them once by the program's library. `flush`, which may be null, ends each frame. The time by `clock` of draws
    // and flushes, without what the recorded program wrote between them.
    virtual double play(void (*flush)(), double (*clock)()) = 0;
    // The same, and empty, or the first that does not leave what was recorded.
    virtual const char *verify(void (*flush)()) = 0;
};

} // namespace capture

// Null, and why, where the file is no capture or has no draw that can be made. What it gives stays.
extern "C" capture::Draws *ninefoldOpenDraws(const char *path, const capture::Host *host, char *error, size_t size);
