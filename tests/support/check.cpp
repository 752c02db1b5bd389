#include "check.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <set>

#include "fields.h"
#include "host.h"
#include "kernels/sets.h"
#include "reference/reference.h"

namespace support {

namespace {

template <class... Values>
std::string format(const char *text, Values... values)
{
    char part[320];
    std::snprintf(part, sizeof part, text, values...);
    return part;
}

// A field as a number that does not depend on where its world lies: a texture by index, other pointers by whether they are still
// the same.
uint64_t fieldValue(const Field &field, const RenderState &start, const RenderState &end, const World &world, size_t at)
{
    const char *const bytes = reinterpret_cast<const char *>(&end) + field.offset;
    if (field.kind == FieldKind::plain) {
        uint16_t value = 0;
        std::memcpy(&value, bytes + at, 2);
        return value;
    }
    uintptr_t value = 0, first = 0;
    std::memcpy(&value, bytes, sizeof value);
    std::memcpy(&first, reinterpret_cast<const char *>(&start) + field.offset, sizeof first);
    if (value == 0)
        return 0;
    if (field.kind == FieldKind::texture) {
        const uintptr_t distance = value - reinterpret_cast<uintptr_t>(world.textures.data());
        const bool isTexture = distance % sizeof(Texture) == 0 && distance / sizeof(Texture) < world.textures.size();
        return isTexture ? 1 + distance / sizeof(Texture) : ~uint64_t{0};
    }
    return value == first ? 1 : ~uint64_t{0} - 1;
}

size_t fieldSteps(const Field &field) { return field.kind == FieldKind::plain ? field.size : 2; }

} // namespace

Comparer::Comparer(Kind kind) : libraryWorld(kind == Kind::large), referenceWorld(kind == Kind::large)
{
    startLibrary();
    for (const Subject &subject : catalogueSubjects())
        kernels.emplace_back(subject.code, SearchDrawFunc(subject.code));
    std::sort(kernels.begin(), kernels.end());
    textureBytes.resize(sizeof(Texture) * World::textureLimit);
}

void Comparer::prepare(const Subject &subject, SceneId id)
{
    scene = makeScene(subject, id, libraryWorld);
    before.clear();
    for (int i = 0; i < scene.windowCount; ++i) {
        const Window &window = scene.windows[static_cast<size_t>(i)];
        const std::byte *const bytes = libraryWorld.begin(window.slot);
        std::memcpy(referenceWorld.begin(window.slot) + window.begin, bytes + window.begin, window.end - window.begin);
        if (i < scene.written)
            before.insert(before.end(), bytes + window.begin, bytes + window.end);
    }
    libraryStart = bindScene(scene, libraryWorld, true);
    referenceStart = bindScene(scene, referenceWorld, false);
    std::memcpy(textureBytes.data(), static_cast<const void *>(libraryWorld.textures.data()), textureBytes.size());
}

// For the operators that watch.
void Comparer::openEyes(const World &world, bool byReference) const
{
    calls = {};
    sight.pixels = world.at<uint32_t>(scene.pixels);
    sight.priorities = world.at<uint8_t>(scene.priority);
    sight.pitch = scene.frameWidth;
    sight.byReference = byReference;
    if (byReference)
        sight.places.clear();
    sight.firstPriority = sight.endPriority = 0;
    for (int i = 0; i < scene.written; ++i) {
        const Window &window = scene.windows[static_cast<size_t>(i)];
        if (window.slot == frameSlot) {
            sight.firstPixel = (window.begin - scene.pixels.offset) / 4;
            sight.endPixel = (window.end - scene.pixels.offset) / 4;
        } else if (window.slot == prioritySlot) {
            sight.firstPriority = window.begin - scene.priority.offset;
            sight.endPriority = window.end - scene.priority.offset;
        }
    }
}

void Comparer::drawReference()
{
    std::memcpy(&referenceEnd, &referenceStart, sizeof referenceEnd);
    openEyes(referenceWorld, true);
    for (int draw = 0; draw < scene.draws; ++draw)
        if (scene.subject.exported != nullptr)
            reference::drawNamed(scene.subject.exported, referenceEnd);
        else
            reference::draw(scene.subject.code, referenceEnd);
}

void Comparer::drawLibrary(int set, bool restore)
{
    if (restore) {
        const std::byte *from = before.data();
        for (int i = 0; i < scene.written; ++i) {
            const Window &window = scene.windows[static_cast<size_t>(i)];
            std::memcpy(libraryWorld.begin(window.slot) + window.begin, from, window.end - window.begin);
            from += window.end - window.begin;
        }
    }
    DrawFunc kernel = scene.subject.function;
    if (kernel == nullptr)
        kernel =
            std::lower_bound(kernels.begin(), kernels.end(), std::pair<uint32_t, DrawFunc>{scene.subject.code, nullptr})->second;
    SearchDrawFunc(scene.searchedBefore);
    std::memcpy(&rs, &libraryStart, sizeof rs);
    ninefold::useSet(set);
    openEyes(libraryWorld, false);
    if (beforeDraw != nullptr)
        beforeDraw(set);
    for (int draw = 0; draw < scene.draws; ++draw)
        kernel();
}

std::string Comparer::pixelDifferences(const Window &window, size_t beforeOffset, bool all) const
{
    const std::byte *const library = libraryWorld.begin(window.slot);
    const std::byte *const expected = referenceWorld.begin(window.slot);
    const auto same = [&](uint32_t at, uint32_t size) { return std::memcmp(library + at, expected + at, size) == 0; };
    if (same(window.begin, window.end - window.begin))
        return "";

    // a pixel, a word of sixteen bits, or a byte
    const bool drawn = window.slot <= prioritySlot;
    const uint32_t size = window.slot == planeSlot ? 2 : window.slot == prioritySlot ? 1 : 4;
    const Place &base = window.slot == frameSlot ? scene.pixels : window.slot == planeSlot ? scene.plane : scene.priority;
    const int64_t elements = int64_t{scene.frameWidth} * scene.frameHeight / (size == 2 ? 16 : 1);
    const int64_t pitch = size == 2 ? scene.frameWidth / 16 : scene.frameWidth;
    static constexpr const char *names[] = {"frame buffer", "Shahei plane", "zBuffer"};
    std::string text;
    uint32_t count = 0;
    const int64_t start = drawn ? base.offset : 0;
    const int64_t phase = ((window.begin - start) % size + size) % size;
    for (int64_t at = window.begin + (phase == 0 ? 0 : size - phase); at + size <= window.end; at += size) {
        const uint32_t offset = static_cast<uint32_t>(at);
        if (same(offset, size))
            continue;
        if (++count > (all ? 24u : 1u))
            continue;
        uint32_t values[3] = {};
        std::memcpy(&values[0], library + at, size);
        std::memcpy(&values[1], expected + at, size);
        if (drawn)
            std::memcpy(&values[2], before.data() + beforeOffset + (offset - window.begin), size);
        const int64_t element = (at - start) / size;
        std::string place = format("slot %d, byte %u", window.slot, offset);
        if (drawn && (element < 0 || element >= elements || at < start))
            place = format("outside the %s, element %lld", names[window.slot],
                           static_cast<long long>((at - start) / static_cast<int64_t>(size)));
        else if (drawn)
            place = format(size == 2 ? "%s, word %lld of row %lld" : "%s, pixel %lld, %lld", names[window.slot],
                           static_cast<long long>(element % std::max<int64_t>(pitch, 1)),
                           static_cast<long long>(element / std::max<int64_t>(pitch, 1)));
        text += format("  %s: library %08x, reference %08x", place.c_str(), values[0], values[1]);
        text += drawn ? format(", before %08x\n", values[2]) : std::string(" (a source was written)\n");
    }
    text += format("  %u differ there\n", count);
    return text;
}

std::string Comparer::differences(bool all) const
{
    std::string text;
    size_t beforeOffset = 0;
    for (int i = 0; i < scene.windowCount; ++i) {
        const Window &window = scene.windows[static_cast<size_t>(i)];
        text += pixelDifferences(window, beforeOffset, all);
        beforeOffset += window.end - window.begin;
        if (!text.empty() && !all)
            return text;
    }
    if (std::memcmp(textureBytes.data(), static_cast<const void *>(libraryWorld.textures.data()), textureBytes.size()) != 0)
        text += "  a texture record was written\n";
    if (std::memcmp(&rs, &libraryStart, sizeof rs) == 0 && std::memcmp(&referenceEnd, &referenceStart, sizeof referenceEnd) == 0)
        return text;
    for (const Field &field : fields())
        for (size_t at = 0; at < fieldSteps(field); at += 2) {
            const uint64_t library = fieldValue(field, libraryStart, rs, libraryWorld, at);
            const uint64_t expected = fieldValue(field, referenceStart, referenceEnd, referenceWorld, at);
            if (library != expected) {
                text +=
                    format("  rs.%s, byte %u: library %llx, reference %llx, before %llx\n", field.name, static_cast<unsigned>(at),
                           static_cast<unsigned long long>(library), static_cast<unsigned long long>(expected),
                           static_cast<unsigned long long>(fieldValue(field, libraryStart, libraryStart, libraryWorld, at)));
                break;
            }
        }
    return text;
}

std::optional<std::string> Comparer::check(const Subject &subject, SceneId id, int set, bool all)
{
    prepare(subject, id);
    drawReference();
    const Calls expectedCalls = calls;
    std::string text;
    if (all)
        text += describeScene(scene, libraryWorld);
    bool wrong = false;
    const int first = set < 0 ? 0 : set, end = set < 0 ? ninefold::usableSets() : set + 1;
    for (int i = first; i < end; ++i) {
        drawLibrary(i, i != first);
        std::string found = differences(all);
        if (calls != expectedCalls)
            found += format("  host operators: %llu calls, reference %llu%s\n", static_cast<unsigned long long>(calls.count),
                            static_cast<unsigned long long>(expectedCalls.count),
                            calls.count == expectedCalls.count ? ", with other arguments or in another order" : "");
        if (found.empty())
            continue;
        wrong = true;
        char code[32] = "";
        std::snprintf(code, sizeof code, "--code 0x%X", subject.code);
        text += format("%s, set %s, scene %u of seed %llu\n", subject.name().c_str(), ninefold::setNames[i], id.number,
                       static_cast<unsigned long long>(id.seed)) +
                found +
                format("  replay %s%s --kind %s --seed %llu --scene %u --set %d\n", subject.exported ? "--named " : "",
                       subject.exported ? subject.exported : code, kindName(id.kind), static_cast<unsigned long long>(id.seed),
                       id.number, i);
        if (!all)
            break;
    }
    if (!wrong && !all)
        return std::nullopt;
    if (!wrong)
        text += "library and reference agree\n";
    return text;
}

uint32_t Comparer::sum(const World &world, const RenderState &start, const RenderState &end) const
{
    uint32_t result = 0x811C9DC5;
    const auto add = [&result](uint32_t word) {
        result = (result ^ word) * 0x9E3779B1;
        result ^= result >> 15;
    };
    for (int i = 0; i < scene.written; ++i) {
        const Window &window = scene.windows[static_cast<size_t>(i)];
        const std::byte *const bytes = world.begin(window.slot);
        for (uint32_t at = window.begin; at < window.end; at += 4) {
            uint32_t word = 0;
            std::memcpy(&word, bytes + at, std::min<uint32_t>(4, window.end - at));
            add(word);
        }
    }
    for (const Field &field : fields())
        if (std::strncmp(field.name, "mip", 3) == 0)
            for (size_t at = 0; at < fieldSteps(field); at += 2)
                add(static_cast<uint32_t>(fieldValue(field, start, end, world, at)));
    add(static_cast<uint32_t>(calls.count));
    add(static_cast<uint32_t>(calls.digest));
    return result;
}

uint32_t Comparer::referenceSum(const Subject &subject, SceneId id)
{
    prepare(subject, id);
    drawReference();
    return sum(referenceWorld, referenceStart, referenceEnd);
}

uint32_t Comparer::librarySum(const Subject &subject, SceneId id, int set)
{
    prepare(subject, id);
    drawLibrary(set, false);
    return sum(libraryWorld, libraryStart, rs);
}

size_t distinctKernels()
{
    startLibrary();
    std::set<DrawFunc> functions;
    for (const Subject &subject : catalogueSubjects())
        functions.insert(SearchDrawFunc(subject.code));
    return functions.size();
}

} // namespace support
