// Runs many small jobs in child processes, because the library draws from a global state, and because a kernel under test may
// crash or never end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace support {

enum class Verdict : uint8_t { open, passed, failed };

class Workers {
public:
    Workers(size_t jobCount, unsigned processes);
    ~Workers();
    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;

    bool stopAtFailure = false; // leave the jobs open that come after one

    // Of a child. The text of a failure is kept as long as there is room.
    void report(const std::string &text);
    void doing(uint32_t scene, int set); // named when the child dies
    void addScenes(uint64_t drawn);

    // Runs all jobs; `begin` once in each child, ahead of its first. `describe` names a job, its scene and set for a child that
    // died; `progress` is called from time to time.
    using Job = std::function<bool(size_t job)>;
    void run(const std::function<void()> &begin, const Job &job,
             const std::function<std::string(size_t, uint32_t, int)> &describe,
             const std::function<void(size_t done, uint64_t scenes)> &progress = nullptr);

    Verdict verdict(size_t job) const;
    size_t failures() const;
    uint64_t scenes() const;
    std::string reports() const;

private:
    struct Shared;
    Shared *shared = nullptr;
    size_t sharedSize = 0;
    size_t count;
    unsigned processCount;
    unsigned self = 0;

    void work(const std::function<void()> &begin, const Job &job);
};

// NINEFOLD_JOBS, or the number of processors.
unsigned processCount();

} // namespace support
