#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

namespace bench {

namespace {

const char *roleName(Role role)
{
    static constexpr const char *names[] = {"memcpy", "ours", "scalar", "yardstick", "peer", "less"};
    return names[int(role)];
}

std::string number(const char *form, double value)
{
    char text[32];
    std::snprintf(text, sizeof text, form, value);
    return text;
}

// Three digits that mean something, whatever the magnitude.
std::string figure(double value)
{
    return number(value < 0.1 ? "%.4f" : value < 1 ? "%.3f" : value < 10 ? "%.2f" : value < 100 ? "%.1f" : "%.0f", value);
}

std::string figure(const Row &row, const Measured *measured) { return measured ? figure(row.unit(*measured)) : "-"; }

std::string ratioTo(const Row &row, const Measured *other)
{
    const Measured *ours = row.ours();
    return ours && other ? figure(ratio(*ours, *other)) : "-";
}

bool misses(const Measured *ours, const Measured *rival, double goal)
{
    return goal > 0 && ours && rival && ratio(*ours, *rival) > goal;
}

struct Tally {
    int measured = 0, missed = 0;
    double logarithms = 0;

    void add(const Measured *ours, const Measured *rival, double goal)
    {
        if (!ours || !rival)
            return;
        ++measured;
        missed += misses(ours, rival, goal);
        logarithms += std::log(ratio(*ours, *rival));
    }
    void print(const char *what) const
    {
        if (measured)
            std::printf("against %s: %d rows, geometric mean %.3f, %d above their goal\n", what, measured,
                        std::exp(logarithms / measured), missed);
    }
};

std::string escaped(const std::string &text, bool quoted)
{
    std::string result;
    for (char c : text)
        result += quoted ? c == '"' ? "\"\"" : std::string(1, c) : c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
    return result;
}

} // namespace

const Measured *Row::find(Role role, const std::string &name) const
{
    for (const Measured &each : contenders)
        if (each.role == role && (name.empty() || each.name == name))
            return &each;
    return nullptr;
}

const Measured *Row::best(Role role) const
{
    const Measured *best = nullptr;
    for (const Measured &each : contenders)
        if (each.role == role && (!best || each.median() < best->median()))
            best = &each;
    return best;
}

const Measured *Row::ours() const
{
    const Measured *last = nullptr; // sets come baseline first
    for (const Measured &each : contenders)
        if (each.role == Role::ours)
            last = &each;
    return last;
}

const Measured *Row::rival() const
{
    const Measured *yardstick = best(Role::yardstick);
    return yardstick ? yardstick : best(Role::peer);
}

double Row::unit(const Measured &measured, double share) const
{
    return measured.quantile(share) / (job.perCall ? 1 : job.pixels);
}

void printHeading()
{
    std::printf("%-40s %-5s %8s %8s %8s %8s %8s %8s  %-20s %8s %8s %8s\n", "job", "ns/", "memcpy", "v1", "v3", "v4", "scalar",
                "rival", "", "/memcpy", "/rival", "/scalar");
}

void printRow(const Row &row)
{
    const Measured *memcpy = row.find(Role::memcpy), *scalar = row.find(Role::scalar), *rival = row.rival();
    std::printf("%-40s %-5s %8s %8s %8s %8s %8s %8s  %-20s %8s %8s%s %7s%s\n", row.job.name.c_str(), row.job.unitName(),
                figure(row, memcpy).c_str(), figure(row, row.find(Role::ours, "ninefold/v1")).c_str(),
                figure(row, row.find(Role::ours, "ninefold/v3")).c_str(),
                figure(row, row.find(Role::ours, "ninefold/v4")).c_str(), figure(row, scalar).c_str(), figure(row, rival).c_str(),
                rival ? rival->name.c_str() : "", ratioTo(row, memcpy).c_str(), ratioTo(row, rival).c_str(),
                misses(row.ours(), rival, row.job.goal) ? "*" : " ", ratioTo(row, scalar).c_str(),
                misses(row.ours(), scalar, row.job.scalarGoal) ? "*" : " ");
    std::fflush(stdout);
}

void printSummary(const std::vector<Row> &rows)
{
    Tally peers, sprites, yardsticks, scalars;
    for (const Row &row : rows) {
        const bool sprite = row.job.perCall && row.job.axes.shape == NINEFOLD_SHAPE_RECTANGLE;
        (row.best(Role::yardstick) ? yardsticks : sprite ? sprites : peers).add(row.ours(), row.rival(), row.job.goal);
        scalars.add(row.ours(), row.find(Role::scalar), row.job.scalarGoal);
    }
    std::printf("\n* above the row's goal\n");
    peers.print("the best peer");
    sprites.print("the best peer, small rectangles");
    yardsticks.print("yardsticks");
    scalars.print("the scalar loop");
}

void writeCsv(const std::vector<Row> &rows, const std::filesystem::path &path)
{
    std::ofstream out(path);
    out << "job,contender,role,unit,median_ns,p10_ns,p90_ns,to_memcpy,to_best_peer,goal,note\n";
    for (const Row &row : rows)
        for (const Measured &each : row.contenders) {
            const Measured *memcpy = row.find(Role::memcpy), *rival = row.rival();
            out << row.job.name << ',' << each.name << ',' << roleName(each.role) << ',' << row.job.unitName() << ','
                << row.unit(each) << ',' << row.unit(each, 0.1) << ',' << row.unit(each, 0.9) << ','
                << (memcpy ? figure(ratio(each, *memcpy)) : "") << ',' << (rival ? figure(ratio(each, *rival)) : "") << ','
                << row.job.goal << ",\"" << escaped(each.note, true) << "\"\n";
        }
}

void writePage(const std::vector<Row> &rows, const std::filesystem::path &path)
{
    std::ofstream out(path);
    out << "<!doctype html><meta charset=utf-8><title>Ninefold: benchmark</title>\n<style>\n"
           "body{font:14px sans-serif;max-width:60em;margin:2em auto;padding:0 1em}h2{font-size:1em;margin:1.5em 0 .3em}\n"
           ".r{display:grid;grid-template-columns:9em "
           "1fr;align-items:center;gap:.5em}.b{height:.9em;display:inline-block;margin-right:.4em}\n"
           ".memcpy{background:#bbb}.ours{background:#2a7}.scalar{background:#cb8}.yardstick{background:#86b}.peer{background:#"
           "58c}.less{background:#ace}\n"
           "small{color:#777}.miss{color:#b22}</style>\n<h1>Ninefold: benchmark</h1>\n"
           "<p>Nanoseconds per pixel or per call on one thread; each bar is the median of interleaved turns, shorter is faster.\n"
           "<span class=\"b ours\">&emsp;</span>Ninefold by instruction set <span class=\"b scalar\">&emsp;</span>its scalar "
           "loop\n"
           "<span class=\"b peer\">&emsp;</span>peers <span class=\"b less\">&emsp;</span>peers that leave work out\n"
           "<span class=\"b yardstick\">&emsp;</span>yardsticks <span class=\"b memcpy\">&emsp;</span>"
           "memcpy of the same bytes</p>\n";
    for (const Row &row : rows) {
        double longest = 0;
        for (const Measured &each : row.contenders)
            longest = std::max(longest, row.unit(each));
        const Measured *rival = row.rival();
        out << "<h2>" << row.job.name << " <small>ns per " << row.job.unitName();
        if (row.ours() && rival)
            out << ", " << ratioTo(row, rival) << " of " << rival->name
                << (misses(row.ours(), rival, row.job.goal) ? " <span class=miss>above " + figure(row.job.goal) + "</span>" : "");
        out << "</small></h2>\n";
        for (const Measured &each : row.contenders)
            out << "<div class=r><span>" << each.name << "</span><span><span class=\"b " << roleName(each.role)
                << "\" style=\"width:" << number("%.1f", 55 * row.unit(each) / longest) << "%\"></span>" << figure(row.unit(each))
                << " <small>" << escaped(each.note, false) << "</small></span></div>\n";
    }
}

} // namespace bench
