// Scenes of the differential, captured and drawn again bit for bit: what the host's memory and rs hold after each draw is what the
// replay's do.
//
//     replay_scenes FILE [--scenes N] [--seed N] [--kind KIND] [--code 0xCODE] [--every N]
//
// FILE is where captures go; it is written again for each kind.
#include "player.h"
#include "recording.h"
#include "report.h"

#include "support/host.h"
#include "support/numbers.h"
#include "support/scene.h"
#include "support/subject.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace support;

namespace {

// The draws of a kind, recorded under the twin as any host's; their names.
std::vector<std::string> record(const std::string &file, Kind kind, uint32_t scenes, uint64_t seed, uint32_t code, uint32_t every,
                                const std::vector<Subject> &subjects)
{
    std::vector<std::string> names;
    World world(kind == Kind::large);
    debug::settings().capture = file;
    if (!debug::startRecording())
        std::exit(1);
    for (size_t index = 0; index < subjects.size(); ++index) {
        const Subject &subject = subjects[index];
        if (code ? subject.code != code || subject.exported : (index % every != 0 && !subject.exported))
            continue;
        const DrawFunc kernel = subject.exported ? subject.function : SearchDrawFunc(subject.code);
        for (uint32_t number = 0; number < scenes; ++number) {
            const Scene scene = makeScene(subject, {kind, seed, number}, world);
            const RenderState state = bindScene(scene, world, true);
            std::memcpy(static_cast<void *>(&rs), &state, sizeof rs);
            calls = {};
            for (int draw = 0; draw < scene.draws; ++draw) {
                kernel();
                names.push_back(subject.name() + " " + kindName(kind) + " scene " + std::to_string(number));
            }
        }
    }
    debug::stopRecording();
    return names;
}

// How many draws came out otherwise.
uint64_t replay(const std::string &file, const std::vector<std::string> &names)
{
    std::string error;
    const std::unique_ptr<capture::Reader> reader = capture::Reader::open(file, error);
    if (!reader) {
        std::printf("%s\n", error.c_str());
        return 1;
    }
    capture::Player player(*reader);
    uint64_t failures = 0, made = 0;
    for (capture::Player::Step step; (step = player.next()) != capture::Player::Step::end;) {
        if (step == capture::Player::Step::frame) {
            failures += player.frameHash() != player.frame().hash;
            continue;
        }
        const std::string name = made < names.size() ? names[size_t(made)] : "one too many";
        ++made;
        std::string wrong = player.prepare() ? "" : "not drawn: " + player.refusal();
        if (wrong.empty()) {
            player.make(capture::Library::linked());
            wrong = player.draw().hasResult ? player.compare() : "no result";
            player.finish();
        }
        if (!wrong.empty() && failures++ < 10)
            std::printf("%s: %s\n", name.c_str(), wrong.c_str());
    }
    if (made != names.size() || !player.problem().empty() || player.lost())
        std::printf("%llu of %zu draws, %llu lost, %s\n", static_cast<unsigned long long>(made), names.size(),
                    static_cast<unsigned long long>(player.lost()), player.problem().c_str()),
            ++failures;
    return failures;
}

} // namespace

int main(int argumentCount, char **arguments)
{
    if (argumentCount < 2)
        return 2;
    const std::string file = arguments[1];
    uint32_t scenes = 1, code = 0, every = 1;
    uint64_t seed = 1;
    int onlyKind = -1;
    for (int i = 2; i + 1 < argumentCount; i += 2) {
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
    debug::settings().severity = NINEFOLD_DEBUG_ERROR;
    debug::settings().repeat = 0;
    debug::settings().summary = false;
    debug::settings().captureTextures = 1; // scenes overwrite theirs
    debug::settings().captureLevel = 1;
    std::vector<Subject> subjects = catalogueSubjects();
    subjects.insert(subjects.end(), namedSubjects().begin(), namedSubjects().end());
    uint64_t failures = 0, draws = 0;
    for (int kind = 0; kind < kindCount; ++kind) {
        if (onlyKind >= 0 ? kind != onlyKind : Kind(kind) == Kind::large)
            continue;
        debug::settings().action = NINEFOLD_DEBUG_DRAW;
        const std::vector<std::string> names = record(file, Kind(kind), scenes, seed, code, every, subjects);
        failures += replay(file, names);
        draws += names.size();
    }
    std::remove(file.c_str());
    std::printf("%llu draws, %llu failures\n", static_cast<unsigned long long>(draws), static_cast<unsigned long long>(failures));
    return failures == 0 && draws ? 0 : 1;
}
