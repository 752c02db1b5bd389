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

    double median() const;
    double least() const;
};

// Median over the rounds of a's time against b's in the same round.
double ratio(const Measured &a, const Measured &b);

double secondsOf(const Contender &contender, long calls);

std::vector<Measured> measure(const Contenders &contenders, const Effort &effort);

} // namespace bench
