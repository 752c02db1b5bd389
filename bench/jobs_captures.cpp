// Real work: what a program drew, captured by the debug twin, by each instruction set.
#include "captures.h"
#include "jobs.h"

#include "kernels/sets.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace bench {

void addCaptureJob(const std::string &path, std::vector<Job> &jobs)
{
    std::string error;
    capture::Draws *const draws = openCapture(path, error);
    if (!draws) {
        std::fprintf(stderr, "ninefold-bench: %s\n", error.c_str());
        std::exit(2);
    }
    if (draws->refused())
        std::fprintf(stderr, "ninefold-bench: %s: %llu draws are left out; first %s\n", path.c_str(),
                     static_cast<unsigned long long>(draws->refused()), draws->refusal());
    Job job;
    job.name = "capture." + std::filesystem::path(path).stem().string();
    job.axes = {};
    job.ownOnly = true;
    job.goal = 0;
    job.pixels = double(draws->draws());
    job.unit = "draw";
    job.frames = double(draws->frames());
    job.more = [draws](Contenders &contenders) {
        for (int set = 0; set <= bestSet(); ++set) {
            if (!ninefold::useSet(set))
                continue;
            Contender made;
            made.name = std::string("ninefold/") + ninefold::setNames[set];
            made.role = Role::ours;
            made.prepare = [set] { ninefold::useSet(set); };
            made.seconds = [draws](long calls, double (*clock)()) {
                double sum = 0;
                for (long k = 0; k < calls; ++k)
                    sum += draws->play(nullptr, clock);
                return sum;
            };
            made.run = [seconds = made.seconds](long calls) { seconds(calls, [] { return 0.0; }); };
            made.verify = [draws] { return std::string(draws->verify(nullptr)); };
            made.cycle = 1;
            contenders.push_back(std::move(made));
        }
    };
    jobs.push_back(job);
}

} // namespace bench
