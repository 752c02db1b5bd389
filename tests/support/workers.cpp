#include "workers.h"

#include "numbers.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>

// Without fork: all work is done in the one process.
#if defined(_WIN32) || defined(__EMSCRIPTEN__)
#define NINEFOLD_ONE_PROCESS
#else
#include <csignal>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#ifdef NINEFOLD_COVERAGE
extern "C" void __gcov_dump(); // a child leaves without the end of a program, where counts are written
#endif

namespace support {

namespace {

constexpr unsigned processLimit = 64;
constexpr size_t reportBytes = 1 << 16;
[[maybe_unused]] constexpr int hangSeconds = 120; // on one scene; a scene takes less than a millisecond

} // namespace

// Seen by parent and children.
struct Workers::Shared {
    std::atomic<size_t> next, done, reported;
    std::atomic<uint64_t> scenes;
    std::atomic<bool> stop;
    struct Position {
        std::atomic<size_t> job;
        std::atomic<uint32_t> scene;
        std::atomic<int> set;
        std::atomic<bool> busy;
    } at[processLimit];
    char reports[reportBytes];
    std::atomic<Verdict> verdicts[];
};

Workers::Workers(size_t jobCount, unsigned processes) : count(jobCount), processCount(std::clamp(processes, 1u, processLimit))
{
    sharedSize = sizeof(Shared) + count * sizeof(Verdict);
#ifdef NINEFOLD_ONE_PROCESS
    void *memory = std::calloc(1, sharedSize);
    if (memory == nullptr)
        throw std::bad_alloc();
#else
    void *memory = mmap(nullptr, sharedSize, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
#endif
    shared = static_cast<Shared *>(memory); // zeros are its start
}

Workers::~Workers()
{
#ifdef NINEFOLD_ONE_PROCESS
    std::free(shared);
#else
    munmap(shared, sharedSize);
#endif
}

void Workers::report(const std::string &text)
{
    const size_t at = shared->reported.fetch_add(text.size());
    if (at + text.size() < reportBytes)
        std::memcpy(shared->reports + at, text.data(), text.size());
}

void Workers::doing(uint32_t scene, int set)
{
    shared->at[self].scene = scene;
    shared->at[self].set = set;
}

void Workers::addScenes(uint64_t drawn) { shared->scenes += drawn; }

Verdict Workers::verdict(size_t job) const { return shared->verdicts[job]; }

size_t Workers::failures() const
{
    return static_cast<size_t>(std::count_if(shared->verdicts, shared->verdicts + count,
                                             [](const std::atomic<Verdict> &verdict) { return verdict == Verdict::failed; }));
}

uint64_t Workers::scenes() const { return shared->scenes; }

std::string Workers::reports() const
{
    std::string text(shared->reports, std::min(shared->reported.load(), reportBytes));
    text.erase(std::find(text.begin(), text.end(), '\0'), text.end());
    if (shared->reported > text.size())
        text += "  (and more)\n";
    return text;
}

void Workers::work(const std::function<void()> &begin, const Job &job)
{
    begin();
    Shared::Position &at = shared->at[self];
    for (;;) {
        const size_t index = shared->next++;
        if (index >= count || shared->stop)
            return;
        at.job = index;
        at.busy = true;
        const bool passed = job(index);
        shared->verdicts[index] = passed ? Verdict::passed : Verdict::failed;
        if (!passed && stopAtFailure)
            shared->stop = true;
        at.busy = false;
        ++shared->done;
    }
}

#ifdef NINEFOLD_ONE_PROCESS

void Workers::run(const std::function<void()> &begin, const Job &job, const std::function<std::string(size_t, uint32_t, int)> &,
                  const std::function<void(size_t, uint64_t)> &)
{
    work(begin, job);
}

#else

namespace {

std::string endOf(int status)
{
    if (WIFSIGNALED(status))
        return std::string("crashed (") + strsignal(WTERMSIG(status)) + ")";
    return "ended with status " + std::to_string(WEXITSTATUS(status));
}

} // namespace

void Workers::run(const std::function<void()> &begin, const Job &job,
                  const std::function<std::string(size_t, uint32_t, int)> &describe,
                  const std::function<void(size_t, uint64_t)> &progress)
{
    using Clock = std::chrono::steady_clock;
    struct Child {
        pid_t id = 0;
        size_t job = 0;
        uint32_t scene = 0;
        Clock::time_point since;
        bool killed = false;
    };
    std::vector<Child> children(processCount);
    const auto start = [&](unsigned index) {
        children[index] = {};
        children[index].since = Clock::now();
        const pid_t id = fork();
        if (id == 0) {
            self = index;
            work(begin, job);
#ifdef NINEFOLD_COVERAGE
            __gcov_dump();
#endif
            _exit(0);
        }
        children[index].id = id;
    };
    for (unsigned index = 0; index < processCount; ++index)
        start(index);

    auto shown = Clock::now();
    unsigned deaths = 0;
    for (unsigned running = processCount; running > 0;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        for (unsigned index = 0; index < processCount; ++index) {
            Child &child = children[index];
            if (child.id <= 0)
                continue;
            Shared::Position &at = shared->at[index];
            int status = 0;
            if (waitpid(child.id, &status, WNOHANG) == child.id) {
                const bool died = status != 0;
                if (died) {
                    const std::string what = child.killed ? "did not end" : endOf(status);
                    report(describe(at.job, at.scene, at.set) + ": " + what + "\n");
                    if (at.busy)
                        shared->verdicts[at.job] = Verdict::failed;
                    at.busy = false;
                    ++shared->done;
                }
                child.id = 0;
                if (died && stopAtFailure)
                    shared->stop = true;
                if (died && shared->next < count && !shared->stop && ++deaths < 200)
                    start(index);
                else
                    --running;
                continue;
            }
            if (child.job != at.job || child.scene != at.scene) {
                child.job = at.job;
                child.scene = at.scene;
                child.since = Clock::now();
            } else if (Clock::now() - child.since > std::chrono::seconds(hangSeconds) && !child.killed) {
                child.killed = true;
                kill(child.id, SIGKILL);
            }
        }
        if (progress && Clock::now() - shown > std::chrono::seconds(5)) {
            shown = Clock::now();
            progress(shared->done, shared->scenes);
        }
    }
    if (progress)
        progress(shared->done, shared->scenes);
}

#endif

unsigned processCount()
{
    const auto wanted = static_cast<unsigned>(numberOfVariable("NINEFOLD_JOBS", std::thread::hardware_concurrency(), 1, 1000));
    return std::clamp(wanted, 1u, processLimit);
}

} // namespace support
