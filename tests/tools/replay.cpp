// Draws one scene of the differential with the library and the reference and shows what differs:
//
//     replay --code 0x369 --kind plain --seed 1 --scene 5 [--set 2]
//     replay --named DrawRectTexRule --scene 3
#include "support/check.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace support;

int main(int count, char **arguments)
{
    Subject subject;
    SceneId id;
    int set = -1;
    bool found = false;
    for (int i = 1; i + 1 < count; i += 2) {
        const char *const name = arguments[i], *const value = arguments[i + 1];
        const auto is = [name](const char *option) { return std::strcmp(name, option) == 0; };
        if (is("--code")) {
            for (const Subject &one : catalogueSubjects())
                if (one.code == std::strtoul(value, nullptr, 16))
                    subject = one, found = true;
        } else if (is("--named")) {
            for (const Subject &one : namedSubjects())
                if (one.is(value))
                    subject = one, found = true;
        } else if (is("--kind")) {
            for (int kind = 0; kind < kindCount; ++kind)
                if (std::strcmp(value, kindName(static_cast<Kind>(kind))) == 0)
                    id.kind = static_cast<Kind>(kind);
        } else if (is("--seed")) {
            id.seed = std::strtoull(value, nullptr, 10);
        } else if (is("--scene")) {
            id.number = static_cast<uint32_t>(std::strtoul(value, nullptr, 10));
        } else if (is("--set")) {
            set = std::atoi(value);
        }
    }
    if (!found) {
        std::puts("replay --code 0xCODE | --named FUNCTION  [--kind plain|big|small|overlap|guard|offset|large] [--seed N] "
                  "[--scene N] [--set N]");
        return 2;
    }
    std::printf("%s\n", subject.name().c_str());
    std::fflush(stdout);
    Comparer comparer(id.kind);
    comparer.beforeDraw = [](int drawing) {
        std::printf("drawing with %s\n", setName(drawing));
        std::fflush(stdout);
    };
    std::fputs(comparer.check(subject, id, set, true)->c_str(), stdout);
    return 0;
}
