// The differential over many codes and scenes.
#pragma once

#include <string>
#include <vector>

#include "scene.h"

namespace support {

struct Sweep {
    Kind kind = Kind::plain;
    uint32_t scenes = 8; // of each code
    uint64_t seed = 1;
    uint32_t firstScene = 0;
    bool progress = false; // printed now and then
    bool stopAtFailure = false;
};

struct SweepResult {
    uint64_t scenes = 0;
    double seconds = 0;
    std::vector<Subject> failed;
    std::string text; // of failures; empty if there is none
};

// Scenes of each subject, with each instruction set.
SweepResult sweep(const std::vector<Subject> &subjects, const Sweep &options);

// How many of the tried and the failed have each value of each axis.
std::string tableByAxis(const std::vector<Subject> &tried, const std::vector<Subject> &failed);

// A sweep as the environment asks for it: NINEFOLD_SCENES scenes from NINEFOLD_SEED; of the codes every nth, from the kth on, for
// NINEFOLD_SHARE=k/n.
constexpr uint64_t mostScenes = 10000000;
uint32_t scenesWanted(uint32_t otherwise);
uint64_t seedWanted();
bool inShare(size_t index);
std::vector<Subject> sharedCatalogue();

} // namespace support
