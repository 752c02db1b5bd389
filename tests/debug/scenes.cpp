// The scenes of the differential before the eyes of the twin: what it says of them is what follows from the
// scene's own data, which is worked out here a second time. Nothing is drawn but by the reference.
//
//     twin_scenes [--scenes N] [--seed N] [--kind KIND] [--code 0xCODE] [--every N]
#include "choice.h"
#include "report.h"

#include "reference/reference.h"
#include "support/host.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <set>
#include <vector>

using namespace support;

namespace {

struct Count {
    uint64_t times = 0;
    std::string first;
    void add(const std::string &words)
    {
        if (times++ == 0)
            first = words;
    }
};
std::map<std::pair<int, std::string>, Count> found; // by severity and rule
std::map<std::string, Count> wrong; // findings that do not follow, and those that are missing
std::map<std::string, std::string> told; // by rule, of this scene
std::string current;

void collect(const NinefoldFinding *finding, void *)
{
    found[{-finding->severity, finding->name}].add(current + ": " + finding->text);
    told[finding->name] = finding->text;
}

// Makes the draw by the reference: tell(slot, byte) of each byte that it changes.
template <class Tell>
void draw(const Scene &scene, World &world, Tell &&tell)
{
    const RenderState bound = bindScene(scene, world, false);
    RenderState scratch;
    std::memcpy(&scratch, &bound, sizeof scratch);
    std::vector<std::vector<std::byte>> before;
    for (int k = 0; k < scene.written; ++k) {
        const Window &window = scene.windows[size_t(k)];
        before.emplace_back(world.begin(window.slot) + window.begin, world.begin(window.slot) + window.end);
    }
    if (scene.subject.exported)
        reference::drawNamed(scene.subject.exported, scratch);
    else
        reference::draw(scene.subject.code, scratch);
    for (int k = 0; k < scene.written; ++k) {
        const Window &window = scene.windows[size_t(k)];
        const std::byte *const now = world.begin(window.slot) + window.begin;
        for (size_t at = 0; at < before[size_t(k)].size(); ++at)
            if (before[size_t(k)][at] != now[at])
                tell(window.slot, now + at);
        std::copy(before[size_t(k)].begin(), before[size_t(k)].end(), world.begin(window.slot) + window.begin);
    }
}

// What a scene's data says about its draw, apart from how the twin comes to know it.
class Prediction {
public:
    Prediction(const Scene &ofScene, const RenderState &bound, World &in) : scene(ofScene), state(bound), world(in)
    {
        const int corners = scene.axes.shape == NINEFOLD_SHAPE_TRIANGLE ? 3 : 2;
        left = top = INT64_MAX, right = bottom = INT64_MIN;
        for (int k = 0; k < corners; ++k) {
            const int64_t x = int64_t{state.vertex[k].x} + state.originX, y = int64_t{state.vertex[k].y} + state.originY;
            left = std::min(left, x), right = std::max(right, x), top = std::min(top, y), bottom = std::max(bottom, y);
            far |= std::max(std::abs(x), std::abs(y)) >= int64_t{1} << 30;
        }
        tableTop = top;
        const auto &v = state.vertex;
        flat = corners == 3 &&
               (int64_t{v[1].x} - v[0].x) * (int64_t{v[2].y} - v[0].y) == (int64_t{v[2].x} - v[0].x) * (int64_t{v[1].y} - v[0].y);
        for (int k = 0; k < corners; ++k)
            for (const auto side : {&Vertex::x, &Vertex::y})
                wide |= scene.axes.shape != NINEFOLD_SHAPE_RECTANGLE &&
                        std::abs(int64_t{v[k].*side} - v[(k + 1) % corners].*side) >> 31;
        left = std::max<int64_t>(left, state.clipLeft), right = std::min<int64_t>(right, state.clipRight);
        top = std::max<int64_t>(top, state.clipTop), bottom = std::min<int64_t>(bottom, state.clipBottom);
    }

    // Rules that may be told of this scene, and those of them that must.
    void run(std::set<std::string> &may, std::set<std::string> &must) const
    {
        const auto follows = [&](const char *rule, bool can, bool has) {
            if (can)
                may.insert(rule);
            if (can && has)
                must.insert(rule);
        };
        const auto exactly = [&](const char *rule, bool is) { follows(rule, is, true); };
        const ninefold::Axes &a = scene.axes;
        // A level for each row comes from a line table; without one nothing is drawn.
        const bool table = a.rectOpt == NINEFOLD_RECT_TABLE;
        if ((a.filter == NINEFOLD_FILTER_LINE_POINT || a.filter == NINEFOLD_FILTER_LINE_BILINEAR) && !table)
            return;
        const bool fills = scene.subject.fillsPlanes();
        const bool inside = right - left > 2 && bottom - top > 2 && !flat; // whatever the edges are
        exactly("clip-empty", state.clipLeft == state.clipRight || state.clipTop == state.clipBottom);
        exactly("coordinates-far", far);
        exactly("coordinates-wrap", wide);
        exactly("blend-alpha-range", !fills && state.blendAlpha > 255 &&
                                         (a.blend == NINEFOLD_BLEND_CONST_ALPHA || operatorReads(&RenderState::blendAlpha)));
        exactly("blend-alpha-rgb-range", !fills && state.blendAlphaRgb > 255 && operatorReads(&RenderState::blendAlphaRgb));
        exactly("prescale-multi-range", !fills && state.prescaleMulti > 256 && operatorReads(&RenderState::prescaleMulti));
        // Constant alpha has no prescaled form.
        exactly("prescale-range", !fills && a.prescale && a.blend != NINEFOLD_BLEND_CONST_ALPHA && state.prescale > 256);
        exactly("rule-wraps", a.rule && state.ruleWidth > 0 &&
                                  ((255 - int64_t{state.ruleThreshold}) * 256 > INT32_MAX ||
                                   int64_t{state.ruleThreshold} + state.ruleWidth > INT32_MAX));
        const bool second = a.multi == NINEFOLD_MULTI_TEXTURE;
        follows("negative-positions",
                a.pers && !ninefold::hasColoursOnly(a.filter) && !fills &&
                    (isNegative(state.uv0) || (second && isNegative(state.uv1))),
                inside);
        follows("segment-wraps", table && (wraps(state.lineTable0) || (second && wraps(state.lineTable1))), right > left);
        follows(
            "texels-not-shifted",
            std::none_of(state.uv0, state.uv0 + 2,
                         [](const TexCoord &at) { return std::max(std::abs(int64_t{at.u}), std::abs(int64_t{at.v})) > 0x4000; }),
            false);
        follows("overlap", anythingInTheWay(), inside && firstInTheWay());
        if (told.contains("all-refused") && isUntouched())
            may.insert("all-refused");
    }

private:
    const Scene &scene;
    const RenderState &state;
    World &world;
    int64_t left, top, right, bottom, tableTop; // what the corners and the clip rectangle leave
    bool far = false; // a corner lies far away
    bool wide = false; // two corners of a line or triangle lie far apart
    bool flat = false; // a triangle has no area

    static bool isNegative(const TexCoord *positions)
    {
        return std::any_of(positions, positions + 3, [](const TexCoord &at) { return at.u < 0 || at.v < 0; });
    }

    // Whether an operator of the library's that the kernel calls comes out otherwise when that factor is another one.
    bool operatorReads(uint32_t RenderState::*factor) const
    {
        if (scene.subject.is("DrawRectTexRule")) // which calls none
            return false;
        const auto reads = [&](int number) {
            if (number < libraryOperators || number >= operatorCount || !operatorPair(number).reference)
                return false;
            RenderState with[2]{};
            with[0].blendAlpha = with[0].blendAlphaRgb = with[0].prescaleMulti = 128;
            with[0].writeMask = 0xFF00FF00;
            with[1] = with[0], with[1].*factor = 60;
            uint32_t word = 0x9E3779B9;
            for (int turn = 0; turn < 64; ++turn) {
                const uint32_t first = word *= 0x85EBCA6B, second = word *= 0xC2B2AE35;
                uint32_t results[2];
                for (int k = 0; k < 2; ++k) {
                    reference::setOperatorState(&with[k]);
                    results[k] = operatorPair(number).reference(first, second);
                }
                if (results[0] != results[1])
                    return true;
            }
            return false;
        };
        return (scene.axes.multi != NINEFOLD_MULTI_NONE && reads(scene.multiOperator)) ||
               (scene.axes.blend == NINEFOLD_BLEND_CUSTOM && reads(scene.blendOperator));
    }

    bool wraps(const LineTableRecord *lines) const
    {
        for (int64_t row = top - tableTop; row < bottom - tableTop; ++row) {
            const LineTableRecord &line = lines[row];
            const auto length = [](int32_t from, int32_t to) { return std::abs(int64_t{to} - from); };
            if (line.startU != NINEFOLD_SKIP_ROW &&
                std::max(length(line.startU, line.endU), length(line.startV, line.endV)) >> 31)
                return true;
        }
        return false;
    }

    // Whether any texture of the scene, fetched or not, lies beside what is written.
    bool anythingInTheWay() const
    {
        for (int k = 0; k < scene.textureCount; ++k)
            if (k != scene.frameTexture && scene.textures[size_t(k)].pixels.slot <= prioritySlot)
                return true;
        return false;
    }

    // Whether tex0, where it is fetched from as a whole, has pixels between the first and the last that is written.
    bool firstInTheWay() const
    {
        if (ninefold::hasColoursOnly(scene.axes.filter) || ninefold::readsLevels(scene.axes.filter) || scene.tex0 < 0 ||
            scene.subject.fillsPlanes())
            return false;
        const TextureSpec &texture = scene.textures[size_t(scene.tex0)];
        const int64_t pitch = scene.frameWidth, begin = scene.pixels.offset + 4 * (top * pitch + left),
                      end = scene.pixels.offset + 4 * ((bottom - 1) * pitch + right);
        return texture.pixels.slot == scene.pixels.slot && texture.pixels.offset < end &&
               begin < texture.pixels.offset + 4 * (int64_t{1} << (texture.log2Width + texture.log2Height));
    }

    // Whether the draw leaves the frame buffer as it was.
    bool isUntouched() const
    {
        bool touched = false;
        draw(scene, world, [&](int slot, const std::byte *) { touched |= slot == frameSlot; });
        return !touched;
    }
};

// Nothing outside of what the layer says that a draw writes is written. Runs move back over holes, to where it does not say.
void checkReach(const Scene &scene, World &world, layer::Id id)
{
    static layer::Footprint reach;
    if (layer::needsOf(id).map == ninefold::Map::runs)
        return;
    layer::findFootprint(id, debug::canLookAt, reach);
    draw(scene, world, [&](int slot, const std::byte *at) {
        const auto memory = reach.memory();
        bool inside = std::any_of(memory.begin(), memory.end(), [&](const layer::MemoryUse &use) {
            const auto *const begin = static_cast<const std::byte *>(use.begin);
            return use.written && at >= begin && at < begin + use.size;
        });
        if (slot == frameSlot || slot == prioritySlot) {
            const auto pixel = slot == frameSlot ? (at - reinterpret_cast<const std::byte *>(rs.dstPixels)) / 4
                                                 : at - reinterpret_cast<const std::byte *>(rs.zBuffer);
            const auto column = pixel & (ptrdiff_t(rs.dstPitch) - 1);
            inside &= column >= reach.pixels.left && column < reach.pixels.right;
        }
        if (!inside)
            wrong["written outside of the footprint"].add(current);
    });
}

void compare(const Scene &scene, const RenderState &state, World &world)
{
    std::set<std::string> may, must;
    Prediction(scene, state, world).run(may, must);
    for (const auto &[rule, text] : told)
        if (!may.contains(rule))
            wrong[rule + " does not follow"].add(std::string(current).append(": ").append(text));
    for (const std::string &rule : must)
        if (!told.contains(rule))
            wrong[rule + " is missing"].add(current);
}

} // namespace

int main(int argumentCount, char **arguments)
{
    const Choice choice(argumentCount, arguments, 1);
    startLibrary();
    debug::settings().repeat = 0;
    debug::settings().summary = false;
    debug::callback = collect;
    const std::vector<Subject> subjects = choice.subjects();
    uint64_t looked = 0;
    for (int kind = 0; kind < kindCount; ++kind) {
        if (!choice.takes(Kind(kind)))
            continue;
        World world(Kind(kind) == Kind::large);
        for (const Subject &subject : subjects) {
            layer::Call call{};
            call.id = subject.exported ? layer::recordCount : layer::Id(layer::recordOf(subject.code));
            while (subject.exported && !subject.is(layer::functionName(layer::Function(call.id - layer::recordCount))))
                ++call.id;
            // Lines are few and cheap, and seldom run along an edge.
            const uint32_t count = subject.axes().shape == NINEFOLD_SHAPE_LINE ? 20 * choice.scenes : choice.scenes;
            for (uint32_t number = 0; number < count; ++number) {
                const Scene scene = makeScene(subject, {Kind(kind), choice.seed, number}, world);
                const RenderState state = bindScene(scene, world, true);
                std::memcpy(&rs, &state, sizeof rs);
                current = subject.name() + " " + kindName(Kind(kind)) + " scene " + std::to_string(number);
                told.clear();
                layer::before(call);
                ++looked;
                if (std::memcmp(&rs, &state, sizeof rs) != 0)
                    wrong["rs was changed"].add(current);
                compare(scene, state, world);
                checkReach(scene, world, call.id);
            }
        }
    }
    for (const auto &[rule, count] : found) {
        std::printf("%s %s: %llu times, first: %s\n", debug::severityName(-rule.first), rule.second.c_str(),
                    static_cast<unsigned long long>(count.times), count.first.c_str());
    }
    for (const auto &[words, count] : wrong)
        std::printf("WRONG: %s: %llu times, first: %s\n", words.c_str(), static_cast<unsigned long long>(count.times),
                    count.first.c_str());
    std::printf("%llu scenes\n", static_cast<unsigned long long>(looked));
    return wrong.empty() && looked ? 0 : 1;
}
