// The figures as a table, as CSV and as a page.
#pragma once

#include "timing.h"

#include <filesystem>

namespace bench {

struct Row {
    Job job;
    std::vector<Measured> contenders;

    const Measured *find(Role role, const std::string &name = {}) const;
    const Measured *best(Role role) const;
    const Measured *ours() const; // the best set that the machine has
    const Measured *rival() const; // what `goal` is measured by: the best peer, or the yardstick
    double unit(const Measured &measured,
                double share = 0.5) const; // nanoseconds per pixel or per call: median or another quantile
};

// Costs along a scale, in powers.
struct Curve {
    std::string name;
    std::vector<double> costs; // one for each place of the chart
};
struct Chart {
    std::string title, across, down; // what the axes count
    std::vector<double> places;
    std::vector<Curve> curves;
};

void printHeading();
void printRow(const Row &row); // as soon as it is there
void printSummary(const std::vector<Row> &rows);
void writeCsv(const std::vector<Row> &rows, const std::filesystem::path &path);
void writePage(const std::vector<Row> &rows, const std::filesystem::path &path);
void printChart(const Chart &chart);
void writePage(const std::vector<Chart> &charts, const std::filesystem::path &path);

} // namespace bench
