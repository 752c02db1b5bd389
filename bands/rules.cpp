#include "rules.h"

#include "line_table.h"

#include "kernels/polygon/drivers.h"
#include "ops/list.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

namespace bands {

uint32_t ignoredRules = 0;

namespace {

using namespace ninefold;
using layer::Choice;
using layer::Needs;
using layer::Shape;

std::vector<PixelOperator> pureOperators;

// About what a pixel costs, in ns on a core of 3 GHz with 8 lanes: it decides whether other threads are woken.
float weightOf(const Needs &n)
{
    float weight = n.axes.blend == NINEFOLD_BLEND_COPY ? 0.15F : 0.35F;
    switch (n.axes.filter) {
    case NINEFOLD_FILTER_BILINEAR:
    case NINEFOLD_FILTER_LINE_BILINEAR: weight += 1; break;
    case NINEFOLD_FILTER_MIP_BILINEAR: weight += 2; break;
    case NINEFOLD_FILTER_MIP:
    case NINEFOLD_FILTER_MOSAIC:
    case NINEFOLD_FILTER_GOURAUD: weight += 0.7F; break;
    default: break;
    }
    if (n.tex0 && n.positions > 1)
        weight += 0.3F;
    if (n.pers)
        weight += 1;
    if (n.ruleTest)
        weight += 0.7F;
    if (n.callsMulti)
        weight += 0.7F;
    if (n.drawMask || n.readsZ)
        weight += 0.3F;
    return weight;
}
constexpr float drawWeight = 60, linePixelWeight = 2; // ns
constexpr float slowWeight = 2; // pixels that take so long do not wait for memory

float costOf(const Kind &kind, float width, float height)
{
    switch (kind.needs->shape) {
    case Shape::line: return drawWeight + linePixelWeight * std::max(width, height);
    case Shape::triangle: return drawWeight + kind.weight * width * height / 2;
    default: return drawWeight + kind.weight * width * height;
    }
}

void lookOnly() {}

Driver driverOf(Choice choice)
{
    return choice == Choice::stretch ? drawMipStretch : choice == Choice::corners ? drawMipCorners : drawMipPolygon;
}

CarriedRows carriedRowsOf(const Needs &n)
{
    return {n.lineLevels, n.axes.filter == NINEFOLD_FILTER_MIP || n.axes.filter == NINEFOLD_FILTER_MIP_BILINEAR,
            marksPlane(n.axes.shahei), n.tex1};
}

// The rows and columns between vertices, unclipped; coordinates that are out of their range lie anywhere.
struct Range {
    int64_t low = INT64_MAX, high = INT64_MIN;
    void add(int32_t coordinate, int32_t origin)
    {
        const int64_t at = int64_t{coordinate} + origin;
        low = std::min(low, at), high = std::max(high, at);
    }
    void clip(int32_t &begin, int32_t &end) const
    {
        constexpr int64_t most = int64_t{1} << 30;
        if (low <= -most || high >= most)
            return;
        begin = int32_t(std::max<int64_t>(begin, low)), end = int32_t(std::min<int64_t>(end, high));
    }
};

} // namespace

void declarePure(PixelOperator function)
{
    if (std::find(pureOperators.begin(), pureOperators.end(), function) == pureOperators.end())
        pureOperators.push_back(function);
}

Kind kinds[layer::recordCount + layer::namedDrawCount];

const Kind &makeKind(layer::Id id)
{
    Kind &kind = kinds[id];
    const Needs &n = layer::needsOf(id);
    kind.nothing = n.shape == Shape::nothing;
    kind.banded = layer::isRecord(id) ? bandedKernel(id) : bandedFunction(layer::Function(id - layer::recordCount));
    kind.weight = weightOf(n);
    kind.plane = n.readsPlane || n.writesPlane;
    kind.mayMend = n.lineTable0;
    kind.driven = n.choice != Choice::none;
    kind.needs = &n;
    return kind;
}

float costAtMost(const Kind &kind)
{
    const Vertex *const v = rs.vertex;
    if (kind.needs->shape != Shape::triangle)
        return costOf(kind, std::fabs(float(v[1].x) - float(v[0].x)), std::fabs(float(v[1].y) - float(v[0].y)));
    const auto [left, right] = std::minmax({v[0].x, v[1].x, v[2].x});
    const auto [top, bottom] = std::minmax({v[0].y, v[1].y, v[2].y});
    return costOf(kind, float(right) - float(left), float(bottom) - float(top));
}

Target Target::current()
{
    return {rs.dstPixels, rs.shaheiPlane, rs.zBuffer, rs.dstShift, std::max(int32_t(rs.dstHeight), rs.clipBottom)};
}

bool Target::shares(const Texture &texture) const
{
    const size_t count = size_t(height) << shift;
    const auto *const begin = texture.pixels;
    const auto *const end = begin + size_t{texture.width} * texture.height;
    return ninefold::Target::meet(begin, end, pixels, pixels + count) ||
           (plane && ninefold::Target::meet(begin, end, plane, plane + count / 16)) ||
           (z && ninefold::Target::meet(begin, end, z, z + count));
}

void Judge::begin()
{
    target = Target::current();
    ++batch;
    given[0] = given[1] = nullptr;
}

Judge::Known &Judge::knownOf(const Texture *texture, bool chain)
{
    const uintptr_t hash = uintptr_t(texture) / alignof(std::max_align_t);
    Known &one = known[(hash ^ hash >> 6 ^ uintptr_t(chain)) % std::size(known)];
    if (one.texture == texture && one.batch == batch && one.chain == chain)
        return one;
    one = {texture, batch, chain, !target.shares(*texture), -1};
    for (uint32_t level = 0; chain && one.clean && level < std::min<size_t>(texture->mipCount, std::size(texture->mip)); ++level)
        one.clean = !texture->mip[level] || !target.shares(*texture->mip[level]);
    return one;
}

bool Judge::clean(const Texture *texture, bool chain) { return !texture || knownOf(texture, chain).clean; }

bool Judge::sourcesClean(const Needs &n)
{
    const bool chain = n.choice != Choice::none || n.lineLevels, next = n.next && !chain;
    return (!n.tex0 || clean(rs.tex0, chain)) && (!n.tex1 || clean(rs.tex1, chain)) && (!n.tex2 || clean(rs.tex2, false)) &&
           (!next || clean(rs.mipTex, false)) && (!next || !n.next1 || clean(rs.mipTex1, false));
}

// Whether a run-length rectangle may come to lie before its frame-buffer row: each hole of 128 texels leads back by as many
// pixels, and takes them from the row's length.
bool Judge::movesBack(int32_t left, int32_t columns)
{
    const Texture *const texture = rs.tex0;
    if (!texture || texture->width < 128 || left >= (columns + 127) / 128 * 128)
        return false;
    Known &one = knownOf(texture, false);
    if (one.holes < 0)
        one.holes = texture->runlengthMap &&
                    std::memchr(texture->runlengthMap, -128, size_t{texture->width} * texture->height) != nullptr;
    return one.holes != 0;
}

// The rows of a line table.
bool Judge::judgeTable(const Kind &kind, Draw &draw)
{
    const Needs &n = *kind.needs;
    Box box;
    if (!rs.lineTable0 || !box.make())
        return true;
    const LineTableRecord *const line = rs.lineTable0 + box.dy;
    const bool skips = std::any_of(line, line + (box.bottom - box.top),
                                   [](const LineTableRecord &record) { return record.startU == NINEFOLD_SKIP_ROW; });
    if (skips && kind.plane && heeds(Rule::planeRows))
        return false;
    if (skips && heeds(Rule::skippedRows))
        draw.mend = Mend::skippedRows;
    if (n.lineLevels && heeds(Rule::lineLevels)) {
        const CarriedRows rows = carriedRowsOf(n);
        draw.mend = Mend::lineLevels;
        draw.levels = rows.levels, draw.next = rows.next, draw.marks = rows.marks, draw.second = rows.second;
    }
    return true;
}

PixelOperator Judge::bandedFor(PixelOperator function)
{
    for (int k = 0; k < 2; ++k)
        if (asked[k] == function && given[k])
            return given[k];
    PixelOperator banded = nullptr;
    if (const int index = ops::operatorIndex(function); index >= 0)
        banded = bandedOperator(index);
    else if (!heeds(Rule::hostOperator) || std::find(pureOperators.begin(), pureOperators.end(), function) != pureOperators.end())
        banded = function;
    asked[1] = asked[0], given[1] = given[0];
    asked[0] = function, given[0] = banded;
    return banded;
}

Fate Judge::judge(const Kind &kind, Draw &draw)
{
    const Needs &n = *kind.needs;
    if (kind.nothing)
        return Fate::nothing;
    if (!kind.banded)
        return Fate::whole;
    const int32_t width = 1 << rs.dstShift;
    if ((rs.clipLeft < 0 || rs.clipTop < 0 || rs.clipRight > width || rs.clipRight < rs.clipLeft || rs.clipBottom < rs.clipTop ||
         rs.dstPitch != uint32_t(width)) &&
        heeds(Rule::strayClip))
        return Fate::whole;

    // The rows and columns that it can reach.
    Range rows, columns;
    const int count = n.shape == Shape::triangle ? 3 : 2;
    for (int k = 0; k < count; ++k)
        rows.add(rs.vertex[k].y, rs.originY), columns.add(rs.vertex[k].x, rs.originX);
    if (n.shape == Shape::line) // whose rows are truncated, and whose end counts
        --rows.low, rows.high += 2, --columns.low, columns.high += 2;
    int32_t top = rs.clipTop, bottom = rs.clipBottom, left = rs.clipLeft, right = rs.clipRight;
    rows.clip(top, bottom);
    if (!(n.scanShift && rs.scanShift))
        columns.clip(left, right);
    draw.kernel = kind.banded;
    draw.mend = Mend::none, draw.levels = false;
    draw.leaves = kind.driven || n.lineLevels;
    if (top >= bottom || (left >= right && n.shape != Shape::triangle)) // the edges of triangles are truncated slopes
        return Fate::nothing;

    if (kind.plane && rs.dstShift < 4 && heeds(Rule::narrowPlane))
        return Fate::whole;
    if ((n.callsBlend && !bandedFor(rs.blendFunc)) || (n.callsMulti && !bandedFor(rs.multiFunc)))
        return Fate::whole;
    if ((n.tex0 || n.tex2) && heeds(Rule::overlap) && !sourcesClean(n))
        return Fate::whole;
    if (n.map == Map::runs && heeds(Rule::moveBack) && movesBack(left, right - left))
        return Fate::whole;
    if (kind.mayMend && !judgeTable(kind, draw))
        return Fate::whole;

    reached = {top, bottom};
    nanoseconds = costOf(kind, float(right - left), float(bottom - top));
    pixels = kind.weight < slowWeight ? float(right - left) * float(bottom - top) : 0;
    if (n.shape == Shape::triangle)
        pixels /= 2;
    if (n.shape == Shape::line) {
        const bool flat = columns.high - columns.low >= rows.high - rows.low;
        if (flat && heeds(Rule::lineEnd))
            draw.mend = Mend::lineEnd;
        pixels = 0;
    }
    return Fate::cut;
}

void leaveScratch(const Kind &kind)
{
    if (kind.driven && heeds(Rule::mipScratch)) {
        driverOf(kind.needs->choice)(lookOnly, lookOnly);
    } else if (kind.needs->lineLevels && heeds(Rule::lineLevels)) { // also where the clip rectangle has no columns
        Box box;
        if (box.make())
            carriedRowsOf(*kind.needs).pass(box, uint32_t(box.bottom - box.top));
    }
}

} // namespace bands
