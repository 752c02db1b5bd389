#include "rules.h"

#include "knowledge.h"
#include "memory.h"

#include "ops/operators.h"

#include <ninefold/debug.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace debug {

using namespace ninefold;
using layer::Field;
using layer::MemoryUse;
using layer::Needs;
using layer::Shape;
using layer::TextureUse;

bool Text::say(const char *format, ...)
{
    char part[400];
    va_list values;
    va_start(values, format);
    std::vsnprintf(part, sizeof part, format, values);
    va_end(values);
    words = part;
    return true;
}

bool canLookAt(const Texture *texture)
{
    const Known *const entry = known(texture);
    return texture && (entry ? entry->alive : true) && isReadable(texture, sizeof *texture);
}

State stateOf(const Texture *texture, bool withPixels)
{
    if (!texture)
        return State::null;
    const Known *const entry = known(texture);
    if (entry && !entry->alive)
        return State::deleted;
    if (!(entry && entry->made) && !isReadable(texture, sizeof *texture))
        return State::unreadable;
    if (!withPixels)
        return State::good;
    const Texture &t = *texture;
    if (t.log2Width > 31 || t.width != 1u << t.log2Width || t.height == 0 || (t.height & (t.height - 1)) != 0)
        return State::sizes;
    // Pixels that the library made for this size need not be asked for.
    if (entry && entry->made && entry->pixels == t.pixels && t.pixels &&
        uint64_t(t.width) * t.height <= uint64_t(1) << (entry->log2Width + entry->log2Height))
        return State::good;
    const uint64_t bytes = uint64_t(t.width) * t.height * 4;
    if (const Label *const label = labelAt(t.pixels);
        label && bytes > label->size - (uintptr_t(t.pixels) - uintptr_t(label->begin)))
        return State::pixels;
    return bytes == size_t(bytes) && isReadable(t.pixels, size_t(bytes)) ? State::good : State::pixels;
}

Draw::Draw(layer::Id wanted, const layer::Footprint &footprint)
    : id(wanted), needs(layer::needsOf(wanted)), reach(footprint), states(0)
{
    size_t k = 0;
    for (const TextureUse &use : reach.textures()) {
        state[k] = stateOf(use.texture, use.fetched);
        states |= 1u << int(state[k++]);
    }
}

namespace {

// Scopes.
bool all(const Needs &n) { return n.shape != Shape::nothing; }
bool pixels(const Needs &n) { return n.writesPixels; }
bool rectangles(const Needs &n) { return n.shape == Shape::rectangle; }
bool linesAndTriangles(const Needs &n) { return all(n) && !rectangles(n); }
bool textured(const Needs &n) { return n.tex0 || n.tex1 || n.tex2; }
bool chains(const Needs &n) { return n.choice != layer::Choice::none || n.lineLevels; }
bool chosen(const Needs &n) { return n.choice != layer::Choice::none && !n.tex1; }
bool runs(const Needs &n) { return n.map == Map::runs; }
bool zeros(const Needs &n) { return n.map == Map::zeros; }
bool planes(const Needs &n) { return n.readsPlane || n.writesPlane; }
bool priorities(const Needs &n) { return n.readsZ || n.writesZ; }
bool lineTables(const Needs &n) { return n.lineTable0; }
bool perspective(const Needs &n) { return n.pers; }
bool mosaics(const Needs &n) { return n.mosaic; }
bool ruled(const Needs &n) { return n.ruleTest; }
bool blendOperators(const Needs &n) { return n.callsBlend; }
bool multiOperators(const Needs &n) { return n.callsMulti; }
bool stippled(const Needs &n) { return n.stippleSteps; }
bool prescaled(const Needs &n) { return n.axes.prescale != 0 && n.axes.blend != NINEFOLD_BLEND_CONST_ALPHA && n.writesPixels; }
bool operatorsOrConstant(const Needs &n)
{
    return n.callsBlend || n.callsMulti || (n.writesPixels && n.axes.blend == NINEFOLD_BLEND_CONST_ALPHA);
}
bool operators(const Needs &n) { return n.callsBlend || n.callsMulti; }
bool positioned(const Needs &n) { return n.tex0 && n.positions > 1; }
bool alphaBlends(const Needs &n)
{
    return n.tex0 && (n.axes.blend == NINEFOLD_BLEND_ALPHA || n.axes.blend == NINEFOLD_BLEND_ALPHA_FAST);
}

unsigned long long wide(uint64_t number) { return number; } // for printf
std::string frameBufferName() { return wordsFor(rs.frameBuffer); }

std::string useName(const TextureUse &use)
{
    std::string name = std::string("rs.") + fieldName(use.field);
    if (use.level)
        name += "->mip[" + std::to_string(use.level) + "]";
    return name;
}

// The first texture in that state, null if there is none. One of which only a level is chosen, tex1 without a stage that draws
// it, has a rule of its own.
const TextureUse *useIn(const Draw &d, State state)
{
    if (d.has(state))
        for (size_t k = 0; k < d.reach.textureCount; ++k)
            if (const TextureUse &use = d.reach.texture[k]; d.state[k] == state && (use.field != Field::tex1 || d.needs.tex1))
                return &use;
    return nullptr;
}

const MemoryUse *memoryUse(const Draw &d, Field field)
{
    for (const MemoryUse &use : d.reach.memory())
        if (use.field == field)
            return &use;
    return nullptr;
}

const void *pointerOf(Field field)
{
    switch (field) {
    case Field::dstPixels: return rs.dstPixels;
    case Field::shaheiPlane: return rs.shaheiPlane;
    case Field::zBuffer: return rs.zBuffer;
    case Field::lineTable0: return rs.lineTable0;
    case Field::lineTable1: return rs.lineTable1;
    case Field::scanShift: return rs.scanShift;
    case Field::runlengthMap: return canLookAt(rs.tex0) ? rs.tex0->runlengthMap : nullptr;
    case Field::zeroPixelMap: return canLookAt(rs.tex0) ? rs.tex0->zeroPixelMap : nullptr;
    default: return nullptr;
    }
}

// Frame buffer and clip rectangle.

bool clipInsideOut(const Draw &, Text &t)
{
    if (rs.clipRight < rs.clipLeft)
        return t.say("rs.clipLeft is %d and rs.clipRight %d.", rs.clipLeft, rs.clipRight);
    return rs.clipBottom < rs.clipTop && t.say("rs.clipTop is %d and rs.clipBottom %d.", rs.clipTop, rs.clipBottom);
}

bool clipOutside(const Draw &, Text &t)
{
    if (rs.clipLeft < 0 || rs.clipTop < 0)
        return t.say("rs.clip%s is %d.", rs.clipLeft < 0 ? "Left" : "Top", rs.clipLeft < 0 ? rs.clipLeft : rs.clipTop);
    if (rs.clipRight > int64_t(rs.dstPitch))
        return t.say("rs.clipRight is %d, the frame buffer, %s, is %u wide.", rs.clipRight, frameBufferName().c_str(),
                     rs.dstPitch);
    return rs.clipBottom > int64_t(rs.dstHeight) && t.say("rs.clipBottom is %d, the frame buffer, %s, is %u high.", rs.clipBottom,
                                                          frameBufferName().c_str(), rs.dstHeight);
}

bool clipEmpty(const Draw &, Text &t)
{
    return (rs.clipLeft == rs.clipRight || rs.clipTop == rs.clipBottom) &&
           t.say("The clip rectangle is %d to %d, %d to %d.", rs.clipLeft, rs.clipRight, rs.clipTop, rs.clipBottom);
}

bool noFrameBuffer(const Draw &d, Text &t) { return d.anything() && !rs.dstPixels && t.say("rs.dstPixels is null."); }

bool frameBufferDeleted(const Draw &d, Text &t)
{
    const Known *const entry = known(rs.frameBuffer);
    return d.anything() && entry && !entry->alive && t.say("rs.frameBuffer is %s.", frameBufferName().c_str());
}

bool frameBufferChanged(const Draw &, Text &t)
{
    const Texture *const texture = rs.frameBuffer;
    if (!texture || !canLookAt(texture) ||
        (texture->pixels == rs.dstPixels && texture->width == rs.dstPitch && texture->height == rs.dstHeight))
        return false;
    return t.say("rs.frameBuffer has %u x %u pixels at %p, rs.dstPixels stands for %u x %u at %p.", texture->width,
                 texture->height, static_cast<void *>(texture->pixels), rs.dstPitch, rs.dstHeight,
                 static_cast<void *>(rs.dstPixels));
}

bool frameBufferPitch(const Draw &d, Text &t)
{
    return d.anything() && (rs.dstShift > 31 || rs.dstPitch != 1u << rs.dstShift) &&
           t.say("rs.dstPitch is %u, rs.dstShift %u.", rs.dstPitch, rs.dstShift);
}

bool tooFar(int64_t a, int64_t b, int64_t limit) { return std::abs(a - b) >= limit; }
bool coordinatesWrap(const Draw &d, Text &t)
{
    const int count = d.needs.shape == Shape::line ? 2 : 3;
    for (int k = 0; k < count; ++k) {
        const Vertex &v = rs.vertex[k], &w = rs.vertex[(k + 1) % count];
        const int64_t limit = int64_t{1} << 31;
        if (tooFar(v.x + rs.originX, w.x + rs.originX, limit - 1) || tooFar(v.y + rs.originY, w.y + rs.originY, limit - 1))
            return t.say("With the origin, rs.vertex[%d] is %d, %d and rs.vertex[%d] %d, %d.", k, v.x + rs.originX,
                         v.y + rs.originY, (k + 1) % count, w.x + rs.originX, w.y + rs.originY);
    }
    return false;
}

bool coordinatesFar(const Draw &d, Text &t)
{
    const int count = d.needs.shape == Shape::triangle || d.needs.shape == Shape::planes ? 3 : 2;
    for (int k = 0; k < count; ++k) {
        const int64_t x = int64_t(rs.vertex[k].x) + rs.originX, y = int64_t(rs.vertex[k].y) + rs.originY;
        if (std::max(std::abs(x), std::abs(y)) >= int64_t{1} << 30)
            return t.say("With the origin, rs.vertex[%d] is %lld, %lld.", k, static_cast<long long>(x),
                         static_cast<long long>(y));
    }
    return false;
}

// Textures.

template <State state>
bool textureIs(const Draw &d, Text &t)
{
    const TextureUse *const use = useIn(d, state);
    if (!use)
        return false;
    const std::string name = useName(*use);
    if constexpr (state == State::null)
        return t.say("%s is null.", name.c_str());
    else if constexpr (state == State::sizes)
        return t.say("%s is %u x %u pixels, its log2Width %u.", name.c_str(), use->texture->width, use->texture->height,
                     use->texture->log2Width);
    else
        return t.say("%s is %s.", name.c_str(), wordsFor(use->texture).c_str());
}

bool textureChanged(const Draw &d, Text &t)
{
    for (size_t k = 0; k < d.reach.textureCount; ++k) {
        const TextureUse &use = d.reach.texture[k];
        const Known *const entry = d.state[k] == State::good ? known(use.texture) : nullptr;
        if (entry && entry->made && use.texture->pixels != entry->pixels && !(use.texture->flags & NINEFOLD_TEXTURE_HOST_PIXELS))
            return t.say(
                "The pixels of %s, %s, are others than it was made with, and its flags lack NINEFOLD_TEXTURE_HOST_PIXELS.",
                useName(use).c_str(), wordsFor(use.texture).c_str());
    }
    return false;
}

// tex0 or tex1 where its chain is needed, if that chain has so many levels.
template <class Test>
bool chainIs(const Draw &d, Text &t, Test &&test)
{
    if (!d.reach.chooses && !(d.needs.lineLevels && d.anything()))
        return false;
    for (const TextureUse &use : d.reach.textures()) {
        if (use.level != 0 || (use.field != Field::tex0 && use.field != Field::tex1) || !canLookAt(use.texture))
            continue;
        // A tex1 that is not drawn is passed over where it has no chain.
        if (use.field == Field::tex1 && !d.needs.tex1 && use.texture->mipCount == 0)
            continue;
        if (test(use))
            return t.say("rs.%s, %s, has mipCount %u.", fieldName(use.field), wordsFor(use.texture).c_str(),
                         use.texture->mipCount);
    }
    return false;
}
bool chainMissing(const Draw &d, Text &t)
{
    return chainIs(d, t, [](const TextureUse &use) { return use.texture->mipCount == 0; });
}
bool chainShort(const Draw &d, Text &t)
{
    return chainIs(d, t, [](const TextureUse &use) {
        return use.texture->mipCount == 1 || use.texture->mipCount > std::size(use.texture->mip);
    });
}
bool chainStale(const Draw &d, Text &t)
{
    return chainIs(d, t, [](const TextureUse &use) {
        Known *const entry = known(use.texture);
        return entry && entry->hasChain && stateOf(use.texture, true) == State::good &&
               currentSum(*use.texture, *entry) != entry->chainSum;
    });
}

bool tex1LeftOver(const Draw &d, Text &t)
{
    for (size_t k = 0; k < d.reach.textureCount; ++k)
        if (d.reach.texture[k].field == Field::tex1 && (d.state[k] == State::deleted || d.state[k] == State::unreadable))
            return t.say("rs.tex1 is %s.", wordsFor(d.reach.texture[k].texture).c_str());
    return false;
}

bool mapMissing(const Draw &d, Text &t)
{
    if (!d.anything() || !canLookAt(rs.tex0))
        return false;
    if (d.needs.map == Map::runs)
        return !rs.tex0->runlengthMap && t.say("rs.tex0, %s, has no run-length map.", wordsFor(rs.tex0).c_str());
    return !rs.tex0->zeroPixelMap && t.say("rs.tex0, %s, has no zero-pixel map.", wordsFor(rs.tex0).c_str());
}

bool mapStale(const Draw &d, Text &t)
{
    Known *const entry = d.anything() && canLookAt(rs.tex0) ? known(rs.tex0) : nullptr;
    if (!entry || stateOf(rs.tex0, true) != State::good)
        return false;
    const bool byRuns = d.needs.map == Map::runs;
    const void *const made = byRuns ? entry->runs : entry->zeros;
    if (!made || made != pointerOf(byRuns ? Field::runlengthMap : Field::zeroPixelMap))
        return false;
    return currentSum(*rs.tex0, *entry) != (byRuns ? entry->runsSum : entry->zerosSum) &&
           t.say("The pixels of rs.tex0, %s, have changed since its %s was made.", wordsFor(rs.tex0).c_str(),
                 byRuns ? "run-length map" : "zero-pixel map");
}

// Walks the run-length map as the draw will: whether it ends, and how far left of a row's start it goes.
struct Runs {
    bool ends = true, leaves = false; // leaves: a stretch goes on behind the end of its row
    int64_t back = 0; // pixels
};
Runs walkRuns(const Draw &d)
{
    Runs found;
    const Texture &texture = *rs.tex0;
    const layer::Pixels &p = d.reach.pixels;
    const uint32_t dx = d.reach.columnsCut, dy = d.reach.rowsCut;
    for (int32_t y = p.top; y < p.bottom && found.ends; ++y) {
        const uint32_t row = ((uint32_t(rs.uv0[0].v) >> 16) + dy + uint32_t(y - p.top)) & (texture.height - 1);
        const int8_t *const map = texture.runlengthMap + (size_t(row) << texture.log2Width);
        uint32_t column = ((uint32_t(rs.uv0[0].u) >> 16) + dx) & (texture.width - 1);
        int64_t pixel = 0;
        for (int32_t remaining = p.right - p.left; remaining > 0;) {
            const int32_t n = map[column];
            if (n == 0) {
                found.ends = false;
                break;
            }
            found.leaves |= n > 0 && column + uint32_t(n) > texture.width;
            const int32_t moved = n < 0 ? int8_t(-n) : n;
            remaining -= std::abs(n);
            column = (column + uint32_t(moved)) & (texture.width - 1);
            pixel += moved;
            found.back = std::min(found.back, pixel);
        }
    }
    return found;
}
bool canWalkRuns(const Draw &d)
{
    const MemoryUse *const use = memoryUse(d, Field::runlengthMap);
    return use && use->begin && stateOf(rs.tex0, true) == State::good && isReadable(use->begin, use->size);
}

bool mapBroken(const Draw &d, Text &t)
{
    if (!canWalkRuns(d))
        return false;
    const Runs found = walkRuns(d);
    if (!found.ends)
        return t.say("The run-length map of rs.tex0, %s, holds a 0.", wordsFor(rs.tex0).c_str());
    return found.leaves &&
           t.say("A run of the run-length map of rs.tex0, %s, goes on behind its row.", wordsFor(rs.tex0).c_str());
}

bool runsMoveBack(const Draw &d, Text &t)
{
    const MemoryUse *const use = memoryUse(d, Field::dstPixels);
    if (!use || !use->begin || !canWalkRuns(d))
        return false;
    const int64_t back = -walkRuns(d).back;
    if (back <= d.reach.pixels.left)
        return false;
    const uintptr_t begin = uintptr_t(use->begin) - size_t(back) * sizeof(uint32_t);
    const Known *const entry = known(rs.frameBuffer);
    const bool leaves = entry && entry->made && entry->pixels == rs.dstPixels
                            ? begin < uintptr_t(rs.dstPixels)
                            : !isWritable(reinterpret_cast<void *>(begin), use->size);
    return leaves && t.say("rs.tex0, %s, has a hole of 128 pixels; the draw goes on %lld pixels left of column %d.",
                           wordsFor(rs.tex0).c_str(), static_cast<long long>(back), d.reach.pixels.left);
}

bool zeroMapSmall(const Draw &d, Text &t)
{
    const Known *const entry = d.anything() && canLookAt(rs.tex0) ? known(rs.tex0) : nullptr;
    const MemoryUse *const use = memoryUse(d, Field::zeroPixelMap);
    if (!entry || !use || !use->begin || entry->zeros != rs.tex0->zeroPixelMap)
        return false;
    const uint64_t words = ((uint64_t(1) << entry->zerosLog2Size) + 15) / 16;
    const uint64_t end = (uintptr_t(use->begin) + use->size - uintptr_t(entry->zeros)) / 2;
    return end > words && t.say("The zero-pixel map of rs.tex0, %s, has %llu words, the draw reads up to word %llu.",
                                wordsFor(rs.tex0).c_str(), wide(words), wide(end - 1));
}

bool zeroMapWidth(const Draw &d, Text &t)
{
    return d.anything() && canLookAt(rs.tex0) && known(rs.tex0) && known(rs.tex0)->zeros == rs.tex0->zeroPixelMap &&
           rs.tex0->zeroPixelMap && rs.tex0->width != rs.dstPitch &&
           t.say("rs.tex0, %s, is %u wide, the frame buffer %u.", wordsFor(rs.tex0).c_str(), rs.tex0->width, rs.dstPitch);
}

// Planes, tables, maps.

template <Field field>
bool pointerNull(const Draw &d, Text &t)
{
    const MemoryUse *const use = memoryUse(d, field);
    return use && !use->begin && t.say("rs.%s is null.", fieldName(field));
}
bool lineTableNull(const Draw &d, Text &t)
{
    return pointerNull<Field::lineTable0>(d, t) || pointerNull<Field::lineTable1>(d, t);
}

bool memorySmall(const Draw &d, Text &t)
{
    for (const MemoryUse &use : d.reach.memory()) {
        const Label *const label = use.begin ? labelAt(pointerOf(use.field)) : nullptr;
        if (!label)
            continue;
        const uintptr_t begin = uintptr_t(label->begin), end = begin + label->size;
        if (uintptr_t(use.begin) < begin || uintptr_t(use.begin) + use.size > end)
            return t.say("rs.%s, \"%s\", has %llu bytes, the draw reaches bytes %lld to %lld.", fieldName(use.field),
                         label->name.c_str(), wide(label->size), static_cast<long long>(uintptr_t(use.begin) - begin),
                         static_cast<long long>(uintptr_t(use.begin) + use.size - begin - 1));
    }
    return false;
}

// The frame buffer as the library made it, with the clip rectangle inside it, need not be asked for.
bool isOwnFrameBuffer(const MemoryUse &use)
{
    const Known *const entry = use.field == Field::dstPixels ? known(rs.frameBuffer) : nullptr;
    if (!entry || !entry->alive || !entry->made || entry->pixels != rs.dstPixels)
        return false;
    const uintptr_t end = uintptr_t(entry->pixels) + (uintptr_t(4) << (entry->log2Width + entry->log2Height));
    return uintptr_t(use.begin) >= uintptr_t(entry->pixels) && uintptr_t(use.begin) + use.size <= end;
}

bool memoryMissing(const Draw &d, Text &t)
{
    for (const MemoryUse &use : d.reach.memory())
        if (use.begin && !isOwnFrameBuffer(use) &&
            !(use.written ? isWritable(use.begin, use.size) : isReadable(use.begin, use.size)))
            return t.say("rs.%s is %p; of the %llu bytes from %p on not all can be %s.", fieldName(use.field),
                         pointerOf(use.field), wide(use.size), use.begin, use.written ? "written" : "read");
    return false;
}

bool memoryIsThere(const Draw &d, Field field)
{
    const MemoryUse *const use = memoryUse(d, field);
    return use && use->begin && isReadable(use->begin, use->size);
}

bool allRefused(const Draw &d, Text &t)
{
    const layer::Pixels &p = d.reach.pixels;
    if (p.empty() || p.left < 0 || p.top < 0 || rs.dstShift > 30 || rs.dstPitch != 1u << rs.dstShift)
        return false;
    const auto everywhere = [&](auto &&refused) {
        for (int32_t y = p.top; y < p.bottom; ++y)
            for (int32_t x = p.left; x < p.right; ++x)
                if (!refused((size_t(uint32_t(y)) << rs.dstShift) + uint32_t(x)))
                    return false;
        return true;
    };
    if (d.needs.readsZ && memoryIsThere(d, Field::zBuffer) &&
        everywhere([](size_t at) { return rs.zBuffer[at] < uint8_t(rs.zRef); }))
        return t.say("rs.zRef is %u, and rs.zBuffer is below it everywhere in the draw's %d x %d pixels.", rs.zRef & 255,
                     p.right - p.left, p.bottom - p.top);
    if (d.needs.writesPixels && d.needs.readsPlane && memoryIsThere(d, Field::shaheiPlane) &&
        everywhere([](size_t at) { return (rs.shaheiPlane[at / 16] & 0x8000 >> at % 16) != 0; }))
        return t.say("rs.shaheiPlane is set everywhere in the draw's %d x %d pixels.", p.right - p.left, p.bottom - p.top);
    return false;
}

bool segmentWraps(const Draw &d, Text &t)
{
    for (const Field field : {Field::lineTable0, Field::lineTable1}) {
        const MemoryUse *const use = memoryUse(d, field);
        if (!use || !memoryIsThere(d, field))
            continue;
        const auto *const lines = static_cast<const LineTableRecord *>(use->begin);
        for (size_t k = 0; k < use->size / sizeof *lines; ++k) {
            const LineTableRecord &line = lines[k];
            constexpr int64_t limit = int64_t{1} << 31;
            if (line.startU != NINEFOLD_SKIP_ROW &&
                (tooFar(line.endU, line.startU, limit) || tooFar(line.endV, line.startV, limit)))
                return t.say("Record %llu of rs.%s goes from %d, %d to %d, %d.", wide(k + d.reach.rowsCut), fieldName(field),
                             line.startU, line.startV, line.endU, line.endV);
        }
    }
    return false;
}

// Factors.

bool over(Text &t, const char *field, uint32_t value, uint32_t limit)
{
    return value > limit && t.say("rs.%s is %u.", field, value);
}
// Whether an operator of the library's stands behind the pointers that passes the test.
template <class Test>
bool someOperator(const Draw &d, Test &&test)
{
    const auto passes = [&](PixelOperator function) {
        const int index = function ? ops::operatorIndex(function) : -1;
        return index >= 0 && test(ops::opList[size_t(index)]);
    };
    return (d.needs.callsBlend && passes(rs.blendFunc)) || (d.needs.callsMulti && passes(rs.multiFunc));
}
bool blendAlphaRange(const Draw &d, Text &t)
{
    return rs.blendAlpha > 255 &&
           (d.needs.axes.blend == NINEFOLD_BLEND_CONST_ALPHA ||
            someOperator(d, [](const ops::Op &op) { return op.blend == NINEFOLD_BLEND_CONST_ALPHA; })) &&
           over(t, "blendAlpha", rs.blendAlpha, 255);
}
bool blendAlphaRgbRange(const Draw &d, Text &t)
{
    return rs.blendAlphaRgb > 255 &&
           someOperator(d, [](const ops::Op &op) { return op.blend == NINEFOLD_MULTI_OP_CONST_ALPHA_RGB; }) &&
           over(t, "blendAlphaRgb", rs.blendAlphaRgb, 255);
}
bool prescaleRange(const Draw &, Text &t) { return over(t, "prescale", rs.prescale, 256); }
bool prescaleMultiRange(const Draw &d, Text &t)
{
    return rs.prescaleMulti > 256 && someOperator(d, [](const ops::Op &op) { return op.scales; }) &&
           over(t, "prescaleMulti", rs.prescaleMulti, 256);
}

bool depthRange(const Draw &d, Text &t)
{
    for (int k = 0; d.anything() && k < 3; ++k)
        if (rs.vertex[k].z <= 0)
            return t.say("rs.vertex[%d].z is %d.", k, rs.vertex[k].z);
    return false;
}

bool negativePositions(const Draw &d, Text &t)
{
    for (int second = 0; d.anything() && second < (d.needs.tex1 ? 2 : 1); ++second)
        for (int k = 0; d.needs.tex0 && k < 3; ++k)
            if (const TexCoord &at = (second ? rs.uv1 : rs.uv0)[k]; at.u < 0 || at.v < 0)
                return t.say("rs.uv%d[%d] is %d, %d.", second, k, at.u, at.v);
    return false;
}

bool mosaicRange(const Draw &d, Text &t)
{
    if (!d.anything())
        return false;
    if (rs.mosaicSize < 1)
        return t.say("rs.mosaicSize is %d.", rs.mosaicSize);
    return d.needs.mosaic1 && rs.mosaicSize1 < 1 && t.say("rs.mosaicSize1 is %d.", rs.mosaicSize1);
}

bool ruleWraps(const Draw &, Text &t)
{
    const int64_t above = 255 - int64_t(rs.ruleThreshold), end = int64_t(rs.ruleThreshold) + rs.ruleWidth;
    return rs.ruleWidth > 0 && (above << 8 > INT32_MAX || end > INT32_MAX) &&
           t.say("rs.ruleThreshold is %d, rs.ruleWidth %d.", rs.ruleThreshold, rs.ruleWidth);
}

bool priorityWide(const Draw &d, Text &t)
{
    return d.id == layer::idOf(layer::Function::DrawZbufferPolygon) && over(t, "zRef", rs.zRef, 255);
}

// Operators.

bool blendNull(const Draw &d, Text &t) { return d.anything() && !rs.blendFunc && t.say("rs.blendFunc is null."); }
bool multiNull(const Draw &d, Text &t) { return d.anything() && !rs.multiFunc && t.say("rs.multiFunc is null."); }
bool notCode(const Draw &d, Text &t)
{
    const auto wrong = [](PixelOperator function) {
        return function && ops::operatorIndex(function) < 0 && !isCode(reinterpret_cast<const void *>(function));
    };
    if (!d.anything())
        return false;
    if (d.needs.callsBlend && wrong(rs.blendFunc))
        return t.say("rs.blendFunc is %p.", reinterpret_cast<void *>(rs.blendFunc));
    return d.needs.callsMulti && wrong(rs.multiFunc) && t.say("rs.multiFunc is %p.", reinterpret_cast<void *>(rs.multiFunc));
}

// Start-up.

bool noShifts(const Draw &, Text &t) { return !startUp.shifts && t.say("MakeUVLShiftTable was never called."); }
bool noStipples(const Draw &, Text &t) { return !startUp.stipples && t.say("MakeDrawMaskTable was never called."); }

// What was hardly meant.

bool texelsNotShifted(const Draw &d, Text &t)
{
    if (!d.anything() || !canLookAt(rs.tex0) || rs.tex0->width < 4 || rs.tex0->height < 4)
        return false;
    const int64_t limit = 4 * int64_t(std::max(rs.tex0->width, rs.tex0->height));
    int64_t largest = 0;
    for (int k = 0; k < d.needs.positions; ++k)
        largest = std::max({largest, std::abs(int64_t(rs.uv0[k].u)), std::abs(int64_t(rs.uv0[k].v))});
    const bool large = d.reach.pixels.right - d.reach.pixels.left > 2 || d.reach.pixels.bottom - d.reach.pixels.top > 2;
    return large && largest >= 2 && largest <= std::min<int64_t>(limit, 0x4000) &&
           t.say("No position in rs.uv0 is above %lld: all lie within the first texel of rs.tex0, %s.",
                 static_cast<long long>(largest), wordsFor(rs.tex0).c_str());
}

bool premultiplied(const Draw &d, Text &t)
{
    Known *const entry = d.anything() && canLookAt(rs.tex0) ? known(rs.tex0) : nullptr;
    if (!entry || !entry->made || entry->lookedForAlpha || stateOf(rs.tex0, true) != State::good)
        return false;
    entry->lookedForAlpha = true;
    const Texture &texture = *rs.tex0;
    size_t partial = 0;
    for (size_t k = 0; k < size_t(texture.width) * texture.height; ++k) {
        const uint32_t word = texture.pixels[k], alpha = word >> 24;
        if (std::max({word & 255, word >> 8 & 255, word >> 16 & 255}) > alpha)
            return false;
        partial += alpha > 0 && alpha < 255 && (word & 0xFFFFFF);
    }
    return partial >= 16 && t.say("In rs.tex0, %s, no colour is above its alpha, with %llu partly transparent pixels.",
                                  wordsFor(rs.tex0).c_str(), wide(partial));
}

bool overlaps(const Draw &d, Text &t)
{
    return d.reach.overlaps && t.say("A texture of this draw shares memory with what it writes.");
}

constexpr int error = NINEFOLD_DEBUG_ERROR, warning = NINEFOLD_DEBUG_WARNING, hint = NINEFOLD_DEBUG_HINT;

/* clang-format off */
const Rule ruleList[] = {
    // 01: frame buffer, clip rectangle, vertices
    {101, "frame-buffer-missing", error, "kernels", pixels, noFrameBuffer,
     "the frame buffer's pixels are null", "There is nothing to draw into.", "Call SetFrameBuffer with a texture that has pixels."},
    {102, "frame-buffer-deleted", error, "all that draws", all, frameBufferDeleted,
     "the frame buffer's texture was deleted", "Its memory may by now be something else's.", "Call SetFrameBuffer with a live texture before drawing."},
    {103, "frame-buffer-changed", warning, "all that draws", all, frameBufferChanged,
     "the frame buffer's texture has other pixels or sizes than when SetFrameBuffer was called", "Kernels draw into what it was then.", "Call SetFrameBuffer again after changing its texture."},
    {104, "frame-buffer-pitch", error, "all that draws", all, frameBufferPitch,
     "rs.dstPitch is not 1 << rs.dstShift", "Rows are drawn at two different distances.", "Leave these fields to SetFrameBuffer; frame buffers are a power of two wide."},
    {105, "clip-inside-out", error, "all that draws", all, clipInsideOut,
     "the clip rectangle's right lies left of its left, or its bottom above its top", "What is drawn then is open.", "Order the clip rectangle; equal sides make it empty."},
    {106, "clip-empty", hint, "all that draws", all, clipEmpty,
     "the clip rectangle is empty", "Nothing can be drawn.", "Set rs.clipLeft, clipTop, clipRight and clipBottom; SetFrameBuffer leaves them alone."},
    {107, "clip-outside", error, "all that draws", all, clipOutside,
     "the clip rectangle reaches out of the frame buffer", "Pixels beyond wrap into the next row or overwrite other memory.", "Keep the clip rectangle within the frame buffer's width and height."},
    {108, "coordinates-wrap", error, "lines and triangles", linesAndTriangles, coordinatesWrap,
     "two vertices lie 2^31 pixels apart or more", "The difference wraps; a line may divide by 0, a triangle leave the clip rectangle.", "Keep coordinates below 2^30."},
    {109, "coordinates-far", warning, "all that draws", all, coordinatesFar,
     "a vertex, with the origin, lies 2^30 pixels away or more", "Differences of such coordinates may wrap.", "Keep coordinates below 2^30; look for a value shifted by 16."},

    // 02: textures, chains, maps
    {201, "texture-null", error, "textured kernels", textured, textureIs<State::null>,
     "a texture or mip level that the kernel reads is null", "The kernel will read address 0.", "Set the texture that the kernel's modes name."},
    {202, "texture-deleted", error, "textured kernels", textured, textureIs<State::deleted>,
     "a texture or mip level that the kernel reads was deleted", "Its record and pixels are free memory.", "Draw before DeleteTexture, or set the field to a live texture."},
    {203, "texture-unreadable", error, "textured kernels", textured, textureIs<State::unreadable>,
     "the record of a texture that the kernel reads is no memory", "The kernel will crash or read something else.", "Store pointers from CreateTexture or LoadTexture only."},
    {204, "texture-pixels", error, "textured kernels", textured, textureIs<State::pixels>,
     "the pixels of a texture that the kernel reads are null, are not all there, or are fewer than its size says", "The kernel will read outside of them.", "Give the texture width * height pixels; CreateTexture leaves null where memory runs out."},
    {205, "texture-size", error, "textured kernels", textured, textureIs<State::sizes>,
     "width or height of a texture is no power of two, or its log2Width says otherwise", "Positions wrap and rows are found by powers of two.", "Keep width == 1 << log2Width and height == 1 << log2Height."},
    {206, "texture-not-owned", warning, "textured kernels", textured, textureChanged,
     "the pixels of a texture were exchanged and its flags do not say so", "DeleteTexture will free the host's pixels.", "Set NINEFOLD_TEXTURE_HOST_PIXELS in its flags."},
    {207, "tex1-left-over", error, "mip filters without a second texture", chosen, tex1LeftOver,
     "rs.tex1, of which a mip filter chooses a level although it is not drawn, was deleted or is no memory", "The kernel reads its record.", "Set rs.tex1 to null before its texture goes."},
    {210, "chain-missing", error, "mip filters", chains, chainMissing,
     "a texture that is minified has no mip chain", "The kernel will follow pointers that are not there.", "Call CreateMipmapTexture after the picture is loaded."},
    {211, "chain-short", error, "mip filters", chains, chainShort,
     "a texture that is minified has a chain of one level, or of more than 16", "Mip filters take a level and the one below it.", "Give it a texture of at least 2 by 2 pixels and a chain made by CreateMipmapTexture."},
    {212, "chain-stale", warning, "mip filters", chains, chainStale,
     "the pixels of a texture have changed since its chain was made", "Small sizes show the old picture.", "Call DeleteMipmapTexture and CreateMipmapTexture after changing the picture."},
    {213, "map-missing", error, "rect options runs and planeruns", [](const Needs &n) { return runs(n) || zeros(n); }, mapMissing,
     "the texture has no map for its rect option", "The kernel will read address 0.", "Call CreateRunlengthMap or CreateZeroPixelMap first."},
    {214, "map-stale", warning, "rect options runs and planeruns", [](const Needs &n) { return runs(n) || zeros(n); }, mapStale,
     "the pixels of the texture have changed since its map was made", "The old picture's holes are left out.", "Make the map again after changing the picture."},
    {215, "zero-map-small", error, "rect option planeruns", zeros, zeroMapSmall,
     "the zero-pixel map ends before what is drawn", "It is read at frame-buffer positions, behind its end.", "Use a texture as wide as the frame buffer that reaches as far down as what is drawn."},
    {216, "zero-map-width", warning, "rect option planeruns", zeros, zeroMapWidth,
     "the texture with the zero-pixel map is not as wide as the frame buffer", "Its rows are those of other pixels.", "Use a texture as wide as the frame buffer."},
    {217, "map-broken", error, "rect option runs", runs, mapBroken,
     "the run-length map is none of this texture", "The draw never ends, or reads other texels.", "Make it by CreateRunlengthMap, again after changing the texture."},
    {218, "runs-move-back", error, "rect option runs", runs, runsMoveBack,
     "a hole of 128 pixels moves the draw back out of the frame buffer", "Memory before the frame buffer is written.", "Draw this texture with NINEFOLD_RECT_UNIT, or keep it that far right and down."},

    // 03: planes and other memory
    {301, "plane-missing", error, "Shahei modes plane and plane+z, occlusion triangles", planes, pointerNull<Field::shaheiPlane>,
     "rs.shaheiPlane is null", "The plane will be read and written at address 0.", "Point it to width * height bits."},
    {302, "priorities-missing", error, "Shahei modes with priorities, occlusion triangles", priorities, pointerNull<Field::zBuffer>,
     "rs.zBuffer is null", "Priorities will be read or written at address 0.", "Point it to width * height bytes."},
    {303, "memory-small", error, "all that draws", all, memorySmall,
     "a plane or table is smaller, as the host labelled it, than the draw reaches", "The draw goes on behind its end.", "Make it as large as the frame buffer, width and height rounded up to powers of two."},
    {304, "memory-missing", error, "all that draws", all, memoryMissing,
     "memory that the draw reaches is not there, or cannot be written", "The draw will crash.", "Check the pointer and the size of what it points to; planes are as large as the frame buffer, tables have an entry for each row."},
    {305, "all-refused", hint, "Shahei modes with a plane or priorities", [](const Needs &n) { return planes(n) || priorities(n); }, allRefused,
     "plane or priorities refuse every pixel of the draw", "Nothing is drawn.", "If that is not meant: clear the plane to 0 and priorities to 255, and look at rs.zRef."},
    {306, "nothing-drawn", hint, "all that draws", nullptr, nullptr,
     "1,000 draws in a row lay outside the clip rectangle", "None of them drew a pixel.", "Look at the coordinates, the origin and the clip rectangle."},

    // 04: line tables
    {401, "line-table-missing", error, "rect option table", lineTables, lineTableNull,
     "a line table is null", "The kernel will read address 0.", "Point it to a record for each row of the unclipped rectangle."},
    {402, "segment-wraps", warning, "rect option table", lineTables, segmentWraps,
     "a segment of a line table is 2^31 or longer", "Its length wraps and the texture runs the other way.", "Keep segments below 32768 texels."},

    // 05: factors and sizes
    {501, "blend-alpha-range", warning, "constant alpha", operatorsOrConstant, blendAlphaRange,
     "rs.blendAlpha is above 255", "Channels spill into each other.", "Keep it from 0 to 255."},
    {502, "blend-alpha-rgb-range", warning, "operators that read it", operators, blendAlphaRgbRange,
     "rs.blendAlphaRgb is above 255", "Channels spill into each other.", "Keep it from 0 to 255."},
    {503, "prescale-range", warning, "prescale", prescaled, prescaleRange,
     "rs.prescale is above 256", "Channels spill into each other.", "Keep it from 0 to 256, where 256 is one."},
    {504, "prescale-multi-range", warning, "operators of the scaled bank", operators, prescaleMultiRange,
     "rs.prescaleMulti is above 256", "Channels spill into each other.", "Keep it from 0 to 256, where 256 is one."},
    {505, "depth-range", error, "perspective", perspective, depthRange,
     "a depth is 0 or below", "Positions are divided by it.", "Clip triangles in front of the eye, and give each vertex a z above 0."},
    {506, "negative-positions", warning, "perspective", perspective, negativePositions,
     "a texture position under perspective is negative", "What is drawn there is not what is meant.", "Add whole textures until all positions are positive."},
    {507, "mosaic-size", error, "mosaic", mosaics, mosaicRange,
     "a mosaic block has no size", "Positions are divided by it.", "Set rs.mosaicSize and rs.mosaicSize1 to at least 1."},
    {508, "rule-wraps", warning, "rules", ruled, ruleWraps,
     "threshold and width of a rule are so large that weights wrap", "The transition never ends as meant.", "Go from a threshold of 255 down to -ruleWidth, with a width of some hundreds at most."},
    {509, "priority-range", error, "DrawZbufferPolygon", [](const Needs &n) { return n.shape == Shape::planes && n.writesZ; }, priorityWide,
     "rs.zRef is above 255", "It does not fit a byte of the priority plane.", "Keep it from 0 to 255."},

    // 06: operators
    {601, "blend-operator-null", error, "blend custom", blendOperators, blendNull,
     "rs.blendFunc is null", "The kernel will call address 0.", "Set it, or call SetBlendMode with one of NINEFOLD_BLEND_LUMA_SRC to NINEFOLD_BLEND_DST."},
    {602, "multi-operator-null", error, "multi modes but none", multiOperators, multiNull,
     "rs.multiFunc is null", "The kernel will call address 0.", "Call SetBlendModeMulti, or SetMultiMode(NINEFOLD_MULTI_NONE) where no second source is meant."},
    {603, "operator-not-code", error, "operators", operators, notCode,
     "an operator points to no code", "The kernel will call it.", "Store the address of a function that takes and returns pixels."},

    // 07: start-up, codes, modes
    {701, "start-up-shifts", warning, "perspective", perspective, noShifts,
     "MakeUVLShiftTable was not called", "Perspective positions lose most of their bits.", "Call the four Make... functions once before the first draw."},
    {702, "start-up-stipples", warning, "the stippled choice of texels", stippled, noStipples,
     "MakeDrawMaskTable was not called", "All texels of the bilinear filter are chosen from one side.", "Call the four Make... functions once before the first draw."},
    {703, "start-up-kernels", error, "SearchDrawFunc", nullptr, nullptr,
     "MakeDrawFuncTable was not called", "No kernel is found: the result is null.", "Call the four Make... functions once before the first draw."},
    {704, "code-unknown", warning, "SearchDrawFunc", nullptr, nullptr,
     "no kernel has that draw code", "The default of its shape is drawn instead.", "draw_code.h says what goes together."},
    {705, "preset-stipple", warning, "SetPresetDrawMask", nullptr, nullptr,
     "the number is none of a stipple", "Nothing changes, or memory before the table is read.", "Use 0 to 261."},
    {706, "preset-stipple-early", warning, "SetPresetDrawMask", nullptr, nullptr,
     "a stipple of the fade was asked for before MakeDrawMaskTable", "It suppresses nothing.", "Call the four Make... functions once before."},
    {707, "modes-differ", warning, "all that has a draw code", nullptr, nullptr,
     "modes were changed after their kernel was fetched and before it drew", "The kernel draws by the modes of its code.", "Set all modes first, then SearchDrawFunc(CreateDrawCode()). A kernel that is kept may draw under any modes."},

    // 08: what was hardly meant
    {801, "texels-not-shifted", warning, "stretched and four-corner rectangles, triangles", positioned, texelsNotShifted,
     "all texture positions lie within the first texel though they look like texel numbers", "One texel is drawn everywhere.", "Texture positions are 16.16: shift texels left by 16."},
    {802, "premultiplied", hint, "blends alpha and alphafast", alphaBlends, premultiplied,
     "every colour of a texture is at most its alpha", "The picture seems to be multiplied by its alpha already, and comes out too dark.", "Load it with straight alpha."},
    {803, "overlap", hint, "textured kernels", textured, overlaps,
     "a texture shares memory with what is written", "Pixels are drawn one at a time.", "Draw from a copy where speed matters."},

    // 09: glyphs
    {901, "atlas-missing", error, "glyph functions", nullptr, nullptr,
     "rs.tex0 is no texture that glyphs can be written to", "The glyph is written nowhere good.", "Set rs.tex0 to the atlas."},
    {902, "atlas-full", warning, "glyph functions", nullptr, nullptr,
     "the glyph does not fit the atlas any more", "It is not drawn, and the result is null.", "Use a larger atlas, or clear it and set the cursor back."},
    {903, "font-quality", warning, "glyph functions", nullptr, nullptr,
     "rs.fontQuality is none of NINEFOLD_QUALITY_...", "Glyphs come out garbled.", "Use NINEFOLD_QUALITY_MONO to NINEFOLD_QUALITY_GREY64."},
    {904, "face-missing", hint, "glyph functions, where fontconfig finds the faces", nullptr, nullptr,
     "rs.fontName names no face of this machine", "Glyphs come from another one, or are empty where there is none.", "Install the face, or choose one by `fc-list : family`. Names are in code page 932 and at most 31 bytes long."},

    // 10: textures as arguments
    {1001, "argument-texture", error, "functions that take textures", nullptr, nullptr,
     "the texture is null, was deleted, or is no memory", "The function reads its record.", "Pass live textures only."},
    {1002, "argument-pixels", error, "functions that read or write pixels", nullptr, nullptr,
     "the texture's pixels are null, not all there, or its sizes are no powers of two", "The function reads or writes outside of them.", "See whether CreateTexture found memory, and leave the sizes alone."},
    {1003, "delete-not-made", error, "DeleteTexture", nullptr, nullptr,
     "the texture was not made by the library", "Its memory is freed as if it were.", "Delete only what CreateTexture, LoadTexture or LoadTextureAdjust gave."},
};
/* clang-format on */
static_assert(std::size(ruleList) <= ruleLimit);

} // namespace

const std::span<const Rule> rules(ruleList);

size_t ruleNamed(std::string_view name)
{
    for (size_t k = 0; k < rules.size(); ++k)
        if (name == rules[k].name)
            return k;
    std::abort();
}

uint64_t rulesFor(layer::Id id)
{
    static uint64_t sets[layer::recordCount + uint32_t(layer::namedDrawCount)];
    uint64_t &set = sets[id];
    if (!set) {
        set = uint64_t(1) << 63; // known; ruleLimit - 1 rules are left
        for (size_t k = 0; k < rules.size(); ++k)
            if (rules[k].applies && rules[k].applies(layer::needsOf(id)))
                set |= uint64_t(1) << k;
    }
    return set & ~(uint64_t(1) << 63);
}

} // namespace debug
