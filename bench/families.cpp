#include "families.h"

#include "kernels/sets.h"
#include "scene.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <numeric>

namespace bench {

namespace {

using ninefold::Axes;

constexpr int cell = 64;
constexpr int cells = 64; // drawn in turn, so that the Shahei plane is free wherever a call draws

struct Code {
    Axes axes;
    DrawFunc kernel;
    std::string name;
    double nanoseconds = 1e30; // the least of all rounds
    double toFamily = 0;
};

// Codes that differ only in what happens to a pixel once its source is there.
std::string familyOf(const Axes &axes)
{
    Axes family{};
    family.shape = axes.shape, family.pers = axes.pers, family.filter = axes.filter, family.rectOpt = axes.rectOpt;
    family.multi = NINEFOLD_MULTI_NONE;
    std::string name = ninefold::nameOf(family);
    const size_t blend = name.find(".copy");
    return name.erase(blend, std::strlen(".copy"));
}

double pixelsOf(const Axes &axes)
{
    return axes.shape == NINEFOLD_SHAPE_LINE        ? cell - 1
           : axes.shape == NINEFOLD_SHAPE_RECTANGLE ? cell * cell
                                                    : cell * cell * 0.45;
}

Texture *mixedRule()
{
    static Texture *const rule = [] {
        Texture *const made = CreateTexture(256, 256);
        seed();
        for (int i = 0; i < 256 * 256; ++i) // with the edge at 100 to 150, 30 % are outside and 30 % in it
            made->pixels[i] = uint32_t(i % 10 < 3 ? random(101) : i % 10 < 6 ? 101 + random(49) : 150 + random(106));
        return made;
    }();
    return rule;
}

} // namespace

void prepareFor(const Axes &axes)
{
    static Work work;
    static std::vector<LineTableRecord> table(cell);
    static std::vector<uint8_t> priorities;
    work.content = Content::sprite;
    work.textureSize =
        axes.rectOpt == NINEFOLD_RECT_PLANE_RUNS ? frameSize : 256; // whose zero-pixel map lies under the whole frame
    prepareState(work);
    if (priorities.empty())
        for (int i = 0; i < frameSize * frameSize; ++i)
            priorities.push_back(uint8_t(random(10) < 6 ? 128 : 50));
    rs.zBuffer = priorities.data();
    std::memset(rs.shaheiPlane, 0, frameSize * frameSize / 8);
    SetPresetDrawMask(127);
    rs.tex1 = texture(Content::soft, 256);
    rs.tex2 = mixedRule();
    rs.ruleThreshold = 100, rs.ruleWidth = 50, rs.ruleCurve = NINEFOLD_CURVE_LINEAR;
    SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_PLAIN);
    SetBlendModeMulti(NINEFOLD_MULTI_OP_MUL);
    SetBlendMode(NINEFOLD_BLEND_XOR); // what blend 12 calls
    // 0.75 texels a pixel, 2.5 where there are levels to choose.
    const bool levels = ninefold::readsLevels(axes.filter);
    const int32_t across = int32_t((levels ? 2.5 : 0.75) * cell * 65536);
    const TexCoord corner[4] = {{3 << 16, 5 << 16},
                                {(3 << 16) + across, 9 << 16},
                                {7 << 16, (5 << 16) + across},
                                {(3 << 16) + across, (5 << 16) + across}};
    for (int i = 0; i < 4; ++i) {
        const bool diagonal = axes.shape == NINEFOLD_SHAPE_RECTANGLE && axes.rectOpt != NINEFOLD_RECT_CORNERS;
        rs.uv0[i] = rs.uv1[i] = corner[diagonal && i == 1 ? 3 : i];
        rs.color[i] = 0xFF204060u + uint32_t(i) * 0x302010u;
    }
    rs.uv2[0] = {0, 0}, rs.uv2[1] = {cell << 16, cell << 16}, rs.uv2[2] = {0, cell << 16};
    for (int y = 0; y < cell; ++y)
        table[size_t(y)] = {3 << 16, y << 16, (3 << 16) + across, (y + 4) << 16};
    rs.lineTable0 = rs.lineTable1 = table.data();
}

namespace {

double timed(const Code &code)
{
    prepareFor(code.axes);
    static const std::vector<int> places = [] {
        std::vector<int> all(frameSize / cell * (frameSize / cell));
        std::iota(all.begin(), all.end(), 0);
        seed();
        for (size_t i = all.size() - 1; i > 0; --i)
            std::swap(all[i], all[size_t(random(int(i + 1)))]);
        all.resize(cells);
        return all;
    }();
    Contender draws{
        "", Role::ours, "", {}, [&](long calls) {
            for (long i = 0; i < calls; ++i) {
                const int x = places[size_t(i)] % (frameSize / cell) * cell, y = places[size_t(i)] / (frameSize / cell) * cell;
                if (code.axes.shape == NINEFOLD_SHAPE_RECTANGLE) {
                    rs.vertex[0] = {x, y, 0}, rs.vertex[1] = {x + cell, y + cell, 0};
                    if (code.axes.rectOpt == NINEFOLD_RECT_PLANE_RUNS)
                        rs.uv0[0] = {x << 16, y << 16};
                } else if (code.axes.shape == NINEFOLD_SHAPE_TRIANGLE) {
                    rs.vertex[0] = {x, y, 1000}, rs.vertex[1] = {x + 63, y + 13, 1400}, rs.vertex[2] = {x + 8, y + 63, 2000};
                } else {
                    rs.vertex[0] = {x, y + 10, 0}, rs.vertex[1] = {x + 63, y + 50, 0};
                }
                code.kernel();
            }
        }};
    return secondsOf(draws, cells) * 1e9 / cells;
}

double medianOf(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + long(values.size() / 2), values.end());
    return values[values.size() / 2];
}

} // namespace

int timeFamilies(const std::vector<std::string> &filters, const Effort &effort, const std::filesystem::path &csv)
{
    std::vector<Code> codes;
    ninefold::forEachCombination([&](const Axes &axes) {
        const std::string name = ninefold::nameOf(axes);
        const auto matches = [&](const std::string &filter) { return name.find(filter) != std::string::npos; };
        if (filters.empty() || std::any_of(filters.begin(), filters.end(), matches))
            codes.push_back({axes, SearchDrawFunc(ninefold::codeOf(axes)), name});
    });
    if (codes.empty()) {
        std::fprintf(
            stderr,
            "bench: no code's name contains that; names read like rect.stretch.bilinear.alpha.z+mask.tex1.rule.prescale\n");
        return 2;
    }
    ninefold::useSet(bestSet());
    fillFrame();
    const int rounds = std::max(effort.rounds / 5, 2);
    for (int round = 0; round < rounds; ++round)
        for (Code &code : codes)
            code.nanoseconds = std::min(code.nanoseconds, timed(code));

    std::map<std::string, std::vector<double>> families;
    for (const Code &code : codes)
        families[familyOf(code.axes)].push_back(code.nanoseconds);
    const auto rank = [&] {
        for (Code &code : codes)
            code.toFamily = code.nanoseconds / medianOf(families[familyOf(code.axes)]);
        std::sort(codes.begin(), codes.end(), [](const Code &a, const Code &b) { return a.toFamily > b.toFamily; });
    };
    rank();
    // What stands far out may have met something else on the machine: once more, longer.
    for (int round = 0; round < 4 * rounds; ++round)
        for (size_t i = 0; i < std::min<size_t>(codes.size(), 200); ++i)
            codes[i].nanoseconds = std::min(codes[i].nanoseconds, timed(codes[i]));
    rank();

    std::printf("%-28s %7s %12s %10s %10s\n", "family, 64x64", "codes", "median ns", "ns/px", "slowest");
    for (auto &[name, times] : families) {
        const auto of =
            std::find_if(codes.begin(), codes.end(), [&, family = name](const Code &c) { return familyOf(c.axes) == family; });
        std::printf("%-28s %7zu %12.0f %10.3f %9.2fx\n", name.c_str(), times.size(), medianOf(times),
                    medianOf(times) / pixelsOf(of->axes), of->toFamily);
    }
    std::printf("\nthe slowest against the median of their family\n");
    for (size_t i = 0; i < std::min<size_t>(codes.size(), 20); ++i)
        std::printf("%-56s 0x%07X %10.0f ns %6.2fx\n", codes[i].name.c_str(), ninefold::codeOf(codes[i].axes),
                    codes[i].nanoseconds, codes[i].toFamily);

    std::ofstream out(csv);
    out << "code,name,ns_per_call,to_family\n";
    for (const Code &code : codes)
        out << ninefold::codeOf(code.axes) << ',' << code.name << ',' << code.nanoseconds << ',' << code.toFamily << '\n';
    std::printf("written: %s\n", csv.c_str());
    return 0;
}

} // namespace bench
