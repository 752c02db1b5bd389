#include "recorder.h"

#include <algorithm>
#include <cstring>

namespace capture {
namespace {

// The operators that stand in the place of the host's while it draws.
struct Listener {
    PixelOperator host;
    std::vector<uint32_t> words; // what it returned
    uint64_t digest; // of what it was called with

    uint32_t call(uint32_t first, uint32_t second)
    {
        digest = digestCall(digest, first, second);
        words.push_back(host(first, second));
        return words.back();
    }
    void listen(PixelOperator to)
    {
        host = to;
        words.clear();
        digest = 0;
    }
};
Listener multi, blend;
uint32_t listenMulti(uint32_t first, uint32_t second) { return multi.call(first, second); }
uint32_t listenBlend(uint32_t first, uint32_t second) { return blend.call(first, second); }

constexpr size_t pageSize = 4096;
constexpr uint64_t mostPixels = 1 << 26; // of a frame buffer that is looked at as a whole

std::string versionText()
{
    return std::to_string(NINEFOLD_VERSION_MAJOR) + "." + std::to_string(NINEFOLD_VERSION_MINOR) + "." +
           std::to_string(NINEFOLD_VERSION_PATCH);
}

} // namespace

Recorder::Recorder(const Options &wanted, const Memory &asks, const Operators::Setters &setters)
    : options(wanted), memory(asks), operators(setters), state(stateCells().size())
{}

std::unique_ptr<Recorder> Recorder::open(const Options &options, const Memory &memory, const Operators::Setters &setters,
                                         std::string &error)
{
    std::unique_ptr<Writer> writer = Writer::create(options.path, options.level, error);
    if (!writer)
        return nullptr;
    std::unique_ptr<Recorder> recorder(new Recorder(options, memory, setters));
    recorder->writer = std::move(writer);
    Out cells;
    for (const std::span<const Cell> list : {stateCells(), textureCells()}) {
        cells.number(list.size());
        for (const Cell &cell : list)
            cells.text(cell.name);
    }
    recorder->writer->event(EventType::cells, cells);
    for (const auto &[key, value] : {std::pair<std::string, std::string>{"library", versionText()},
                                     {"pointers", std::to_string(8 * sizeof(void *)) + " bits"}}) {
        Out note;
        note.text(key), note.text(value);
        recorder->writer->event(EventType::note, note);
    }
    return recorder;
}

Recorder::~Recorder() { close(); }

bool Recorder::canRecord(const layer::Footprint &footprint, const std::vector<Rows> &all) const
{
    for (const layer::TextureUse &use : footprint.textures())
        if (use.fetched && !memory.record(use.texture))
            return false;
    return std::all_of(all.begin(), all.end(), [&](const Rows &one) {
        return one.begin && one.end() > one.begin && memory.readable(reinterpret_cast<void *>(one.begin), one.end() - one.begin);
    });
}

void Recorder::before(layer::Id id, const layer::Footprint &footprint)
{
    if (options.pause && drawnInFrame && Clock::now() - ended >= std::chrono::milliseconds(options.pause))
        frame(Cut::pause);
    const layer::Needs &needs = layer::needsOf(id);
    uint32_t back = moveBack(footprint, needs);
    findRows(footprint, back, rows);
    // There may be less memory before the first pixel than a hole could reach.
    while (back && !canRecord(footprint, rows)) {
        back -= std::min(back, uint32_t(pageSize / 4));
        findRows(footprint, back, rows);
    }
    isOpen = canRecord(footprint, rows);
    Out out;
    if (!isOpen) {
        ++lostCount;
        out.text(layer::nameOf(id));
        writer->event(EventType::lost, out);
        return;
    }
    for (const layer::TextureUse &use : footprint.textures())
        writeTexture(use.texture);
    writeTexture(rs.frameBuffer);
    written.clear();
    for (const Rows &one : rows) {
        if (one.written)
            written.push_back(one);
        const bool source = !one.written && one.pixels;
        if (source && !options.texturesEachDraw && !compared.emplace(one.begin, one.rows * one.rowBytes).second) {
            if (const Rows part = partRead(one, footprint, needs); part.rows)
                writeMemory(part);
            continue;
        }
        writeMemory(one);
    }
    out.byte(layer::isRecord(id));
    if (layer::isRecord(id))
        out.number(layer::codeOf(id));
    else
        out.text(layer::functionName(layer::Function(id - layer::recordCount)));
    out.number(back);
    writeState(out);
    writer->event(EventType::draw, out);
    remember(footprint);
    if (options.flushesEachDraw)
        writer->flush();

    hostMulti = hostBlend = nullptr;
    if (needs.callsMulti && Operators::isHost(operators.numberOf(rs.multiFunc))) {
        multi.listen(hostMulti = rs.multiFunc);
        rs.multiFunc = listenMulti;
    }
    if (needs.callsBlend && Operators::isHost(operators.numberOf(rs.blendFunc))) {
        blend.listen(hostBlend = rs.blendFunc);
        rs.blendFunc = listenBlend;
    }
    started = Clock::now();
}

void Recorder::after()
{
    if (!isOpen)
        return;
    ended = Clock::now();
    isOpen = false;
    if (hostMulti)
        rs.multiFunc = hostMulti;
    if (hostBlend)
        rs.blendFunc = hostBlend;
    Out out;
    uint8_t flags = uint8_t((hostMulti ? resultMulti : 0) | (hostBlend ? resultBlend : 0));
    for (const Rows &one : written)
        flags |= one.field == layer::Field::dstPixels     ? resultPixels
                 : one.field == layer::Field::shaheiPlane ? resultPlane
                                                          : resultPriorities;
    out.byte(flags);
    for (const Rows &one : written) {
        RowHash hash;
        for (size_t row = 0; row < one.rows; ++row)
            hash.add(reinterpret_cast<const void *>(one.row(row)), one.rowBytes);
        shadow.take(one, {0, one.rowBytes, 0, one.rows});
        out.word(hash.value());
    }
    for (const Listener *const listener : {&multi, &blend})
        if (listener == &multi ? hostMulti : hostBlend) {
            out.word(listener->digest);
            writeWords(out, listener->words);
        }
    writeState(out);
    out.number(uint64_t(std::chrono::duration_cast<std::chrono::nanoseconds>(ended - started).count()));
    writer->event(EventType::result, out);
    ++drawCount, ++drawnInFrame;
}

void Recorder::writeWords(Out &out, const std::vector<uint32_t> &words)
{
    out.number(words.size());
    constexpr size_t part = contentLimit / 4;
    for (size_t at = 0; at < words.size(); at += part) {
        const size_t count = std::min(part, words.size() - at);
        out.number(writer->content(uint32_t(4 * count), 1, reinterpret_cast<const uint8_t *>(words.data() + at), false));
    }
}

void Recorder::writeTexture(const Texture *texture)
{
    if (!texture || !memory.record(texture))
        return;
    const std::span<const Cell> cells = textureCells();
    static const size_t firstLevel = textureCell("mip[0]");
    std::vector<uint64_t> &known = textures[uintptr_t(texture)];
    const bool isNew = known.empty();
    known.resize(cells.size());
    Out changes;
    uint64_t count = 0, before = 0;
    for (size_t k = 0; k < cells.size(); ++k) {
        uint64_t value = readCell(cells[k], texture);
        if (k >= firstLevel && k - firstLevel < std::size(texture->mip) && k - firstLevel >= texture->mipCount)
            value = 0; // what lies behind the chain means nothing
        if (value == known[k])
            continue;
        changes.number(k - before), changes.number(value);
        before = k, known[k] = value;
        ++count;
    }
    if (!count && !isNew)
        return;
    Out out;
    out.number(uintptr_t(texture));
    out.number(count);
    out.bytes.insert(out.bytes.end(), changes.bytes.begin(), changes.bytes.end());
    writer->event(EventType::texture, out);
}

void Recorder::gather(const Rows &source, const Shadow::Box &part)
{
    const size_t size = part.right - part.left;
    gathered.resize((part.bottom - part.top) * size);
    for (size_t row = part.top; row < part.bottom; ++row)
        std::memcpy(gathered.data() + (row - part.top) * size, reinterpret_cast<const void *>(source.row(row) + part.left), size);
}

void Recorder::writeMemory(const Rows &source)
{
    Shadow::Box box = shadow.compare(source);
    if (box.empty())
        return;
    // A source whole where that is not much more: the same picture at another address is then the same content.
    if (!source.written && 4 * (box.right - box.left) * (box.bottom - box.top) > source.rowBytes * source.rows)
        box = {0, source.rowBytes, 0, source.rows};
    const size_t width = box.right - box.left;
    // In parts that are no larger than a content may be; a row that is goes in pieces.
    const size_t piece = std::min(width, contentLimit);
    const size_t partRows = std::max<size_t>(1, contentLimit / piece);
    for (size_t top = box.top; top < box.bottom; top += partRows)
        for (size_t left = box.left; left < box.right; left += piece) {
            const size_t rowCount = std::min(partRows, box.bottom - top), size = std::min(piece, box.right - left);
            const Shadow::Box part{left, left + size, top, top + rowCount};
            gather(source, part);
            const bool masks = source.written && makeMask(source, part);
            const uint64_t maskNumber =
                masks ? writer->content(uint32_t(mask.size() / rowCount), uint32_t(rowCount), mask.data(), false) : 0;
            const uint64_t number = writer->content(uint32_t(size), uint32_t(rowCount), gathered.data(), source.pixels);
            Out out;
            out.number(source.row(top) + left);
            out.number(source.stride);
            out.number(number);
            if (masks)
                out.number(maskNumber), out.number(source.element);
            writer->event(EventType::memory, out);
            // As it was written, and not as the host's memory is now: what it has freed, frame buffers too, others may be using.
            for (size_t row = 0; row < rowCount; ++row)
                for (size_t at = 0, step = masks ? source.element : size; at < size; at += step)
                    if (!masks || mask[row * (mask.size() / rowCount) + at / step / 8] >> at / step % 8 & 1)
                        shadow.store(source.row(top + row) + left + at, gathered.data() + row * size + at, step);
        }
}

// Of what was gathered from a part of the rows: a bit for each element, set where it is new. In the place of the others, which often
// are noise that was drawn just before, comes what lies to their left. False where nearly all is new.
bool Recorder::makeMask(const Rows &source, const Shadow::Box &part)
{
    const size_t element = source.element, size = part.right - part.left, count = size / element,
                 rowCount = part.bottom - part.top;
    const size_t maskBytes = (count + 7) / 8;
    if (!count || size % element)
        return false;
    mask.assign(maskBytes * rowCount, 0);
    size_t old = 0;
    const uint8_t *replacement = nullptr;
    for (size_t row = 0; row < rowCount; ++row) {
        uint8_t *const elements = gathered.data() + row * size;
        for (size_t k = 0; k < count; ++k) {
            uint8_t *const here = elements + k * element;
            uint8_t held[8];
            shadow.copy(source.row(part.top + row) + part.left + k * element, element, held);
            if (std::memcmp(here, held, element) != 0) {
                mask[row * maskBytes + k / 8] |= uint8_t(1 << k % 8);
                replacement = here;
            } else {
                ++old;
                if (replacement)
                    std::memcpy(here, replacement, element);
                else
                    std::memset(here, 0, element);
            }
        }
    }
    if (16 * old > count * rowCount)
        return true;
    gather(source, part);
    return false;
}

// Cells that differ from what replay holds.
void Recorder::writeState(Out &out)
{
    const std::span<const Cell> cells = stateCells();
    const std::span<const int16_t> cellAt = stateCellAt();
    Out changes;
    uint64_t count = 0, before = 0;
    int lastCell = -1;
    for (size_t at = 0; at < sizeof rs; at += 2) {
        const auto *const now = reinterpret_cast<const unsigned char *>(&rs) + at;
        if (at % 8 == 0 && at + 8 <= sizeof rs && std::memcmp(now, last + at, 8) == 0) {
            at += 6;
            continue;
        }
        const int k = cellAt[at];
        if (k < 0 || k == lastCell || std::memcmp(now, last + at, 2) == 0)
            continue;
        lastCell = k;
        const Cell &cell = cells[size_t(k)];
        uint64_t value = readCell(cell, &rs);
        if (cell.kind == Cell::Kind::operation) {
            PixelOperator function;
            std::memcpy(&function, reinterpret_cast<const unsigned char *>(&rs) + cell.offset, sizeof function);
            value = operators.numberOf(function);
        }
        if (value == state[size_t(k)])
            continue;
        changes.number(uint64_t(k) - before), changes.difference(int64_t(value - state[size_t(k)]));
        before = uint64_t(k), state[size_t(k)] = value;
        ++count;
    }
    std::memcpy(last, &rs, sizeof rs);
    out.number(count);
    out.bytes.insert(out.bytes.end(), changes.bytes.begin(), changes.bytes.end());
}

void Recorder::remember(const layer::Footprint &footprint)
{
    target = {rs.dstPixels, rs.dstShift, rs.dstPitch, rs.dstHeight, rs.frameBuffer};
    if (target.texture && memory.record(target.texture) && target.texture->pixels == target.pixels) {
        target.width = std::min(target.width, target.texture->origWidth ? target.texture->origWidth : target.width);
        target.height = std::min(target.height, target.texture->origHeight ? target.texture->origHeight : target.height);
    }
    const bool drawsPixels =
        std::any_of(written.begin(), written.end(), [](const Rows &one) { return one.field == layer::Field::dstPixels; });
    const layer::Pixels &drawn = footprint.pixels;
    const layer::Pixels p{std::max(drawn.left, 0), std::max(drawn.top, 0), drawn.right, drawn.bottom};
    if (p.empty() || !drawsPixels)
        return;
    layer::Pixels &all = reached.try_emplace(target.pixels, p).first->second;
    all = {std::min(all.left, p.left), std::min(all.top, p.top), std::max(all.right, p.right), std::max(all.bottom, p.bottom)};
}

void Recorder::frame(Cut cut)
{
    compared.clear();
    if (!drawnInFrame)
        return;
    drawnInFrame = 0;
    ++frameCount;
    Out out;
    layer::Pixels p{};
    if (const auto found = reached.find(target.pixels); found != reached.end())
        p = found->second;
    // What the host wrote itself, as long as it is there: of the whole picture. After a pause it may be writing the next one; when it
    // has ended, memory of its own may be freed and hold anything.
    bool there = cut == Cut::end ? target.texture && memory.made(target.texture) && target.texture->pixels == target.pixels
                                 : cut != Cut::pause && (!target.texture || memory.record(target.texture));
    if (const uint64_t area = target.shift > 30 ? 0 : uint64_t{target.height} << target.shift;
        there && area && area <= mostPixels && memory.readable(target.pixels, size_t(area) * 4))
        p = {0, 0, std::max(p.right, int32_t(target.width)), std::max(p.bottom, int32_t(target.height))};
    p.right = std::min<int64_t>(p.right, int64_t{1} << std::min(target.shift, 30u));
    p.left = std::min(p.left, p.right);
    Rows all{
        layer::Field::dstPixels,   true, true, uintptr_t(target.pixels), size_t(p.right - p.left) * 4, size_t(p.bottom - p.top),
        size_t{4} << target.shift, 4};
    all.begin += uintptr_t((ptrdiff_t(p.top) << target.shift) + p.left) * 4;
    RowHash hash;
    if (all.rowBytes && all.rows) {
        there = there && memory.readable(reinterpret_cast<const void *>(all.begin), all.end() - all.begin);
        if (there)
            writeMemory(all);
        for (size_t row = 0; row < all.rows; ++row)
            for (size_t at = 0; at < all.rowBytes;) {
                const uintptr_t address = all.row(row) + at;
                const size_t size = std::min(all.rowBytes - at, Shadow::readable(address));
                hash.add(shadow.read(address), size);
                at += size;
            }
    }
    out.byte(uint8_t(cut));
    out.number(uintptr_t(target.pixels)), out.number(target.shift);
    out.number(target.width), out.number(target.height);
    out.number(uint64_t(p.left)), out.number(uint64_t(p.top)), out.number(uint64_t(p.right)), out.number(uint64_t(p.bottom));
    out.word(hash.value());
    writer->event(EventType::frame, out);
    writer->flush();
}

void Recorder::touch(const Texture *texture)
{
    if (!texture || !memory.record(texture))
        return;
    const auto forget = [&](const Texture *one) {
        const uintptr_t begin = uintptr_t(one->pixels), end = begin + size_t{4} * one->width * one->height;
        std::erase_if(compared, [&](const auto &known) { return known.first < end && known.first + known.second > begin; });
    };
    forget(texture);
    for (uint32_t level = 1; level < texture->mipCount && level < std::size(texture->mip); ++level)
        if (memory.record(texture->mip[level]))
            forget(texture->mip[level]);
}

void Recorder::label(const void *address, const std::string &name)
{
    Out out;
    out.number(uintptr_t(address));
    out.text(name);
    writer->event(EventType::label, out);
}

void Recorder::close()
{
    if (!writer || closed)
        return;
    closed = true;
    frame(Cut::end);
    Out out;
    out.number(frameCount), out.number(drawCount), out.number(lostCount);
    writer->event(EventType::end, out);
    writer->close();
}

} // namespace capture
