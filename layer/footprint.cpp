#include "footprint.h"

#include "kernels/polygon/drivers.h"
#include "kernels/polygon/triangle.h"
#include "kernels/rect/rect.h"

#include <algorithm>
#include <climits>

namespace layer {
namespace {

using namespace ninefold;

void needsOfKernel(Axes a, Needs &n)
{
    n.axes = a;
    if (isEmpty(a))
        return;
    n.writesPixels = true;
    n.readsPlane = n.writesPlane = marksPlane(a.shahei);
    n.writesZ = a.shahei == NINEFOLD_SHAHEI_PLANE_PRIORITY;
    n.readsZ = testsPriority(a.shahei);
    n.drawMask = marksPlane(a.shahei) || testsStipple(a.shahei);
    n.callsBlend = a.blend == NINEFOLD_BLEND_CUSTOM;
    if (a.shape == NINEFOLD_SHAPE_LINE) {
        n.shape = Shape::line;
        n.colours = a.filter == NINEFOLD_FILTER_GOURAUD ? 2 : 1;
        return;
    }
    const Plan p = planOf(a);
    const bool triangle = p.frame.triangle;
    n.shape = triangle ? Shape::triangle : Shape::rectangle;
    n.walk = p.frame.walk, n.map = p.frame.map;
    if (isDriven(a))
        n.choice = triangle ? Choice::polygon : a.rectOpt == NINEFOLD_RECT_STRETCH ? Choice::stretch : Choice::corners;
    n.tex0 = !hasColoursOnly(a.filter);
    n.tex1 = p.frame.second();
    n.tex2 = n.ruleTest = p.frame.rule;
    n.lineLevels = n.tex0 && p.frame.hasLineLevels();
    n.next = p.frame.hasNext();
    n.next1 = n.next && n.tex1;
    n.lineTable0 = p.frame.walk == Walk::table;
    n.lineTable1 = n.lineTable0 && n.tex1;
    n.scanShift = triangle;
    n.pers = p.frame.walk == Walk::pers;
    for (int t = 0; t < (n.tex1 ? 2 : 1); ++t) {
        n.stippleSteps |= p.sample[t].reading == Reading::stipple;
        if (p.sample[t].reading == Reading::mosaic) {
            n.mosaic = true;
            n.mosaic1 |= t == 1 || p.sample[t].motion == Motion::unit;
        }
    }
    n.callsMulti = p.frame.multi != Multi::none;
    n.positions = p.frame.walk == Walk::none || p.frame.walk == Walk::table    ? 0
                  : p.frame.walk == Walk::unit || p.frame.walk == Walk::unit16 ? 1
                  : p.frame.walk == Walk::stretch                              ? 2
                  : p.frame.walk == Walk::corners                              ? 4
                                                                               : 3;
    n.colours = p.frame.colours() ? (triangle ? 3 : 4) : a.filter == NINEFOLD_FILTER_FLAT || p.frame.multi == Multi::colour;
}

void needsOfFunction(Function function, Needs &n)
{
    switch (function) {
    case Function::DrawRectTexRunlen_TEST: return needsOfKernel(namedRuns, n);
    case Function::DrawLineTest: return needsOfKernel(namedLine, n);
    case Function::DrawPolygon_PERS_TEST: return needsOfKernel(namedPers, n);
    case Function::DrawRectGradRule_GEN_RULE_TEST: needsOfKernel(ruleRectangle(NINEFOLD_FILTER_MIP_BILINEAR), n); break;
    case Function::DrawRectGradRule_GEN_RULE_MIPMAP_TEST:
        needsOfKernel(ruleRectangle(NINEFOLD_FILTER_MIP_BILINEAR), n);
        n.choice = Choice::stretch;
        return;
    case Function::DrawRectTexRule:
    case Function::DrawRectGradRule:
        n.axes = ruleRectangle(NINEFOLD_FILTER_POINT);
        n.axes.rectOpt = NINEFOLD_RECT_STRETCH, n.axes.shahei = NINEFOLD_SHAHEI_NONE, n.axes.blend = NINEFOLD_BLEND_COPY;
        n.shape = Shape::rectangle, n.walk = Walk::stretch, n.positions = 2;
        n.writesPixels = n.tex0 = n.ruleTest = true;
        n.tex1 = function == Function::DrawRectTexRule;
        n.colours = n.tex1 ? 0 : 4;
        return;
    case Function::DrawZbufferPolygon:
    case Function::DrawZbufferPolygon0xff:
    case Function::DrawZbufferPolygonFlip:
    case Function::DrawZbufferPolygonClear: n.writesZ = true; break;
    case Function::DrawShaheiPolygonSet:
    case Function::DrawShaheiPolygonFlip:
    case Function::DrawShaheiPolygonReset: n.readsPlane = n.writesPlane = true; break;
    default: n.writesZ = n.readsPlane = n.writesPlane = true; break;
    }
    if (n.shape == Shape::nothing) {
        n.shape = Shape::planes;
        n.axes = {NINEFOLD_SHAPE_TRIANGLE, 0, 0, 0, NINEFOLD_FILTER_FLAT, NINEFOLD_RECT_NONE, 0, 0, NINEFOLD_MULTI_NONE};
    }
    n.choice = Choice::none;
}

// Which levels a driver would choose, asked of the driver itself: it gets kernels that only look, and chains of marks in the place
// of textures.
struct Chosen {
    bool called, fromLevels;
    uint8_t level[2];
};
Chosen chosen;

Texture *mark(uint32_t level) { return reinterpret_cast<Texture *>(uintptr_t(level) + 1); }
void lookAtLevels()
{
    chosen = {true, true, {uint8_t(uintptr_t(rs.tex0) - 1), rs.tex1 ? uint8_t(uintptr_t(rs.tex1) - 1) : uint8_t(0)}};
}
void lookAtTexture() { chosen = {true, false, {0, 0}}; }

Chosen choose(Choice choice, uint32_t count0, uint32_t count1)
{
    const Driver driver = choice == Choice::stretch   ? drawMipStretch
                          : choice == Choice::corners ? drawMipCorners
                                                      : drawMipPolygon;
    struct Saved {
        Texture *tex0, *tex1, *mipTex, *mipTex1;
        int32_t mipFrac, mipFrac1, mipRatio;
    } const saved = {rs.tex0, rs.tex1, rs.mipTex, rs.mipTex1, rs.mipFrac, rs.mipFrac1, rs.mipRatio};
    Texture chain[2];
    for (Texture &texture : chain)
        for (uint32_t level = 0; level < std::size(texture.mip); ++level)
            texture.mip[level] = mark(level);
    chain[0].mipCount = std::clamp(count0, 2u, 16u), chain[1].mipCount = std::clamp(count1, 2u, 16u);
    rs.tex0 = &chain[0], rs.tex1 = saved.tex1 ? &chain[1] : nullptr;
    chosen = {};
    driver(lookAtLevels, lookAtTexture);
    rs.tex0 = saved.tex0, rs.tex1 = saved.tex1, rs.mipTex = saved.mipTex, rs.mipTex1 = saved.mipTex1;
    rs.mipFrac = saved.mipFrac, rs.mipFrac1 = saved.mipFrac1, rs.mipRatio = saved.mipRatio;
    return chosen;
}

class Finder {
public:
    Finder(const Needs &needs, bool (*isReadable)(const Texture *), Footprint &footprint)
        : n(needs), readable(isReadable), f(footprint)
    {}

    void find()
    {
        f.pixels = {};
        f.columnsCut = f.rowsCut = 0;
        f.chooses = f.overlaps = false;
        f.textureCount = f.memoryCount = 0;
        place();
        // The drivers choose before anything is clipped.
        if (n.choice != Choice::none)
            findLevels();
        else if (placed)
            findTextures();
        if (placed && n.tex2)
            add(Field::tex2, 0, rs.tex2, !f.pixels.empty());
        if (f.pixels.empty())
            return;
        findMemory();
        f.overlaps = sourcesOverlap();
    }

private:
    const Needs &n;
    bool (*readable)(const Texture *);
    Footprint &f;
    bool placed = false; // the frame goes on to its textures, though perhaps to no pixel

    void clip(int64_t left, int64_t top, int64_t right, int64_t bottom)
    {
        f.pixels = {int32_t(std::max<int64_t>(left, rs.clipLeft)), int32_t(std::max<int64_t>(top, rs.clipTop)),
                    int32_t(std::min<int64_t>(right, rs.clipRight)), int32_t(std::min<int64_t>(bottom, rs.clipBottom))};
    }

    void place()
    {
        if (n.shape == Shape::line) {
            const int64_t x0 = rs.vertex[0].x + rs.originX, y0 = rs.vertex[0].y + rs.originY;
            const int64_t x1 = rs.vertex[1].x + rs.originX, y1 = rs.vertex[1].y + rs.originY;
            // Positions are truncated towards 0: a line that runs half a pixel beyond it draws in row or column 0.
            const auto end = [](int64_t a, int64_t b) { return std::max(a, b) + (std::max(a, b) < 0 ? 2 : 1); };
            clip(std::min(x0, x1), std::min(y0, y1), end(x0, x1), end(y0, y1));
        } else if (n.shape == Shape::rectangle) {
            Box box;
            if (!box.make())
                return;
            placed = true;
            f.pixels = {box.left, box.top, box.right, box.bottom};
            f.columnsCut = box.dx, f.rowsCut = box.dy;
        } else if (n.shape == Shape::triangle || n.shape == Shape::planes) {
            Order o;
            if (!o.make())
                return;
            placed = true;
            // Edges step by truncated slopes from positions of 16 bits, which far vertices do not fit; shifts go anywhere.
            const auto [low, high] = std::minmax({o.xT, o.xM, o.xB});
            // Occlusion triangles that start above the clip rectangle jump by clipLeft: upwards too, where edges run on beyond the
            // vertices.
            const bool jumps = n.shape == Shape::planes && o.yT < rs.clipTop;
            const bool anywhere =
                (n.scanShift && rs.scanShift) || low < -0x7FFF || high > 0x7FFF || (jumps && rs.clipLeft < o.yB);
            clip(anywhere ? INT32_MIN : int64_t{low} - 1, o.yT, anywhere ? INT32_MAX : int64_t{high} + 1, o.yB);
            if (jumps)
                f.pixels.top = std::min(rs.clipLeft, rs.clipTop);
        }
    }

    void add(Field field, uint32_t level, const Texture *texture, bool fetched)
    {
        if (f.textureCount < std::size(f.texture))
            f.texture[f.textureCount++] = {field, uint8_t(level), fetched, texture};
    }
    bool canLook(const Texture *texture) const { return texture && (!readable || readable(texture)); }
    uint32_t levelCount(const Texture *texture) const { return canLook(texture) ? texture->mipCount : 0; }
    void addLevel(Field field, const Texture *base, uint32_t level, bool fetched)
    {
        if (level < std::size(base->mip) && level < base->mipCount)
            add(field, level, base->mip[level], fetched);
    }

    // A level for the whole primitive.
    void findLevels()
    {
        const Chosen levels = choose(n.choice, levelCount(rs.tex0), levelCount(rs.tex1));
        if (!levels.called) {
            f.pixels = {};
            placed = false;
            return;
        }
        const bool drawn = !f.pixels.empty();
        if (!levels.fromLevels) {
            if (placed) {
                add(Field::tex0, 0, rs.tex0, drawn);
                if (n.tex1)
                    add(Field::tex1, 0, rs.tex1, drawn);
            }
            return;
        }
        f.chooses = true;
        findLevel(Field::tex0, rs.tex0, levels.level[0], placed, n.next);
        if (rs.tex1 || (n.tex1 && placed))
            findLevel(Field::tex1, rs.tex1, levels.level[1], placed && n.tex1, n.next1);
    }
    void findLevel(Field field, const Texture *base, uint32_t level, bool kernelLooks, bool next)
    {
        add(field, 0, base, false);
        if (!canLook(base) || base->mipCount < 2 || !kernelLooks)
            return;
        addLevel(field, base, level, !f.pixels.empty());
        if (next)
            addLevel(field, base, level + 1, !f.pixels.empty());
    }

    void findTextures()
    {
        if (n.tex0)
            findTexture(Field::tex0, rs.tex0, Field::mipTex, n.next ? &rs.mipTex : nullptr);
        if (n.tex1)
            findTexture(Field::tex1, rs.tex1, Field::mipTex1, n.next1 ? &rs.mipTex1 : nullptr);
    }
    void findTexture(Field field, const Texture *texture, Field nextField, Texture *const *next)
    {
        add(field, 0, texture, !n.lineLevels && !f.pixels.empty());
        if (n.lineLevels && canLook(texture))
            for (uint32_t level = 0; level < std::min<uint32_t>(texture->mipCount, std::size(texture->mip)); ++level)
                addLevel(field, texture, level, true);
        if (next)
            add(nextField, 0, *next, !f.pixels.empty());
    }

    void use(Field field, bool written, const void *base, ptrdiff_t begin, ptrdiff_t end, size_t size)
    {
        const uintptr_t at = uintptr_t(base) + uintptr_t(begin) * size;
        f.used[f.memoryCount++] = {field, written, base ? reinterpret_cast<const void *>(at) : nullptr,
                                   size_t(end - begin) * size};
    }

    void findMemory()
    {
        const Pixels &p = f.pixels;
        const ptrdiff_t first = (ptrdiff_t(p.top) << rs.dstShift) + p.left,
                        end = (ptrdiff_t(p.bottom - 1) << rs.dstShift) + p.right;
        const ptrdiff_t firstWord = first >> 4, endWord = (end + 15) >> 4;
        if (n.writesPixels)
            use(Field::dstPixels, true, rs.dstPixels, first, end, sizeof *rs.dstPixels);
        if (n.readsPlane || n.writesPlane)
            use(Field::shaheiPlane, n.writesPlane, rs.shaheiPlane, firstWord, endWord, sizeof *rs.shaheiPlane);
        if (n.readsZ || n.writesZ)
            use(Field::zBuffer, n.writesZ, rs.zBuffer, first, end, sizeof *rs.zBuffer);
        const ptrdiff_t above = ptrdiff_t(f.rowsCut), below = above + p.bottom - p.top;
        if (n.lineTable0)
            use(Field::lineTable0, false, rs.lineTable0, above, below, sizeof *rs.lineTable0);
        if (n.lineTable1)
            use(Field::lineTable1, false, rs.lineTable1, above, below, sizeof *rs.lineTable1);
        if (n.scanShift && rs.scanShift)
            use(Field::scanShift, false, rs.scanShift, p.top, p.bottom, sizeof *rs.scanShift);
        if (n.map == Map::runs && canLook(rs.tex0))
            use(Field::runlengthMap, false, rs.tex0->runlengthMap, 0, ptrdiff_t(rs.tex0->width) * rs.tex0->height, 1);
        if (n.map == Map::zeros && canLook(rs.tex0))
            use(Field::zeroPixelMap, false, rs.tex0->zeroPixelMap, firstWord, endWord, sizeof *rs.tex0->zeroPixelMap);
    }

    bool sourcesOverlap() const
    {
        for (const TextureUse &source : f.textures()) {
            if (!source.fetched || !canLook(source.texture))
                continue;
            const Texture &t = *source.texture;
            const auto *const end = reinterpret_cast<const uint32_t *>(uintptr_t(t.pixels) + 4 * uintptr_t(t.width) * t.height);
            for (const MemoryUse &target : f.memory())
                if (target.written && Target::meet(t.pixels, end, target.begin,
                                                   reinterpret_cast<const void *>(uintptr_t(target.begin) + target.size)))
                    return true;
        }
        return false;
    }
};

} // namespace

const Needs &needsOf(Id id)
{
    static Needs all[recordCount + uint32_t(namedDrawCount)];
    static bool known[std::size(all)];
    Needs &needs = all[id];
    if (!known[id]) {
        known[id] = true;
        if (isRecord(id))
            needsOfKernel(axesOf(codeOf(id)), needs);
        else
            needsOfFunction(Function(id - recordCount), needs);
    }
    return needs;
}

const char *fieldName(Field field)
{
    static constexpr const char *names[] = {
        "dstPixels",          "shaheiPlane",        "zBuffer",    "tex0",       "tex1",     "tex2", "mipTex", "mipTex1",
        "tex0->runlengthMap", "tex0->zeroPixelMap", "lineTable0", "lineTable1", "scanShift"};
    static_assert(std::size(names) == size_t(Field::count));
    return names[size_t(field)];
}

void findFootprint(Id id, bool (*readable)(const Texture *), Footprint &footprint)
{
    Finder(needsOf(id), readable, footprint).find();
}

} // namespace layer
