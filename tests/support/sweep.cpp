#include "sweep.h"

#include "kernels/sets.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>

#include "check.h"
#include "numbers.h"
#include "workers.h"

namespace support {

namespace {

Workers *running = nullptr;
uint32_t currentScene = 0;

} // namespace

SweepResult sweep(const std::vector<Subject> &subjects, const Sweep &options)
{
    const auto began = std::chrono::steady_clock::now();
    Workers workers(subjects.size(), processCount());
    workers.stopAtFailure = options.stopAtFailure;
    running = &workers;
    std::unique_ptr<Comparer> comparer;
    const auto begin = [&] {
        comparer = std::make_unique<Comparer>(options.kind);
        comparer->beforeDraw = [](int set) { running->doing(currentScene, set); };
    };
    const auto job = [&](size_t index) {
        for (uint32_t number = 0; number < options.scenes; ++number) {
            currentScene = options.firstScene + number;
            workers.doing(currentScene, -1);
            const auto wrong = comparer->check(subjects[index], {options.kind, options.seed, currentScene});
            if (wrong) {
                workers.report(*wrong);
                return false;
            }
        }
        workers.addScenes(options.scenes);
        return true;
    };
    const auto describe = [&](size_t index, uint32_t scene, int set) {
        const Subject &subject = subjects[index];
        char text[256];
        std::snprintf(text, sizeof text,
                      "%s, set %s, scene %u of seed %llu\n  replay %s%.0X%s --kind %s --seed %llu --scene %u --set %d\n  it",
                      subject.name().c_str(), set < 0 ? "none" : ninefold::setNames[set], scene,
                      static_cast<unsigned long long>(options.seed), subject.exported ? "--named " : "--code 0x",
                      subject.exported ? 0 : subject.code, subject.exported ? subject.exported : "", kindName(options.kind),
                      static_cast<unsigned long long>(options.seed), scene, set);
        return std::string(text);
    };
    const auto seconds = [&began] { return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count(); };
    std::function<void(size_t, uint64_t)> progress;
    if (options.progress)
        progress = [&](size_t done, uint64_t scenes) {
            std::printf("%s: %zu of %zu, %llu scenes, %zu failed, %.0f s\n", kindName(options.kind), done, subjects.size(),
                        static_cast<unsigned long long>(scenes), workers.failures(), seconds());
            std::fflush(stdout);
        };
    workers.run(begin, job, describe, progress);

    SweepResult result;
    result.scenes = workers.scenes();
    result.seconds = seconds();
    for (size_t index = 0; index < subjects.size(); ++index)
        if (workers.verdict(index) == Verdict::failed || (workers.verdict(index) == Verdict::open && !options.stopAtFailure))
            result.failed.push_back(subjects[index]);
    if (!result.failed.empty())
        result.text =
            workers.reports() + std::to_string(result.failed.size()) + " of " + std::to_string(subjects.size()) + " failed\n";
    return result;
}

std::string tableByAxis(const std::vector<Subject> &tried, const std::vector<Subject> &failed)
{
    struct Axis {
        const char *name;
        int (*value)(const ninefold::Axes &);
    };
    static constexpr Axis all[] = {
        {"shape", [](const ninefold::Axes &a) { return int{a.shape}; }},
        {"pers", [](const ninefold::Axes &a) { return int{a.pers}; }},
        {"rule", [](const ninefold::Axes &a) { return int{a.rule}; }},
        {"prescale", [](const ninefold::Axes &a) { return int{a.prescale}; }},
        {"filter", [](const ninefold::Axes &a) { return int{a.filter}; }},
        {"rect option", [](const ninefold::Axes &a) { return int{a.rectOpt}; }},
        {"Shahei", [](const ninefold::Axes &a) { return int{a.shahei}; }},
        {"blend", [](const ninefold::Axes &a) { return int{a.blend}; }},
        {"multi", [](const ninefold::Axes &a) { return int{a.multi}; }},
    };
    std::string text;
    for (const Axis &axis : all) {
        std::map<int, std::pair<size_t, size_t>> counts;
        for (const Subject &subject : tried)
            ++counts[axis.value(subject.axes())].first;
        for (const Subject &subject : failed)
            ++counts[axis.value(subject.axes())].second;
        char part[64];
        std::snprintf(part, sizeof part, "%-12s", axis.name);
        text += part;
        for (const auto &[value, pair] : counts) {
            std::snprintf(part, sizeof part, pair.second != 0 ? " %d: %zu of %zu failed;" : " %d: %.0zu%zu;", value, pair.second,
                          pair.first);
            text += part;
        }
        text.back() = '\n';
    }
    return text;
}

uint32_t scenesWanted(uint32_t otherwise)
{
    return static_cast<uint32_t>(numberOfVariable("NINEFOLD_SCENES", otherwise, 1, mostScenes));
}

uint64_t seedWanted() { return numberOfVariable("NINEFOLD_SEED", 1, 0, UINT64_MAX); }

bool inShare(size_t index)
{
    const char *const text = std::getenv("NINEFOLD_SHARE");
    if (text == nullptr)
        return true;
    const std::string share = text;
    const size_t slash = std::min(share.find('/'), share.size() - 1);
    const uint64_t parts = numberFrom(share.substr(slash + 1).c_str(), "NINEFOLD_SHARE, after /", 1, 1000);
    return index % parts == numberFrom(share.substr(0, slash).c_str(), "NINEFOLD_SHARE, before /", 0, parts) % parts;
}

std::vector<Subject> sharedCatalogue()
{
    std::vector<Subject> result;
    for (size_t index = 0; index < catalogueSubjects().size(); ++index)
        if (inShare(index))
            result.push_back(catalogueSubjects()[index]);
    return result;
}

} // namespace support
