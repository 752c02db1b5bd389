// Which scenes of the differential a program puts before the twin: [--scenes N] [--seed N] [--kind KIND] [--code 0xCODE] [--every N].
#pragma once

#include "support/numbers.h"
#include "support/scene.h"
#include "support/subject.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace support {

struct Choice {
    uint32_t scenes = 1, every = 1, code = 0; // of each subject; every so manieth code; one code alone
    uint64_t seed = 1;
    int kind = -1; // one alone

    // Ends the program where an option is none.
    Choice(int argumentCount, char **arguments, int first)
    {
        for (int i = first; i < argumentCount; i += 2) {
            const char *const name = arguments[i], *const value = i + 1 < argumentCount ? arguments[i + 1] : "";
            if (std::strcmp(name, "--scenes") == 0)
                scenes = uint32_t(numberFrom(value, name, 1, 1000000));
            else if (std::strcmp(name, "--every") == 0)
                every = uint32_t(numberFrom(value, name, 1, 1000000));
            else if (std::strcmp(name, "--seed") == 0)
                seed = numberFrom(value, name, 0, UINT64_MAX);
            else if (std::strcmp(name, "--code") == 0)
                code = uint32_t(numberFrom(value, name, 0, UINT32_MAX, 16));
            else if (std::strcmp(name, "--kind") != 0 || (kind = kindNamed(value)) < 0) {
                std::fprintf(stderr, "no option '%s %s'\n", name, value);
                std::exit(2);
            }
        }
    }

    // Large scenes take minutes: only where they are asked for.
    bool takes(Kind wanted) const { return kind >= 0 ? wanted == Kind(kind) : wanted != Kind::large; }

    std::vector<Subject> subjects() const
    {
        std::vector<Subject> taken;
        size_t index = 0;
        for (const Subject &subject : catalogueSubjects())
            if (const size_t k = index++; code ? subject.code == code : k % every == 0)
                taken.push_back(subject);
        if (!code)
            taken.insert(taken.end(), namedSubjects().begin(), namedSubjects().end());
        return taken;
    }

private:
    static int kindNamed(const char *name)
    {
        for (int k = 0; k < kindCount; ++k)
            if (std::strcmp(name, kindName(Kind(k))) == 0)
                return k;
        return -1;
    }
};

} // namespace support
