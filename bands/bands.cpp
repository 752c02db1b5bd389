// Bands on the layer: what is recorded, what is drawn at once, and when recorded draws are drawn.
#include "recorder.h"

#include <ninefold/bands.h>

#include "core/startup.h"
#include "kernels/parts.h"

#include <algorithm>
#include <thread>

namespace bands {
namespace {

using layer::Call;
using layer::Function;

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

int Recorder::start(int threads)
{
    flush();
    if (threads <= 0)
        threads = int(std::thread::hardware_concurrency());
    threads = std::clamp(threads, 1, NINEFOLD_BANDS_MOST_THREADS);
    if (threads < workers.count())
        workers.stop();
    takeTablesOfLibrary();
    started = true;
    threads = workers.start(threads);
    leastCost = threads > 3 ? 150 : threads > 1 ? 300 : 30e3;
    return threads;
}

void Recorder::stop()
{
    flush();
    workers.stop();
    started = false;
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
    if (!awake && batch.cost() > worthSharing / 2 && workers.count() > 1) {
        awake = true;
        workers.wake();
    }
    return true;
}

} // namespace bands

bool layer::before(Call &call)
{
    bands::Recorder &recorder = bands::recorder();
    if (!recorder.started)
        return true;
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
        [] { bands::recorder().flush(); },
        [] { bands::recorder().stop(); },
        bands::declarePure,
        [](int what) -> unsigned long long {
            return what >= 0 && what < int(std::size(bands::recorder().counts)) ? bands::recorder().counts[what] : 0;
        },
    };
    return &calls;
}
