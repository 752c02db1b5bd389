// Runs the contenders of a job against each other.
#pragma once

#include "bench.h"

namespace bench {

struct Effort {
    int rounds;
    double batchSeconds; // length of one turn
};
constexpr Effort thorough{15, 1.5e-3}, quick{5, 0.3e-3};

struct Measured {
    std::string name, note;
    Role role;
    std::vector<double> nanoseconds; // per call, one for each round

    double quantile(double share) const; // 0 to 1
    double median() const { return quantile(0.5); }
};

// Median over the rounds of a's time against b's in the same round.
double ratio(const Measured &a, const Measured &b);

double secondsOf(const Contender &contender, long calls);

// Warm: the contender has just done the same work. Cold: nothing of textures, frame buffer and planes is in a cache, and a turn is
// one cycle.
enum class Caches : uint8_t { warm, cold };

std::vector<Measured> measure(const Contenders &contenders, const Effort &effort, Caches caches = Caches::warm);

} // namespace bench
