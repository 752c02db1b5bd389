// What draws cost under the debug twin.
#include "jobs.h"
#include "scene.h"

#include <cstdlib>

#include <dlfcn.h>

#include <utility>

namespace bench {

namespace {

// The twin has an rs and a table of kernels of its own, so it stands beside the library that the benchmark is linked with.
struct Twin {
    RenderState *state;
    DrawFunc kernel; // of the job whose turn it is
    void *library;

    template <class F>
    F *named(F &, const char *name) const
    {
        return reinterpret_cast<F *>(dlsym(library, name));
    }
#define NINEFOLD_OF_TWIN(name) named(name, #name)
    bool load()
    {
        setenv("NINEFOLD_DEBUG", "summary=off", 0);
        library = dlopen(BENCH_TWIN, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
        state = library ? static_cast<RenderState *>(dlsym(library, "rs")) : nullptr;
        if (!state)
            return false;
        NINEFOLD_OF_TWIN(MakeUVLShiftTable)(), NINEFOLD_OF_TWIN(MakeShaheiRunlengthTbl)();
        NINEFOLD_OF_TWIN(MakeDrawMaskTable)(), NINEFOLD_OF_TWIN(MakeDrawFuncTable)();
        return true;
    }
    void prepare(const Work &work, const ninefold::Axes &axes)
    {
        prepareState(work);
        const RenderState own = *state;
        *state = rs;
        state->blendFunc = own.blendFunc, state->multiFunc = own.multiFunc;
        NINEFOLD_OF_TWIN(SetFrameBuffer)(rs.frameBuffer);
        kernel = NINEFOLD_OF_TWIN(SearchDrawFunc)(ninefold::codeOf(axes));
    }
#undef NINEFOLD_OF_TWIN
} twin;

} // namespace

void addTwinJobs(std::vector<Job> &jobs)
{
    if (!twin.load())
        return;
    for (const bool stretched : {false, true}) {
        seed();
        const ninefold::Axes axes = axesOf(NINEFOLD_SHAPE_RECTANGLE, stretched ? NINEFOLD_RECT_STRETCH : NINEFOLD_RECT_UNIT,
                                           stretched ? NINEFOLD_FILTER_BILINEAR : NINEFOLD_FILTER_POINT, alpha);
        Job job = rectangleJob(stretched ? "twin.bilinear.alpha.x1.5" : "twin.unit.alpha", stretched ? Kind::stretch : Kind::blit,
                               axes, Content::sprite, 8, stretched ? 1 / 1.5 : 1);
        const Work work = std::exchange(job.work, {});
        job.axes = {};
        job.ownOnly = true;
        job.budget = 1000;
        job.more = [work, axes](Contenders &contenders) {
            Contender made = contender("debug twin", Role::ours, "", work, [primitives = work.primitives](size_t i) {
                const Primitive &p = primitives[i];
                std::copy_n(p.vertex, 2, twin.state->vertex);
                std::copy_n(p.uv, 2, twin.state->uv0);
                twin.kernel();
            });
            made.prepare = [work, axes] { twin.prepare(work, axes); };
            contenders.push_back(std::move(made));
        };
        jobs.push_back(job);
    }
}

} // namespace bench
