// bench [OPTION] [FILTER...]: see usage.
#include "check.h"
#include "families.h"
#include "hold.h"
#include "jobs.h"
#include "report.h"
#include "scale.h"
#include "scene.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace bench {

namespace {

constexpr const char *usage =
    "usage: ninefold-bench [OPTION...] [FILTER...]\n"
    "Times the library against other libraries, a plain loop and memcpy on the jobs whose name contains one of the filters\n"
    "(default: all), and writes bench.csv and bench.html.\n\n"
    "  --quick        shorter turns, fewer rounds\n"
    "  --v3           hold the library and its peers to x86-64-v3 (AVX2); peers that cannot be are left out\n"
    "  --capture=FILE a capture's frames too, ns per draw and per frame, whatever the filters (several: give it again); the\n"
    "                 filter \"capture\" leaves the other jobs out\n"
    "  --list         name the jobs and their contenders\n"
    "  --families     every draw code on 64 by 64 pixels; filters are parts of the codes' names\n"
    "  --scale        how some kernels' cost grows with pixels, primitives and textures, as curves in bench.html\n"
    "  --check[=DIR]  draw each job once by every contender and compare; write the frames into DIR\n"
    "  --out=DIR      write there instead of here\n"
    "  --help         print this\n"
    "  --version      print the version\n\n"
    "Exit status: 0, 1 where --check finds a difference, 2 for wrong options.\n";

struct Options {
    bool quick = false, list = false, check = false, families = false, scale = false;
    std::filesystem::path pictures, out;
    std::vector<std::string> filters, captures;
};

int fail(const std::string &message)
{
    std::fprintf(stderr, "ninefold-bench: %s\n%s", message.c_str(), usage);
    return 2;
}

std::vector<std::pair<std::string, Maker>> &registered()
{
    static std::vector<std::pair<std::string, Maker>> all;
    return all;
}

int timeJobs(const std::vector<Job> &jobs, const Effort &effort, const std::filesystem::path &out)
{
    std::vector<Row> rows;
    printHeading();
    for (const Job &job : jobs) {
        fillFrame();
        std::vector<Measured> measured = job.samples.empty()
                                             ? measure(contendersOf(job), effort, job.cold ? Caches::cold : Caches::warm)
                                             : std::vector<Measured>{{"ninefold/v1", job.note, Role::ours, job.samples}};
        if (job.budget > 0)
            measured.push_back({"budget", "", Role::yardstick, std::vector<double>(measured[0].nanoseconds.size(), job.budget)});
        rows.push_back({job, std::move(measured)});
        printRow(rows.back());
        if (job.frames > 0) {
            Row perFrame = rows.back();
            perFrame.job.name += "/frame";
            perFrame.job.pixels = job.frames;
            perFrame.job.unit = "frame";
            rows.push_back(std::move(perFrame));
            printRow(rows.back());
        }
    }
    printSummary(rows);
    writeCsv(rows, out / "bench.csv");
    writePage(rows, out / "bench.html");
    std::printf("written: %s\n", (out / "bench.html").c_str());
    return 0;
}

int run(const Options &options)
{
    const Effort &effort = options.quick ? quick : thorough;
    recordStartUp(options.list || options.check ? 0 : effort.rounds);
    MakeUVLShiftTable();
    MakeShaheiRunlengthTbl();
    MakeDrawFuncTable();
    MakeDrawMaskTable();
    std::sort(registered().begin(), registered().end());
    if (options.families)
        return timeFamilies(options.filters, effort, options.out / "families.csv");
    if (options.scale)
        return timeScale(options.filters, effort, options.out / "bench.html");
    if (options.check)
        useSmoothPictures();

    std::vector<Job> jobs;
    for (Job &job : allJobs()) {
        const auto matches = [&](const std::string &filter) { return job.name.find(filter) != std::string::npos; };
        if (options.filters.empty() || std::any_of(options.filters.begin(), options.filters.end(), matches))
            jobs.push_back(std::move(job));
    }
    for (const std::string &file : options.captures)
        addCaptureJob(file, jobs);
    if (jobs.empty())
        return fail("no job's name contains that; see ninefold-bench --list");

    if (options.list) {
        for (const Job &job : jobs) {
            std::printf("%s:", job.name.c_str());
            for (const Contender &contender : contendersOf(job))
                std::printf(" %s", contender.name.c_str());
            std::printf("\n");
        }
        return 0;
    }
    if (options.check) {
        const int wrong = checkContenders(jobs, options.pictures);
        if (wrong)
            std::printf("%d contenders draw nothing or something else\n", wrong);
        return wrong ? 1 : 0;
    }
    return timeJobs(jobs, effort, options.out);
}

int parse(int argc, char **argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--quick")
            options.quick = true;
        else if (argument == "--v3")
            holdToV3(argv);
        else if (argument == "--list")
            options.list = true;
        else if (argument == "--families")
            options.families = true;
        else if (argument == "--scale")
            options.scale = true;
        else if (argument == "--check" || argument.rfind("--check=", 0) == 0) {
            options.check = true;
            options.pictures = argument.substr(std::min(argument.size(), std::strlen("--check=")));
        } else if (argument.rfind("--out=", 0) == 0 || (argument == "--out" && i + 1 < argc)) {
            options.out = argument == "--out" ? argv[++i] : argument.substr(std::strlen("--out="));
            if (!std::filesystem::is_directory(options.out))
                return fail("no folder '" + options.out.string() + "'");
        } else if (argument.rfind("--capture=", 0) == 0) {
            options.captures.push_back(argument.substr(std::strlen("--capture=")));
        } else if (argument == "--capture" && i + 1 < argc) {
            options.captures.emplace_back(argv[++i]);
        } else if (argument == "--capture" || argument == "--out") {
            return fail(argument + (argument == "--out" ? " needs a folder" : " needs a file"));
        } else if (argument == "--version") {
            std::printf("ninefold-bench %d.%d.%d\n", NINEFOLD_VERSION_MAJOR, NINEFOLD_VERSION_MINOR, NINEFOLD_VERSION_PATCH);
            return 0;
        } else if (argument == "--help") {
            std::fputs(usage, stdout);
            return 0;
        } else if (argument.empty() || argument[0] == '-')
            return fail("unknown option '" + argument + "'");
        else
            options.filters.push_back(argument);
    }
    if (options.list + options.check + options.families + options.scale > 1)
        return fail("--list, --check, --families and --scale exclude each other");
    if (!options.captures.empty() && (options.families || options.scale))
        return fail("--capture goes neither with --families nor with --scale");
    return run(options);
}

} // namespace

Peer::Peer(const char *name, Maker make) { registered().emplace_back(name, make); }

const std::vector<std::pair<std::string, Maker>> &peers() { return registered(); }

} // namespace bench

int main(int argc, char **argv) { return bench::parse(argc, argv); }
