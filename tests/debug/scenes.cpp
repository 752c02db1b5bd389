// The scenes of the differential before the eyes of the twin: none has an error. Nothing is drawn.
//
//     twin_scenes [--scenes N] [--seed N] [--kind KIND] [--code 0xCODE] [--every N]
#include "report.h"

#include "support/host.h"
#include "support/numbers.h"
#include "support/scene.h"
#include "support/subject.h"

#include <cstdio>
#include <cstring>
#include <map>

using namespace support;

namespace {

struct Count {
    uint64_t times = 0;
    std::string first;
};
std::map<std::pair<int, std::string>, Count> found; // by severity and rule
std::string current;

void collect(const NinefoldFinding *finding, void *)
{
    Count &count = found[{-finding->severity, finding->name}];
    if (count.times++ == 0)
        count.first = current + ": " + finding->text;
}

} // namespace

int main(int argumentCount, char **arguments)
{
    uint32_t scenes = 1, code = 0, every = 1;
    uint64_t seed = 1;
    int onlyKind = -1;
    for (int i = 1; i + 1 < argumentCount; i += 2) {
        const char *const name = arguments[i], *const value = arguments[i + 1];
        if (std::strcmp(name, "--scenes") == 0)
            scenes = uint32_t(numberFrom(value, name, 1, 1000000));
        else if (std::strcmp(name, "--every") == 0)
            every = uint32_t(numberFrom(value, name, 1, 1000000));
        else if (std::strcmp(name, "--seed") == 0)
            seed = numberFrom(value, name, 0, UINT64_MAX);
        else if (std::strcmp(name, "--code") == 0)
            code = uint32_t(numberFrom(value, name, 0, UINT32_MAX, 16));
        else if (std::strcmp(name, "--kind") == 0)
            for (int kind = 0; kind < kindCount; ++kind)
                if (std::strcmp(value, kindName(Kind(kind))) == 0)
                    onlyKind = kind;
    }

    startLibrary();
    debug::settings().repeat = 0;
    debug::settings().summary = false;
    debug::callback = collect;
    std::vector<Subject> subjects = catalogueSubjects();
    subjects.insert(subjects.end(), namedSubjects().begin(), namedSubjects().end());
    uint64_t looked = 0;
    for (int kind = 0; kind < kindCount; ++kind) {
        if (onlyKind >= 0 ? kind != onlyKind : Kind(kind) == Kind::large)
            continue;
        World world(Kind(kind) == Kind::large);
        for (size_t index = 0; index < subjects.size(); ++index) {
            const Subject &subject = subjects[index];
            if (code ? subject.code != code || subject.exported : (index % every != 0 && !subject.exported))
                continue;
            layer::Call call{};
            call.id = subject.exported ? layer::recordCount : layer::Id(layer::recordOf(subject.code));
            while (subject.exported && !subject.is(layer::functionName(layer::Function(call.id - layer::recordCount))))
                ++call.id;
            for (uint32_t number = 0; number < scenes; ++number) {
                const Scene scene = makeScene(subject, {Kind(kind), seed, number}, world);
                const RenderState state = bindScene(scene, world, true);
                std::memcpy(&rs, &state, sizeof rs);
                current = subject.name() + " " + kindName(Kind(kind)) + " scene " + std::to_string(number);
                layer::before(call);
                ++looked;
                if (std::memcmp(&rs, &state, sizeof rs) != 0)
                    std::printf("%s: rs was changed\n", current.c_str()), found[{-NINEFOLD_DEBUG_ERROR, "rs"}].times++;
            }
        }
    }
    bool clean = true;
    for (const auto &[rule, count] : found) {
        std::printf("%s %s: %llu times, first: %s\n", debug::severityName(-rule.first), rule.second.c_str(),
                    static_cast<unsigned long long>(count.times), count.first.c_str());
        clean &= rule.first != -NINEFOLD_DEBUG_ERROR;
    }
    std::printf("%llu scenes\n", static_cast<unsigned long long>(looked));
    return clean && looked ? 0 : 1;
}
