// Draws one scene of the differential with the library and the reference and shows what differs, if anything (1):
//
//     replay --code 0x369 --kind plain --seed 1 --scene 5 [--set 2]
//     replay --named DrawRectTexRule --scene 3
#include "kernels/sets.h"
#include "support/check.h"
#include "support/numbers.h"
#include "support/sweep.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace support;

int main(int count, char **arguments)
{
    Subject subject;
    SceneId id;
    int set = -1;
    bool found = false, known = count % 2 == 1;
    for (int i = 1; i + 1 < count; i += 2) {
        const char *const name = arguments[i], *const value = arguments[i + 1];
        const auto is = [name](const char *option) { return std::strcmp(name, option) == 0; };
        if (is("--code")) {
            const uint64_t code = numberFrom(value, name, 0, UINT32_MAX, 16);
            for (const Subject &one : catalogueSubjects())
                if (one.code == code)
                    subject = one, found = true;
        } else if (is("--named")) {
            for (const Subject &one : namedSubjects())
                if (one.is(value))
                    subject = one, found = true;
        } else if (is("--kind")) {
            int kind = 0;
            while (kind < kindCount && std::strcmp(value, kindName(static_cast<Kind>(kind))) != 0)
                ++kind;
            known = known && kind < kindCount;
            id.kind = static_cast<Kind>(kind);
        } else if (is("--seed")) {
            id.seed = numberFrom(value, name, 0, UINT64_MAX);
        } else if (is("--scene")) {
            id.number = static_cast<uint32_t>(numberFrom(value, name, 0, mostScenes));
        } else if (is("--set")) {
            set = static_cast<int>(numberFrom(value, name, 0, static_cast<uint64_t>(ninefold::usableSets() - 1)));
        } else {
            known = false;
        }
    }
    if (!found || !known) {
        std::puts("replay --code 0xCODE | --named FUNCTION  [--kind plain|big|small|overlap|guard|offset|large] [--seed N] "
                  "[--scene N] [--set N]");
        return 2;
    }
    std::printf("%s\n", subject.name().c_str());
    std::fflush(stdout);
    Comparer comparer(id.kind);
    comparer.beforeDraw = [](int drawing) {
        std::printf("drawing with %s\n", ninefold::setNames[drawing]);
        std::fflush(stdout);
    };
    std::fputs(comparer.check(subject, id, set, true)->c_str(), stdout);
    comparer.beforeDraw = nullptr;
    return comparer.check(subject, id, set) ? 1 : 0;
}
