#include "report.h"

#include "hold.h"

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
    std::string text(const std::string &what) const
    {
        char line[160];
        std::snprintf(line, sizeof line, "%s: %d rows, geometric mean %.3f, %d above their goal", what.c_str(), measured,
                      std::exp(logarithms / measured), missed);
        return measured ? line : "";
    }
};

std::vector<std::string> summaryOf(const std::vector<Row> &rows)
{
    Tally all, peers, sprites, yardsticks, scalars;
    for (const Row &row : rows) {
        const bool sprite = row.job.perCall && row.job.axes.shape == NINEFOLD_SHAPE_RECTANGLE;
        all.add(row.ours(), row.best(Role::peer), row.best(Role::yardstick) ? 1 : row.job.goal);
        (row.best(Role::yardstick) ? yardsticks : sprite ? sprites : peers).add(row.ours(), row.rival(), row.job.goal);
        scalars.add(row.ours(), row.find(Role::scalar), row.job.scalarGoal);
    }
    std::vector<std::string> lines;
    if (isHeldToV3())
        lines.push_back(std::string("held to x86-64-v3") + (hasMoreThanV3() ? std::string("; left out: ") + notHoldable : ""));
    for (const std::string &line :
         {all.text("all jobs together against the best peer (goal of the mean 0.58)"),
          peers.text("of these without small rectangles and yardsticks"), sprites.text("of these small rectangles"),
          yardsticks.text("against yardsticks"), scalars.text("against the scalar loop")})
        if (!line.empty())
            lines.push_back(line);
    return lines;
}

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
    std::printf("\n* above the row's goal\n");
    for (const std::string &line : summaryOf(rows))
        std::printf("%s\n", line.c_str());
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

namespace {

constexpr char style[] =
    "<style>\nbody{font:14px sans-serif;max-width:70em;margin:2em auto;padding:0 1em}h2{font-size:1em;margin:1.5em 0 .3em}\n"
    ".r{display:grid;grid-template-columns:9em 1fr 30em;align-items:center;gap:.5em}.t{position:relative;height:.9em}\n"
    ".b{height:.9em;min-width:2px;display:inline-block}.t i{position:absolute;top:.4em;height:.15em;background:#222}\n"
    ".memcpy{background:#bbb}.ours{background:#2a7}.scalar{background:#cb8}.yardstick{background:#86b}.peer{background:#58c}"
    ".less{background:#ace}\n"
    "small{color:#777}.miss{color:#b22}svg text{font-size:12px}</style>\n";

void openPage(std::ofstream &out)
{
    out << "<!doctype html><meta charset=utf-8><title>Ninefold: benchmark</title>\n" << style << "<h1>Ninefold: benchmark</h1>\n";
}

} // namespace

void writePage(const std::vector<Row> &rows, const std::filesystem::path &path)
{
    std::ofstream out(path);
    openPage(out);
    out << "<p>Nanoseconds per pixel or per call on one thread; each bar is the median of interleaved turns, the line on it "
           "goes\n"
           "from p10 to p90; shorter is faster.\n"
           "<span class=\"b ours\">&emsp;</span> Ninefold by instruction set <span class=\"b scalar\">&emsp;</span> its scalar "
           "loop\n"
           "<span class=\"b peer\">&emsp;</span> peers <span class=\"b less\">&emsp;</span> peers that leave work out\n"
           "<span class=\"b yardstick\">&emsp;</span> yardsticks <span class=\"b memcpy\">&emsp;</span> "
           "memcpy of the same bytes</p>\n<p>";
    for (const std::string &line : summaryOf(rows))
        out << line << "<br>\n";
    out << "</p>\n";
    for (const Row &row : rows) {
        double longest = 0;
        for (const Measured &each : row.contenders)
            longest = std::max(longest, row.unit(each, 0.9));
        const Measured *rival = row.rival();
        out << "<h2>" << row.job.name << " <small>ns per " << row.job.unitName();
        if (row.ours() && rival)
            out << ", " << ratioTo(row, rival) << " of " << rival->name
                << (misses(row.ours(), rival, row.job.goal) ? " <span class=miss>above " + figure(row.job.goal) + "</span>" : "");
        out << "</small></h2>\n";
        for (const Measured &each : row.contenders) {
            const auto share = [&](double nanoseconds) { return number("%.2f", 100 * nanoseconds / longest) + "%"; };
            const double low = row.unit(each, 0.1), high = row.unit(each, 0.9);
            out << "<div class=r><span>" << each.name << "</span><span class=t><span class=\"b " << roleName(each.role)
                << "\" style=\"width:" << share(row.unit(each)) << "\"></span><i style=\"left:" << share(low)
                << ";width:" << share(high - low) << "\"></i></span><span>" << figure(row.unit(each)) << " <small>" << figure(low)
                << " to " << figure(high) << (each.note.empty() ? "" : "; ") << escaped(each.note, false)
                << "</small></span></div>\n";
        }
    }
}

void printChart(const Chart &chart)
{
    std::printf("%s, %s\n%-32s", chart.title.c_str(), chart.down.c_str(), chart.across.c_str());
    for (double place : chart.places)
        std::printf(" %9.0f", place);
    std::printf("  worst/best\n");
    for (const Curve &curve : chart.curves) {
        std::printf("%-32s", curve.name.c_str());
        for (double cost : curve.costs)
            std::printf(" %9s", figure(cost).c_str());
        const auto [least, most] = std::minmax_element(curve.costs.begin(), curve.costs.end());
        std::printf(" %9.2f\n", *most / *least);
    }
    std::printf("\n");
    std::fflush(stdout);
}

// Both axes by their logarithms, with a line for each power of ten down and for each place across. memcpy's curve is black.
void writePage(const std::vector<Chart> &charts, const std::filesystem::path &path)
{
    std::ofstream out(path);
    openPage(out);
    out << "<p>Nanoseconds on one thread in the best instruction set, medians of interleaved turns; lower is faster. The dashed\n"
           "curve is memcpy of the same bytes.</p>\n";
    for (const Chart &chart : charts) {
        constexpr double left = 60, top = 10, width = 560, height = 380;
        double least = 1e30, most = 0;
        for (const Curve &curve : chart.curves)
            for (double cost : curve.costs)
                least = std::min(least, cost), most = std::max(most, cost);
        const double low = std::floor(std::log10(least)), high = std::max(std::ceil(std::log10(most)), low + 1);
        const double first = std::log(chart.places.front()), last = std::log(chart.places.back());
        const auto x = [&](double place) { return left + width * (std::log(place) - first) / (last - first); };
        const auto y = [&](double cost) { return top + height * (high - std::log10(cost)) / (high - low); };
        const auto line = [&](double x1, double y1, double x2, double y2) {
            out << "<line x1=" << number("%.1f", x1) << " y1=" << number("%.1f", y1) << " x2=" << number("%.1f", x2)
                << " y2=" << number("%.1f", y2) << " stroke=\"#ddd\"/>";
        };
        const auto text = [&](double atX, double atY, const char *anchor, const std::string &words) {
            out << "<text x=" << number("%.1f", atX) << " y=" << number("%.1f", atY) << " text-anchor=" << anchor << ">" << words
                << "</text>\n";
        };
        out << "<h2>" << chart.title << "</h2>\n<svg width=\"960\" height=\"450\">\n";
        for (double place : chart.places) {
            line(x(place), top, x(place), top + height);
            text(x(place), top + height + 16, "middle", number("%.0f", place));
        }
        for (double power = low; power <= high; ++power) {
            line(left, y(std::pow(10, power)), left + width, y(std::pow(10, power)));
            text(left - 6, y(std::pow(10, power)) + 4, "end", number("%g", std::pow(10, power)));
        }
        text(left + width / 2, top + height + 36, "middle", chart.across);
        out << "<text transform=\"translate(14 " << top + height / 2 << ") rotate(-90)\" text-anchor=middle>" << chart.down
            << "</text>\n";
        for (size_t i = 0; i < chart.curves.size(); ++i) {
            const Curve &curve = chart.curves[i];
            const bool copied = curve.name.rfind("memcpy", 0) == 0;
            const std::string colour =
                copied ? "#000" : "hsl(" + number("%.0f", 360.0 * double(i) / double(chart.curves.size())) + " 70% 40%)";
            out << "<polyline fill=none stroke-width=2 stroke=\"" << colour << "\"" << (copied ? " stroke-dasharray=\"6 4\"" : "")
                << " points=\"";
            for (size_t at = 0; at < curve.costs.size(); ++at)
                out << number("%.1f", x(chart.places[at])) << ',' << number("%.1f", y(curve.costs[at])) << ' ';
            out << "\"><title>" << curve.name << "</title></polyline>\n<text x=" << left + width + 12
                << " y=" << top + 16 + 18 * double(i) << " fill=\"" << colour << "\">" << curve.name << "</text>\n";
        }
        out << "</svg>\n";
    }
}

} // namespace bench
