#include "recording.h"

#if NINEFOLD_CAPTURE

#include "knowledge.h"
#include "memory.h"
#include "report.h"

#include "recorder.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace debug {
namespace {

// Never destroyed but by stopRecording: hosts draw in destructors of their own.
std::unique_ptr<capture::Recorder> &recorder()
{
    static auto *const one = new std::unique_ptr<capture::Recorder>;
    return *one;
}

bool isMade(const Texture *texture)
{
    const Known *const entry = known(texture);
    return entry && entry->made && entry->alive;
}

std::string counted(uint64_t number, const char *noun) { return std::to_string(number) + " " + noun + (number == 1 ? "" : "s"); }

void complain(const std::string &words)
{
#ifdef _WIN32
    std::fprintf(stderr, "ninefold: capture: %s\n", words.c_str());
#else
    dprintf(STDERR_FILENO, "ninefold: capture: %s\n", words.c_str()); // at its end a program may have closed the stream
#endif
}

const auto loaded = std::filesystem::file_time_type::clock::now();

// Says that a program which was to be captured never called the library. Programs that it starts have the twin too, where it is
// preloaded, and may have done what is wanted: only the one that the launcher became says so, and only if there is no new file.
void missUse()
{
#ifndef _WIN32
    const char *const process = std::getenv("NINEFOLD_DEBUG_PROCESS");
    if (!process || process != std::to_string(getpid()))
        return;
#endif
    Settings wanted;
    const char *const text = std::getenv("NINEFOLD_DEBUG");
    if (!text || !parseSettings(text, wanted).empty() || wanted.capture.empty())
        return;
    std::error_code none;
    const auto written = std::filesystem::last_write_time(wanted.capture, none);
    if (none || written < loaded - std::chrono::seconds(1))
        complain("the program made no call of the shared library, so that nothing was written: " + wanted.capture);
}

// After the host's own exit handlers and destructors.
[[gnu::destructor]] void atEnd()
{
    stopRecording();
    if (!used)
        missUse();
}

} // namespace

bool startRecording()
{
    stopRecording();
    const Settings &s = settings();
    capture::Options options;
    options.path = s.capture;
    options.level = s.captureLevel;
    options.pause = s.capturePause;
    options.texturesEachDraw = s.captureTextures != 0;
    options.flushesEachDraw = s.captureFlush != 0;
    options.cutsAtBuffer = s.captureCut == 0;
    std::string error;
    recorder() = capture::Recorder::open(options, {isReadable, canLookAt, isMade},
                                         {&rs, own_SetBlendMode, own_SetBlendModeMulti, own_SetPrescaleMultiMode}, error);
    if (!recorder())
        complain(error);
    else
        forEachLabel([](const void *address, const std::string &name) { recorder()->label(address, name); });
    return recorder() != nullptr;
}

bool stopRecording()
{
    const std::unique_ptr<capture::Recorder> ended = std::move(recorder());
    if (!ended)
        return true;
    ended->close();
    if (!ended->good())
        complain("cannot write all of " + ended->settings().path + "; is the disk full?");
    else if (settings().summary)
        std::fprintf(stderr, "ninefold: captured %s in %s, %s%s: %s\n", counted(ended->draws(), "draw").c_str(),
                     counted(ended->frames(), "frame").c_str(), counted(ended->bytes(), "byte").c_str(),
                     ended->lost() ? (", without " + std::to_string(ended->lost()) + " of missing memory").c_str() : "",
                     ended->settings().path.c_str());
    return ended->good();
}

bool isRecording() { return recorder() != nullptr; }

void recordBefore(layer::Id id, const layer::Footprint &footprint) { recorder()->before(id, footprint); }
void recordAfter()
{
    if (recorder())
        recorder()->after();
}
void recordFrame(bool atSetFrameBuffer)
{
    if (recorder() && (!atSetFrameBuffer || recorder()->settings().cutsAtBuffer))
        recorder()->frame(atSetFrameBuffer ? capture::Cut::buffer : capture::Cut::mark);
}
void recordChange(const Texture *texture)
{
    if (recorder())
        recorder()->touch(texture);
}
void recordLabel(const void *address, const char *name)
{
    if (recorder())
        recorder()->label(address, name ? name : "");
}

} // namespace debug

#endif
