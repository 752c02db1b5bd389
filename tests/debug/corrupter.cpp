// Is the twin sound? Breaks one thing at a time in scenes of the differential, asks the twin, then draws with the library alone.
// Where that crashes, does not end, or leaves its buffers, the twin must have told an error.
//
//     corrupter [--count N] [--seed N] [--list]
//
// Prints what was missed, by what was broken, and errors that were told where the draw came out as without the break. Ends with 1
// where more was missed than what nobody can know.
#include "report.h"

#include "support/host.h"
#include "support/numbers.h"
#include "support/random.h"
#include "support/scene.h"
#include "support/subject.h"

#include <sys/mman.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>

using namespace support;

namespace {

sigjmp_buf back;
volatile sig_atomic_t drawing;
char doing[256];
void caught(int signal)
{
    if (!drawing) { // the twin itself, or this program, since a draw may have left anything behind
        const ssize_t ignored = write(2, doing, std::strlen(doing));
        _exit(ignored ? 3 : 4);
    }
    siglongjmp(back, signal);
}

// The signal that ended the kernel, 0 if it returned.
[[gnu::noinline]] int drawGuarded(DrawFunc kernel)
{
    const itimerval limit{{0, 0}, {2, 0}}, none{};
    setitimer(ITIMER_REAL, &limit, nullptr);
    drawing = 1;
    const int signal = sigsetjmp(back, 1);
    if (signal == 0)
        kernel();
    drawing = 0;
    setitimer(ITIMER_REAL, &none, nullptr);
    return signal;
}

std::string told;
bool moved;
void collect(const NinefoldFinding *finding, void *)
{
    if (finding->severity == NINEFOLD_DEBUG_ERROR && told.empty())
        told = finding->name;
    // No error, since the kernel never looks at the texture that it compares with.
    moved |= std::strcmp(finding->name, "frame-buffer-changed") == 0;
}

// One thing that can be broken.
struct Break {
    std::string name;
    void *at;
    size_t size;
    bool pointer;
};

std::vector<Break> breaks(World &world, const Scene &scene)
{
    std::vector<Break> list;
    const auto add = [&](const char *name, auto &field) {
        list.push_back({name, &field, sizeof field, std::is_pointer_v<std::remove_reference_t<decltype(field)>>});
    };
#define NINEFOLD_BREAK(field) add("rs." #field, rs.field);
    NINEFOLD_BREAK(dstPixels)
    NINEFOLD_BREAK(dstShift)
    NINEFOLD_BREAK(dstPitch)
    NINEFOLD_BREAK(clipLeft)
    NINEFOLD_BREAK(clipTop)
    NINEFOLD_BREAK(clipRight)
    NINEFOLD_BREAK(clipBottom)
    NINEFOLD_BREAK(originX)
    NINEFOLD_BREAK(originY)
    NINEFOLD_BREAK(frameBuffer)
    NINEFOLD_BREAK(shaheiPlane)
    NINEFOLD_BREAK(zBuffer)
    NINEFOLD_BREAK(vertex[0].x)
    NINEFOLD_BREAK(vertex[1].y)
    NINEFOLD_BREAK(vertex[2].x)
    NINEFOLD_BREAK(vertex[0].z)
    NINEFOLD_BREAK(uv0[1].u)
    NINEFOLD_BREAK(uv1[0].v)
    NINEFOLD_BREAK(uv2[1].u)
    NINEFOLD_BREAK(tex0)
    NINEFOLD_BREAK(tex1)
    NINEFOLD_BREAK(tex2)
    NINEFOLD_BREAK(mipTex)
    NINEFOLD_BREAK(mipTex1)
    NINEFOLD_BREAK(lineTable0)
    NINEFOLD_BREAK(lineTable1)
    NINEFOLD_BREAK(scanShift)
    NINEFOLD_BREAK(blendFunc)
    NINEFOLD_BREAK(multiFunc)
    NINEFOLD_BREAK(mosaicSize)
    NINEFOLD_BREAK(mosaicSize1)
    NINEFOLD_BREAK(mipFrac)
    NINEFOLD_BREAK(ruleWidth)
#undef NINEFOLD_BREAK
    const auto texture = [&](const char *name, int index) {
        if (index < 0)
            return;
        Texture &t = world.textures[size_t(index)];
        const std::string prefix = std::string(name) + "->";
#define NINEFOLD_BREAK(field) add((prefix + #field).c_str(), t.field);
        NINEFOLD_BREAK(pixels)
        NINEFOLD_BREAK(width)
        NINEFOLD_BREAK(height)
        NINEFOLD_BREAK(log2Width)
        NINEFOLD_BREAK(mipCount)
        NINEFOLD_BREAK(mip[0])
        NINEFOLD_BREAK(mip[1])
        NINEFOLD_BREAK(mip[2])
        NINEFOLD_BREAK(runlengthMap)
        NINEFOLD_BREAK(zeroPixelMap)
#undef NINEFOLD_BREAK
    };
    texture("tex0", scene.tex0), texture("tex1", scene.tex1), texture("tex2", scene.tex2);
    return list;
}

// Writes another value there and says which kind.
const char *spoil(const Break &one, Random &random)
{
    if (one.pointer) {
        uintptr_t value;
        std::memcpy(&value, one.at, sizeof value);
        const char *kind;
        switch (random.below(5)) {
        case 0: value = 0, kind = "null"; break;
        case 1: value = 8, kind = "small"; break;
        case 2: value = uintptr_t(0x0000600000000000) + 16 * random.below(1000000), kind = "wild"; break;
        case 3: value = uintptr_t(0xCDCDCDCDCDCDCDCD), kind = "pattern"; break;
        default: value += (random.percent(50) ? 1 : -1) * intptr_t(0x1000) * random.below(0x200), kind = "moved"; break;
        }
        std::memcpy(one.at, &value, sizeof value);
        return kind;
    }
    uint32_t value;
    std::memcpy(&value, one.at, sizeof value);
    const char *kind;
    switch (random.below(5)) {
    case 0: value = 0, kind = "zero"; break;
    case 1: value = ~value, kind = "negative"; break;
    case 2: value += 1, kind = "one more"; break;
    case 3: value <<= 1 + random.below(4), kind = "shifted"; break;
    default: value = random.word(), kind = "random"; break;
    }
    std::memcpy(one.at, &value, sizeof value);
    return kind;
}

// Everything that scenes may write, with what lies around it.
struct Copy {
    std::vector<std::byte> bytes[prioritySlot + 1];
    void take(const World &world)
    {
        for (int slot = 0; slot <= prioritySlot; ++slot)
            bytes[slot].assign(world.begin(slot), world.begin(slot) + slotBytes(slot));
    }
    void put(World &world) const
    {
        for (int slot = 0; slot <= prioritySlot; ++slot)
            std::memcpy(world.begin(slot), bytes[slot].data(), bytes[slot].size());
    }
    bool same(const World &world) const
    {
        for (int slot = 0; slot <= prioritySlot; ++slot)
            if (std::memcmp(world.begin(slot), bytes[slot].data(), bytes[slot].size()) != 0)
                return false;
        return true;
    }
    // Whether what lies outside of the buffers themselves is as it was.
    bool sameAround(const World &world, const Scene &scene) const
    {
        const Place places[] = {scene.pixels, scene.plane, scene.priority};
        const int64_t pixels = int64_t{scene.frameWidth} * scene.frameHeight,
                      sizes[] = {4 * pixels, (pixels + 15) / 16 * 2, pixels};
        for (int slot = 0; slot <= prioritySlot; ++slot) {
            const auto size = int64_t{slotBytes(slot)};
            const int64_t begin = places[slot].slot == noSlot ? size : std::clamp<int64_t>(places[slot].offset, 0, size);
            const int64_t end =
                places[slot].slot == noSlot ? size : std::clamp<int64_t>(places[slot].offset + sizes[slot], 0, size);
            const auto equal = [&](int64_t from, int64_t to) {
                return std::memcmp(world.begin(slot) + from, bytes[slot].data() + from, size_t(to - from)) == 0;
            };
            if (!equal(0, begin) || !equal(end, size))
                return false;
        }
        return true;
    }
};

struct Tally {
    uint64_t total = 0, bad = 0, missed = 0, overstrict = 0;
};

void run(uint64_t seed, uint32_t count, int out)
{
    startLibrary();
    debug::settings().repeat = 0;
    debug::settings().summary = false;
    debug::callback = collect;
    const std::vector<Subject> &subjects = catalogueSubjects();
    World world;
    Copy before, plain;
    Random random(seed);
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGALRM, SIGABRT}) {
        struct sigaction action = {};
        action.sa_handler = caught;
        action.sa_flags = SA_NODEFER | SA_ONSTACK;
        sigaction(signal, &action, nullptr);
    }
    static std::byte stack[1 << 16];
    const stack_t other{stack, 0, sizeof stack};
    sigaltstack(&other, nullptr);
    for (uint32_t n = 0; n < count; ++n) {
        const Subject &subject = subjects[random.below(uint32_t(subjects.size()))];
        const Scene scene =
            makeScene(subject, {random.percent(50) ? Kind::guard : Kind::plain, random.bits() % 1000000, n}, world);
        if (scene.multiOperator == watchingMulti || scene.blendOperator == watchingBlend)
            continue;
        SearchDrawFunc(subject.code);
        layer::Call call{};
        call.id = layer::Id(layer::recordOf(subject.code));
        const DrawFunc kernel = layer::ownKernel(call.id);
        const auto bind = [&] {
            const RenderState state = bindScene(scene, world, true);
            std::memcpy(&rs, &state, sizeof rs);
        };
        before.take(world);
        bind();
        if (drawGuarded(kernel) != 0)
            continue; // no scene of the differential does
        plain.take(world);
        before.put(world);
        bind();
        const std::vector<Break> all = breaks(world, scene);
        const Break &one = all[random.below(uint32_t(all.size()))];
        const char *const kind = spoil(one, random);
        told.clear(), moved = false;
        std::snprintf(doing, sizeof doing, "the twin crashed at %s %s, %s scene %u\n", one.name.c_str(), kind,
                      subject.name().c_str(), n);
        layer::before(call);
        const std::string said = told;
        std::strcpy(doing, "crashed outside of twin and draw\n");
        const int signal = drawGuarded(kernel);
        const bool left = signal == 0 && scene.id.kind == Kind::plain && scene.axes.rectOpt != NINEFOLD_RECT_RUNS &&
                          !before.sameAround(world, scene);
        const bool bad = (signal != 0 || left) && !(said.empty() && moved), same = signal == 0 && plain.same(world);
        char line[512];
        const int length = std::snprintf(line, sizeof line, "%s %s\t%d\t%d\t%s\t%d\t%s scene %u: %s\n", one.name.c_str(), kind,
                                         bad, same, said.empty() ? "-" : said.c_str(), left ? -1 : signal, subject.name().c_str(),
                                         n, kindName(scene.id.kind));
        if (write(out, line, size_t(length)) != length)
            _exit(4);
        before.put(world);
    }
    _exit(0);
}

} // namespace

int main(int argumentCount, char **arguments)
{
    uint32_t count = 2000;
    uint64_t seed = 1;
    bool list = false;
    for (int i = 1; i < argumentCount; ++i) {
        if (std::strcmp(arguments[i], "--list") == 0)
            list = true;
        else if (i + 1 < argumentCount && std::strcmp(arguments[i], "--count") == 0)
            count = uint32_t(numberFrom(arguments[++i], "--count", 1, 100000000));
        else if (i + 1 < argumentCount && std::strcmp(arguments[i], "--seed") == 0)
            seed = numberFrom(arguments[++i], "--seed", 0, UINT64_MAX);
        else
            return std::puts("corrupter [--count N] [--seed N] [--list]"), 2;
    }
    std::map<std::string, Tally> tallies;
    uint64_t total = 0, bad = 0, missed = 0, hidden = 0, deaths = 0, overstrict = 0;
    constexpr uint32_t batch = 200;
    for (uint32_t done = 0; done < count; done += batch) {
        int ends[2];
        if (pipe(ends) != 0)
            return 2;
        std::fflush(stdout);
        const pid_t child = fork();
        if (child == 0) {
            close(ends[0]);
            run(seed * 1000003 + done, std::min(batch, count - done), ends[1]);
        }
        close(ends[1]);
        std::FILE *const in = fdopen(ends[0], "r");
        char line[512], what[128], bads[16], sames[16], said[64], signal[16], where[256];
        while (std::fgets(line, sizeof line, in)) {
            if (std::sscanf(line, "%127[^\t]\t%15[^\t]\t%15[^\t]\t%63[^\t]\t%15[^\t]\t%255[^\n]", what, bads, sames, said, signal,
                            where) != 6)
                continue;
            const bool isBad = std::strcmp(bads, "0") != 0, same = std::strcmp(sames, "0") != 0;
            Tally &tally = tallies[what];
            const bool silent = std::strcmp(said, "-") == 0;
            ++tally.total, ++total;
            tally.bad += isBad, bad += isBad;
            if (isBad && silent) {
                ++tally.missed, ++missed;
                hidden += std::strstr(what, " moved") != nullptr;
                if (list)
                    std::printf("missed: %s, signal %s: %s\n", what, signal, where);
            }
            if (same && !silent) {
                ++tally.overstrict, ++overstrict;
                if (list)
                    std::printf("same all the same: %s, %s: %s\n", what, said, where);
            }
        }
        std::fclose(in);
        int status = 0;
        waitpid(child, &status, 0);
        deaths += !WIFEXITED(status) || WEXITSTATUS(status) != 0;
    }
    for (const auto &[what, tally] : tallies)
        if (tally.missed || tally.overstrict)
            std::printf("%-28s %6llu broken, %6llu bad, %5llu missed, %5llu told though nothing changed\n", what.c_str(),
                        static_cast<unsigned long long>(tally.total), static_cast<unsigned long long>(tally.bad),
                        static_cast<unsigned long long>(tally.missed), static_cast<unsigned long long>(tally.overstrict));
    const auto number = [](uint64_t n) { return static_cast<unsigned long long>(n); };
    std::printf(
        "%llu corruptions, %llu draws went wrong, %llu of them missed (%llu by pointers to other memory of the process, which "
        "nobody labelled), %llu told though nothing changed, %llu batches cut short\n",
        number(total), number(bad), number(missed), number(hidden), number(overstrict), number(deaths));
    return missed > hidden ? 1 : 0;
}
