// What the twin knows besides rs: textures, labels, start-up calls, frames.
#pragma once

#include "layer.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace debug {

struct Known {
    bool alive = true; // false: deleted
    bool made = false; // by the library; else the host only named it
    uint32_t *pixels = nullptr; // as made
    uint32_t log2Width = 0, log2Height = 0;
    std::string label;
    // Sums of the pixels when a map or the chain was made from them, and the frame in which they were last compared.
    const void *runs = nullptr, *zeros = nullptr;
    uint64_t runsSum = 0, zerosSum = 0, chainSum = 0;
    uint64_t frame = 0, sum = 0;
    uint32_t zerosLog2Size = 0; // pixels that the zero-pixel map was made for
    bool hasChain = false; // made by CreateMipmapTexture
    bool lookedForAlpha = false; // by the rule for premultiplied pictures
};

// Null where the texture was neither made by the library nor named.
Known *known(const Texture *texture);

// The sum of a known texture's pixels, worked out once a frame.
uint64_t currentSum(const Texture &texture, Known &entry);

// Takes in what a call of the library did, or is about to do.
void learnBefore(const layer::Call &call);
void learnAfter(const layer::Call &call);

struct Label {
    const void *begin;
    size_t size;
    std::string name;
};
// The label of the memory that the address lies in, null if it has none.
const Label *labelAt(const void *address);
void forgetTexture(const Texture *texture); // as if it had never been met
void labelTexture(const Texture *texture, const char *name);
void labelMemory(const void *memory, size_t size, const char *name);
void forgetMemory(const void *memory);
void forEachLabel(void (*tell)(const void *address, const std::string &name)); // of textures and memory

// How messages call a texture: "name" where it is labelled, else its size.
std::string wordsFor(const Texture *texture);

struct StartUp {
    bool shifts, runs, kernels, stipples; // which of the Make functions were called
};
extern StartUp startUp;

extern uint64_t frame; // counts on where a host marks a frame, and after many draws without
void nextFrame();

} // namespace debug
