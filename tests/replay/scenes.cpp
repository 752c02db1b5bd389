// Scenes of the differential, captured and drawn again bit for bit: what the host's memory and rs hold after each draw is what the
// replay's do.
//
//     replay_scenes FILE [--scenes N] [--seed N] [--kind KIND] [--code 0xCODE] [--every N]
//
// FILE is where captures go; it is written again for each kind.
#include "player.h"
#include "recording.h"
#include "report.h"

#include "debug/choice.h"
#include "support/host.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace support;

namespace {

// The draws of a kind, recorded under the twin as any host's; their names.
std::vector<std::string> record(const std::string &file, Kind kind, const Choice &choice, const std::vector<Subject> &subjects)
{
    std::vector<std::string> names;
    World world(kind == Kind::large);
    debug::settings().capture = file;
    if (!debug::startRecording())
        std::exit(1);
    for (const Subject &subject : subjects) {
        const DrawFunc kernel = subject.exported ? subject.function : SearchDrawFunc(subject.code);
        for (uint32_t number = 0; number < choice.scenes; ++number) {
            const Scene scene = makeScene(subject, {kind, choice.seed, number}, world);
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
    const Choice choice(argumentCount, arguments, 2);
    startLibrary();
    debug::settings().severity = NINEFOLD_DEBUG_ERROR;
    debug::settings().repeat = 0;
    debug::settings().summary = false;
    debug::settings().captureTextures = 1; // scenes overwrite theirs
    debug::settings().captureLevel = 1;
    const std::vector<Subject> subjects = choice.subjects();
    uint64_t failures = 0, draws = 0;
    for (int kind = 0; kind < kindCount; ++kind) {
        if (!choice.takes(Kind(kind)))
            continue;
        debug::settings().action = NINEFOLD_DEBUG_DRAW;
        const std::vector<std::string> names = record(file, Kind(kind), choice, subjects);
        failures += replay(file, names);
        draws += names.size();
    }
    std::remove(file.c_str());
    std::printf("%llu draws, %llu failures\n", static_cast<unsigned long long>(draws), static_cast<unsigned long long>(failures));
    return failures == 0 && draws ? 0 : 1;
}
