// Bands on the layer: what is recorded, what is drawn at once, and when recorded draws are drawn.
#include "recorder.h"

#include <ninefold/bands.h>

#include "core/startup.h"
#include "kernels/parts.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

#if defined(__linux__)
#include <sched.h>
#endif

namespace bands {
namespace {

using layer::Call;
using layer::Function;

// Of a trial: what counts as shorter, where it is recorded and where it is drawn at once, and as much longer. Frames between trials.
constexpr float shorterRecorded = 0.95F, shorterAtOnce = 1, muchLonger = 1.5F;
constexpr uint16_t firstTrial = 4, leastPause = 15, mostPause = 63, longPause = 1023, shortPause = 8;
constexpr int trialFrames = 3; // of which the first one has its pixels in other threads' caches

void takeTablesOfLibrary() { takeTables(ninefold::uvlShift, ninefold::stippleSteps, ninefold::activeSets.any->lanes); }

// Processors that the calling thread may use; more threads than these would only wait for each other.
int usableProcessors()
{
#if defined(__linux__)
    cpu_set_t set; // of 1024 processors; fails where the system has more
    if (sched_getaffinity(0, sizeof set, &set) == 0)
        return CPU_COUNT(&set);
#endif
    return std::max(1, int(std::thread::hardware_concurrency()));
}

// Functions that neither read nor write pixels, textures' pixels and maps, nor end a texture.
bool leavesMemory(const Call &call)
{
    switch (Function(call.id - layer::recordCount)) {
    case Function::ClearTexture:
    case Function::CopyTexture:
    case Function::SetClearPixel:
    case Function::ReplacePixel:
    case Function::CreateMipmapTexture:
    case Function::DeleteMipmapTexture:
    case Function::DeleteTexture:
    case Function::CreateRunlengthMap:
    case Function::CreateZeroPixelMap:
    case Function::CreateFontTexture:
    case Function::CreateFontTextureFuchi:
    case Function::MakeUVLShiftTable:
    case Function::MakeDrawMaskTable:
    case Function::MakeDrawFuncTable: return false;
    default: return true;
    }
}

} // namespace

Recorder &recorder()
{
    static auto *const one = new Recorder; // never destroyed: threads may wait on it when the program ends
    return *one;
}

Experience::Way Experience::begin(uint32_t key)
{
    current = &known[(key ^ key >> 6 ^ key >> 12) % std::size(known)];
    if (current->key != key)
        *current = {key, Way::recorded, false, 0, 0, firstTrial, 0, 0, 0};
    const bool trial = current->left == 0;
    return trial == (current->way == Way::recorded) ? Way::atOnce : Way::recorded;
}

void Experience::keepWay(uint16_t low, uint16_t high)
{
    current->pause = std::clamp(uint16_t(2 * current->pause + 1), low, high);
    current->left = current->pause;
    current->tried = 0, current->triedTime = 0;
}

void Experience::end(float time, bool recorded, bool shared)
{
    Known &one = *current;
    const bool trial = one.left == 0, wasRecorded = trial == (one.way == Way::atOnce);
    if (wasRecorded)
        one.shared = shared;
    if (wasRecorded && !recorded) { // nothing was worth it, so there is nothing to compare
        if (!trial)
            one.way = Way::atOnce, one.time = 0;
        keepWay(1, mostPause);
    } else if (!trial) {
        one.time += one.time > 0 ? (std::min(time, 2 * one.time) - one.time) / 4 : time;
        if (one.pause == 0 && one.left == firstTrial) // the first one of all finds textures and memory cold
            one.time = 0;
        --one.left;
        // Others have come to use the processors, or the trial had luck.
        if (one.way == Way::recorded && one.otherTime > 0 && one.time > one.otherTime && one.left + shortPause <= one.pause)
            one.left = 0;
    } else if (++one.tried > 1) {
        one.triedTime += (one.time > 0 ? std::min(time, 2 * one.time) : time) / (trialFrames - 1);
        if (one.tried < trialFrames)
            return;
        const bool isRecorded = one.way == Way::recorded;
        one.otherTime = one.triedTime;
        if (one.triedTime < (isRecorded ? shorterAtOnce : shorterRecorded) * one.time || one.time == 0) {
            one.way = isRecorded ? Way::atOnce : Way::recorded;
            std::swap(one.time, one.otherTime);
            one.pause = 0;
        }
        if (one.otherTime > muchLonger * one.time)
            keepWay(mostPause, longPause);
        else
            keepWay(leastPause, mostPause);
    }
}

int Recorder::start(int threads)
{
    endFrame();
    asked = threads;
    takeTablesOfLibrary();
    started = true;
    layer::listen(true);
    return startThreads();
}

int Recorder::startThreads()
{
    const int processors = std::min(usableProcessors(), NINEFOLD_BANDS_MOST_THREADS);
    const int threads = workers.start(asked <= 0 ? processors : std::min(asked, all ? NINEFOLD_BANDS_MOST_THREADS : processors));
    leastCost = all ? 0 : threads > 3 ? 150 : threads > 1 ? 300 : 30e3;
    worthSharing = all ? 0 : 100e3;
    return threads;
}

void Recorder::recordAll(bool wanted)
{
    endFrame();
    all = wanted;
    if (started)
        startThreads();
}

void Recorder::stop()
{
    endFrame();
    workers.stop();
    started = false;
    layer::listen(false);
}

void Recorder::beginFrame(layer::Id id)
{
    open = true;
    if (all || divide)
        return;
    opened = std::chrono::steady_clock::now();
    std::copy(std::begin(counts), std::end(counts), countsBefore);
    const uint32_t size = uint32_t(std::ilogb(costAtMost(kindOf(id)))) / 4;
    if (experience.begin((id * 32 + size) * 512 + uint32_t(workers.count())) == Experience::Way::atOnce) {
        atOnce = true;
        layer::listen(false);
    } else if (experience.expectsThreads()) {
        wake();
    }
}

void Recorder::endFrame()
{
    if (atOnce) { // tables may have changed, untold
        takeTablesOfLibrary();
        layer::listen(true);
    } else {
        flush();
    }
    if (open && !all && !divide) {
        const std::chrono::duration<float, std::nano> time = std::chrono::steady_clock::now() - opened;
        experience.end(time.count(), counts[NINEFOLD_BANDS_RECORDED] > countsBefore[NINEFOLD_BANDS_RECORDED],
                       counts[NINEFOLD_BANDS_SHARED] > countsBefore[NINEFOLD_BANDS_SHARED]);
    }
    open = atOnce = awake = false;
}

// Others take about as long to wake as a frame of two thousand draws takes to be recorded.
void Recorder::wake()
{
    if (awake || workers.count() == 1)
        return;
    awake = true;
    workers.wake();
}

void Recorder::flush()
{
    if (batch.empty())
        return;
    ++counts[NINEFOLD_BANDS_FLUSHES];
    if (divide) {
        divide(batch);
    } else if (batch.cost() < worthSharing) {
        batch.drawAll();
    } else if (const int bands = batch.divide(workers.count()); workers.count() == 1) {
        for (int band = 0; band < bands; ++band)
            batch.drawBand(band);
    } else {
        ++counts[NINEFOLD_BANDS_SHARED];
        workers.draw(batch, bands);
    }
    batch.clear();
    awake = false;
}

bool Recorder::record(layer::Id id)
{
    if (!open) {
        beginFrame(id);
        if (atOnce)
            return false;
    }
    if (batch.full() || (!batch.empty() && !batch.target().isCurrent() && heeds(Rule::target)))
        flush();
    switch (batch.record(id, divide ? 0 : leastCost)) {
    case Fate::cheap: return false;
    case Fate::whole:
        flush();
        ++counts[NINEFOLD_BANDS_WHOLE];
        return false;
    default: break;
    }
    ++counts[NINEFOLD_BANDS_RECORDED];
    if (batch.cost() > worthSharing / 2)
        wake();
    return true;
}

} // namespace bands

bool layer::before(Call &call)
{
    bands::Recorder &recorder = bands::recorder();
    if (!recorder.started) {
        listen(false);
        return true;
    }
    if (draws(call.id))
        return !recorder.record(call.id);
    if (!bands::leavesMemory(call))
        recorder.flush();
    return true;
}

void layer::after(Call &call)
{
    if (bands::recorder().started && !draws(call.id) &&
        (call.is(Function::MakeUVLShiftTable) || call.is(Function::MakeDrawMaskTable) || call.is(Function::MakeDrawFuncTable)))
        bands::takeTablesOfLibrary();
}

// What bands.h finds.
extern "C" NINEFOLD_API const NinefoldBandsCalls *ninefoldBandsCalls(void);
const NinefoldBandsCalls *ninefoldBandsCalls(void)
{
    static const NinefoldBandsCalls calls = {
        sizeof calls,
        [](int threads) { return bands::recorder().start(threads); },
        [] { bands::recorder().endFrame(); },
        [] { bands::recorder().stop(); },
        bands::declarePure,
        [](int what) -> unsigned long long {
            return what >= 0 && what < int(std::size(bands::recorder().counts)) ? bands::recorder().counts[what] : 0;
        },
        [](int all) { bands::recorder().recordAll(all != 0); },
    };
    return &calls;
}
