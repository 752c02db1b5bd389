// Bands on the layer: what is recorded, what is drawn at once, and when recorded draws are drawn.
#include "recorder.h"

#include <ninefold/bands.h>

#include "core/startup.h"
#include "kernels/parts.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

namespace bands {
namespace {

using layer::Call;
using layer::Function;

using Clock = std::chrono::steady_clock;
double nanosecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

// Below such a gain drawing at once is as good. What a cache saves one thread cannot be told from a frame alone: about so much.
constexpr double leastGain = 1.05, gainOfCache = 1.2;
// What a draw takes longer from a batch, ns: to be set up by its record, and to be passed over in each band.
constexpr double replayCost = 15, passCost = 1;
constexpr int sampled = 32; // every so many draws the clock is read

int processors()
{
    static const int count = std::max(1, int(std::thread::hardware_concurrency()));
    return count;
}

void takeTablesOfLibrary() { takeTables(ninefold::uvlShift, ninefold::stippleSteps, ninefold::activeSets.any->lanes); }

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

Experience::Advice Experience::begin(uint32_t key)
{
    current = &known[(key ^ key >> 6 ^ key >> 12) % std::size(known)];
    if (current->key != key)
        *current = {key, 0, 0, false};
    if (current->left == 0)
        return current->pays ? Advice::pays : Advice::unknown;
    --current->left;
    return Advice::drawAtOnce;
}

void Experience::end(bool paid)
{
    current->pays = paid;
    current->pause = paid ? 0 : uint8_t(std::min(2 * current->pause + 1, 31));
    current->left = current->pause;
}

int Recorder::start(int threads)
{
    endFrame();
    if (threads <= 0)
        threads = int(std::thread::hardware_concurrency());
    threads = std::clamp(threads, 1, NINEFOLD_BANDS_MOST_THREADS);
    takeTablesOfLibrary();
    started = true;
    layer::listen(true);
    threads = workers.start(threads);
    leastCost = threads > 3 ? 150 : threads > 1 ? 300 : 30e3;
    clockCost = 1e3;
    for (int k = 0; k < 8; ++k) {
        const Clock::time_point before = Clock::now();
        clockCost = std::min(clockCost, nanosecondsSince(before));
    }
    return threads;
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
    began = true;
    spent = worth = 0;
    const uint32_t size = uint32_t(std::ilogb(costAtMost(kindOf(id)))) / 4;
    switch (experience.begin((id * 32 + size) * 512 + uint32_t(workers.count()))) {
    case Experience::Advice::pays: wake(); break;
    case Experience::Advice::drawAtOnce:
        atOnce = true;
        layer::listen(false);
        break;
    default: break;
    }
}

void Recorder::endFrame()
{
    if (atOnce) { // tables may have changed, untold
        takeTablesOfLibrary();
        layer::listen(true);
    } else if (began) {
        flush();
        if (learns)
            experience.end(worth > leastGain * spent);
    }
    began = atOnce = awake = false;
}

// Others take about as long to wake as a frame of two thousand draws takes to be recorded.
void Recorder::wake()
{
    if (awake || workers.count() == 1)
        return;
    awake = true;
    const Clock::time_point start = Clock::now();
    workers.wake();
    spent += nanosecondsSince(start);
}

void Recorder::flush()
{
    if (batch.empty())
        return;
    ++counts[NINEFOLD_BANDS_FLUSHES];
    if (divide) {
        divide(batch);
        batch.clear();
        return;
    }
    const Clock::time_point start = Clock::now();
    const auto draws = double(batch.size());
    const bool alone = workers.count() == 1;
    const double cost = batch.cost();
    double rate = 0;
    const int bands = batch.cost() < worthSharing ? 0 : batch.divide(workers.count());
    if (bands == 0) {
        batch.drawAll();
    } else if (alone) {
        for (int band = 0; band < bands; ++band)
            batch.drawBand(band);
    } else {
        ++counts[NINEFOLD_BANDS_SHARED];
        rate = workers.draw(batch, bands);
    }
    batch.clear();
    awake = false;
    const double time = nanosecondsSince(start);
    const double drawing = bands == 0 || alone ? time : std::min(rate * cost, time * processors());
    spent += time;
    worth += (alone && bands > 1 ? gainOfCache : 1) * drawing - draws * (replayCost + passCost * bands);
}

bool Recorder::record(layer::Id id)
{
    if (!began) {
        beginFrame(id);
        if (atOnce)
            return false;
    }
    if (batch.full() || (!batch.empty() && !batch.target().isCurrent() && heeds(Rule::target)))
        flush();
    Fate fate;
    if (++samples % sampled == 0) {
        const Clock::time_point before = Clock::now();
        fate = batch.record(id, divide ? 0 : leastCost);
        spent += std::max(0.0, nanosecondsSince(before) - clockCost) * sampled;
    } else {
        fate = batch.record(id, divide ? 0 : leastCost);
    }
    switch (fate) {
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
    };
    return &calls;
}
