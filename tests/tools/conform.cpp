// The library against the reference at depth: plain and big scenes, shared memory, guard pages, named functions.
//
//     conform [--scenes N] [--seed N] [--kinds plain,big,overlap,guard,offset,large] [--stop]
//
// N scenes of each code (NINEFOLD_SCENES, or 60), half as many that are big, overlap or are guarded, which are the kinds without
// --kinds. Of kind offset a source at each offset for each code, again for every sixty scenes; of the large ones a sixtieth.
// --stop: at the first failure.
#include "kernels/sets.h"
#include "support/check.h"
#include "support/exports.h"
#include "support/numbers.h"
#include "support/sweep.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

using namespace support;

namespace {

bool areKinds(const std::string &list)
{
    std::istringstream names(list + ",");
    for (std::string name; std::getline(names, name, ',');) {
        int kind = 0;
        while (kind < kindCount && name != kindName(static_cast<Kind>(kind)))
            ++kind;
        if (kind == kindCount)
            return false;
    }
    return true;
}

} // namespace

int main(int count, char **arguments)
{
    uint32_t scenes = scenesWanted(60);
    uint64_t seed = seedWanted();
    std::string kinds = "plain,big,overlap,guard";
    bool stop = false, known = true;
    for (int i = 1; i < count; ++i) {
        const auto is = [&](const char *option) { return std::strcmp(arguments[i], option) == 0; };
        const bool valued = i + 1 < count;
        if (is("--stop")) {
            stop = true;
        } else if (is("--scenes") && valued) {
            scenes = static_cast<uint32_t>(numberFrom(arguments[++i], "--scenes", 1, mostScenes));
        } else if (is("--seed") && valued) {
            seed = numberFrom(arguments[++i], "--seed", 0, UINT64_MAX);
        } else if (is("--kinds") && valued) {
            kinds = arguments[++i];
            known = areKinds(kinds);
        } else {
            known = false;
        }
        if (!known) {
            std::puts("conform [--scenes N] [--seed N] [--kinds plain,big,overlap,guard,offset,large] [--stop]");
            return 2;
        }
    }

    const std::string exports = checkExports(seed, 40 * scenes);
    std::printf("levels, maps, stipples, run lists, operators, look-up: %u rounds, %s\n%s", 40 * scenes,
                exports.empty() ? "no difference" : "these differ:", exports.c_str());
    std::fflush(stdout);

    const std::vector<Subject> subjects = sharedCatalogue();
    std::vector<Subject> failed;
    uint64_t drawn = 0;
    double seconds = 0;
    bool namedFailed = !exports.empty();
    for (int number = 0; number < kindCount; ++number) {
        const Kind kind = static_cast<Kind>(number);
        if (("," + kinds + ",").find(std::string(",") + kindName(kind) + ",") == std::string::npos)
            continue;
        const uint32_t sixtieth = (scenes + 59) / 60;
        Sweep options{.kind = kind,
                      .scenes = kind == Kind::plain    ? scenes
                                : kind == Kind::offset ? sixtieth * offsetCount
                                : kind == Kind::large  ? sixtieth
                                                       : (scenes + 1) / 2,
                      .seed = seed,
                      .progress = true,
                      .stopAtFailure = stop};
        const SweepResult codes = sweep(subjects, options);
        options.progress = false;
        options.scenes *= kind == Kind::offset ? 4 : 50;
        const SweepResult named = sweep(namedSubjects(), options);
        for (const SweepResult *result : {&codes, &named}) {
            std::fputs(result->text.c_str(), stdout);
            drawn += result->scenes;
            seconds += result->seconds;
        }
        for (const Subject &subject : codes.failed)
            if (std::none_of(failed.begin(), failed.end(), [&subject](const Subject &one) { return one.code == subject.code; }))
                failed.push_back(subject);
        namedFailed = namedFailed || !named.failed.empty();
        if (stop && (namedFailed || !failed.empty()))
            break;
    }
    std::printf("%s", tableByAxis(subjects, failed).c_str());
    std::printf("%zu codes, %llu scenes, each with %d instruction sets, in %.0f s: %zu codes failed%s\n", subjects.size(),
                static_cast<unsigned long long>(drawn), ninefold::usableSets(), seconds, failed.size(),
                namedFailed ? ", and other functions" : "");
    return failed.empty() && !namedFailed ? 0 : 1;
}
