#include "player.h"

#include "knowledge.h"
#include "report.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace capture {
namespace {

// The operators that stand for the host's: they give what those returned.
struct Speaker {
    const std::vector<uint32_t> *words;
    uint64_t calls, digest;

    uint32_t call(uint32_t first, uint32_t second)
    {
        digest = digestCall(digest, first, second);
        const uint64_t index = calls++;
        return index < words->size() ? (*words)[size_t(index)] : 0;
    }
};
Speaker speakers[2]; // of multiFunc and blendFunc
uint32_t speakMulti(uint32_t first, uint32_t second) { return speakers[0].call(first, second); }
uint32_t speakBlend(uint32_t first, uint32_t second) { return speakers[1].call(first, second); }

const Player *asking; // for whom the footprint is found

std::string finding; // the last error that the twin's rules told
std::vector<std::string> rulesMet; // in the last prepare()

// Findings come here, and a draw with an error is refused.
void listenToTwin()
{
    static bool listens;
    if (listens)
        return;
    listens = true;
    debug::Settings &s = debug::settings();
    s.severity = NINEFOLD_DEBUG_ERROR;
    s.action = NINEFOLD_DEBUG_SKIP;
    s.repeat = 0;
    s.summary = false;
    debug::callback = [](const NinefoldFinding *found, void *) {
        rulesMet.emplace_back(found->name);
        if (found->severity == NINEFOLD_DEBUG_ERROR)
            finding = std::string(found->name) + ": " + found->text;
    };
}

// Sizes of a texture that draws can work with, and that are no larger than memory can be.
bool hasSizes(const Texture &t)
{
    return t.log2Width <= 24 && t.log2Height <= 24 && t.log2Width + t.log2Height <= 28 && t.width == 1u << t.log2Width &&
           t.height == 1u << t.log2Height;
}

constexpr uint64_t mostCells = 4096, longestName = 100, longestText = 4096;
constexpr uint64_t mostTextures = 1 << 20, mostLabels = 1 << 20;
constexpr uint64_t mostWords = uint64_t{1} << 28;
constexpr uint64_t largestSide = 1 << 16, mostPixels = 1 << 26; // of a picture

// What rs and textures hold in the place of a recorded address until map() knows where its memory is: it need not fit a pointer of
// this machine. Alignment is kept.
uintptr_t standIn(uint64_t address) { return address ? uintptr_t{0x40000000} | uintptr_t(address & 0xFFFF) : 0; }

void storeTexture(const Cell &cell, void *record, Texture *texture)
{
    std::memcpy(static_cast<unsigned char *>(record) + cell.offset, &texture, sizeof texture);
}

const char *partName(layer::Field field)
{
    return field == layer::Field::dstPixels     ? "the frame buffer"
           : field == layer::Field::shaheiPlane ? "the Shahei plane"
                                                : "the priority plane";
}

} // namespace

Player::Player(Reader &from, uint64_t memoryLimit) : reader(from), store(memoryLimit), cells(stateCells().size())
{
    listenToTwin();
    Library::linked();
}

Player::Step Player::stop(const std::string &words)
{
    if (trouble.empty())
        trouble = words;
    return Step::end;
}

Player::Step Player::next()
{
    if (!trouble.empty())
        return Step::end;
    if (drawn)
        cells = current.after;
    drawn = false;
    for (;;) {
        Event event;
        if (hasAhead) {
            event = ahead;
            hasAhead = false;
        } else if (!reader.next(event)) {
            return stop(reader.problem());
        }
        if (event.type == EventType::end)
            return Step::end;
        if (!apply(event))
            return stop("an event before byte " + std::to_string(reader.position()) + " makes no sense");
        if (event.type == EventType::frame)
            return Step::frame;
        if (event.type != EventType::draw)
            continue;
        drawn = true;
        current.after = cells;
        hasAhead = reader.next(ahead);
        if (!hasAhead || ahead.type != EventType::result)
            return Step::draw; // the file ends in the draw
        hasAhead = false;
        In in(ahead.payload);
        if (!takeResult(in))
            return stop("the result of draw " + std::to_string(current.number) + " makes no sense");
        return Step::draw;
    }
}

bool Player::apply(const Event &event)
{
    In in(event.payload);
    switch (event.type) {
    case EventType::cells: return takeCells(in);
    case EventType::note: {
        const std::string key = in.text(longestName);
        const std::string value = in.text(longestText);
        if (noteTexts.size() < 100)
            noteTexts[key] = value;
        return in.good();
    }
    case EventType::label: {
        const uint64_t address = in.number();
        const std::string name = in.text(longestText);
        if (labelTexts.size() < mostLabels)
            labelTexts[address] = name;
        return in.good();
    }
    case EventType::memory: return takeMemory(in);
    case EventType::texture: return takeTexture(in);
    case EventType::draw: return takeDraw(in);
    case EventType::frame: return takeFrame(in);
    case EventType::lost: ++lostCount; return true;
    default: return true; // of a later version; a result without a draw
    }
}

bool Player::takeCells(In &in)
{
    const auto take = [&](std::span<const Cell> ours, std::vector<int> &order) {
        const uint64_t count = in.number(mostCells);
        order.clear();
        for (uint64_t k = 0; k < count && in.good(); ++k) {
            const std::string name = in.text(longestName);
            const auto found = std::find_if(ours.begin(), ours.end(), [&](const Cell &cell) { return cell.name == name; });
            order.push_back(found == ours.end() ? -1 : int(found - ours.begin()));
        }
    };
    take(stateCells(), stateOrder);
    take(textureCells(), textureOrder);
    return in.good();
}

bool Player::reserve(const Store &like)
{
    for (const auto &[begin, size] : like.ranges())
        if (!store.ensure(begin, size))
            return false;
    return true;
}

bool Player::takeMemory(In &in)
{
    const uint64_t address = in.number(), stride = in.number(Store::usualLimit);
    const Content *const content = reader.content(in.number());
    if (!in.good() || !content || (content->rows > 1 && stride < content->rowBytes))
        return false;
    const Content *mask = nullptr;
    size_t element = 0; // bytes of what a bit of the mask stands for
    if (!in.remaining().empty()) {
        mask = reader.content(in.number());
        element = size_t(in.number(8));
        if (!in.good() || !mask || !element || content->rowBytes % element || mask->rows != content->rows ||
            mask->rowBytes != (content->rowBytes / element + 7) / 8)
            return false;
    }
    const uint64_t rows = content->rows, size = (rows - 1) * stride + content->rowBytes;
    if (!store.ensure(address, size))
        return false;
    const MemoryWrite write{store.at(address),
                            content->bytes.data(),
                            mask ? mask->bytes.data() : nullptr,
                            content->rowBytes,
                            size_t(rows),
                            size_t(stride),
                            element};
    write.write();
    if (wrote)
        wrote(write);
    return true;
}

void MemoryWrite::write() const
{
    for (size_t row = 0; row < rows; ++row) {
        const uint8_t *const source = from + row * rowBytes;
        uint8_t *const target = to + row * stride;
        if (!bits) {
            std::memcpy(target, source, rowBytes);
            continue;
        }
        const uint8_t *const set = bits + row * bitBytes();
        for (size_t k = 0; k < rowBytes / element; ++k)
            if (set[k / 8] >> k % 8 & 1)
                std::memcpy(target + k * element, source + k * element, element);
    }
}

Texture *Player::textureAt(uint64_t address)
{
    if (!address)
        return nullptr;
    if (held.size() >= mostTextures && !held.contains(address))
        return nullptr;
    HeldTexture &one = held[address];
    if (!one.record) {
        one.record = std::make_unique<Texture>();
        one.cells.resize(textureCells().size());
        addresses[one.record.get()] = address;
        debug::forgetTexture(one.record.get()); // one that was deleted may have lain there
    }
    return one.record.get();
}

void Player::storeCell(size_t index, uint64_t value, HeldTexture &to)
{
    to.cells[index] = value;
    const Cell &cell = textureCells()[index];
    if (cell.kind == Cell::Kind::texture)
        storeTexture(cell, to.record.get(), textureAt(value));
    else
        writeCell(cell, to.record.get(), cell.kind == Cell::Kind::address ? standIn(value) : value);
}

bool Player::takeTexture(In &in)
{
    const uint64_t address = in.number();
    if (!in.good() || !textureAt(address))
        return false;
    HeldTexture &one = held[address];
    const uint64_t count = in.number(mostCells);
    uint64_t index = 0;
    for (uint64_t k = 0; k < count; ++k) {
        index += in.number(mostCells);
        const uint64_t value = in.number();
        if (!in.good() || index >= textureOrder.size())
            return false;
        if (textureOrder[index] < 0)
            continue;
        const auto ours = size_t(textureOrder[index]);
        storeCell(ours, value, one);
    }
    one.told = true;
    return in.good();
}

bool Player::takeChanges(In &in, std::vector<uint64_t> &to) const
{
    const uint64_t count = in.number(mostCells);
    uint64_t index = 0;
    for (uint64_t k = 0; k < count; ++k) {
        index += in.number(mostCells);
        const int64_t difference = in.difference();
        if (!in.good() || index >= stateOrder.size())
            return false;
        if (stateOrder[index] >= 0)
            to[size_t(stateOrder[index])] += uint64_t(difference);
    }
    return in.good();
}

bool Player::takeDraw(In &in)
{
    current = {};
    current.number = ++drawCount;
    current.frame = frameCount + 1;
    if (in.byte()) {
        const auto code = uint32_t(in.number(UINT32_MAX));
        const int record = layer::recordOf(code);
        current.known = record >= 0;
        if (current.known)
            current.id = layer::Id(record), current.name = layer::nameOf(current.id);
        else
            current.name = "code " + std::to_string(code);
    } else {
        current.name = in.text(longestName);
        for (int k = 0; k < layer::namedDrawCount; ++k)
            if (current.name == layer::functionName(layer::Function(k)))
                current.known = true, current.id = layer::idOf(layer::Function(k));
    }
    current.back = uint32_t(in.number(UINT32_MAX));
    return in.good() && takeChanges(in, cells);
}

bool Player::takeResult(In &in)
{
    Result &result = current.result;
    result.flags = in.byte();
    for (int part = 0; part < 3; ++part)
        if (result.flags >> part & 1)
            result.hash[part] = in.word();
    for (int which = 0; which < 2; ++which) {
        if (!(result.flags & (which == 0 ? resultMulti : resultBlend)))
            continue;
        result.digest[which] = in.word();
        const uint64_t count = in.number(mostWords);
        result.calls[which] = count;
        std::vector<uint32_t> &words = current.words[which];
        while (in.good() && words.size() < count) {
            const Content *const content = reader.content(in.number());
            if (!in.good() || !content || content->bytes.size() % 4 || content->bytes.size() / 4 > count - words.size())
                return false;
            const size_t had = words.size();
            words.resize(had + content->bytes.size() / 4);
            std::memcpy(words.data() + had, content->bytes.data(), content->bytes.size());
        }
    }
    if (!takeChanges(in, current.after))
        return false;
    current.nanoseconds = in.number();
    current.hasResult = true;
    return in.good();
}

bool Player::takeFrame(In &in)
{
    ended = {};
    ended.number = ++frameCount;
    ended.cut = Cut(std::min(in.byte(), uint8_t(Cut::end)));
    ended.pixels = in.number();
    ended.shift = uint32_t(in.number(30));
    ended.width = uint32_t(in.number(UINT32_MAX)), ended.height = uint32_t(in.number(UINT32_MAX));
    layer::Pixels &p = ended.reached;
    p.left = int32_t(in.number(INT32_MAX)), p.top = int32_t(in.number(INT32_MAX));
    p.right = int32_t(in.number(INT32_MAX)), p.bottom = int32_t(in.number(INT32_MAX));
    ended.hash = in.word();
    return in.good();
}

bool Player::refuse(const std::string &words)
{
    why = words;
    return false;
}

// rs as the host had it, with stand-ins for its addresses.
void Player::fill()
{
    const std::span<const Cell> all = stateCells();
    std::memset(static_cast<void *>(&rs), 0, sizeof rs);
    for (size_t k = 0; k < all.size(); ++k) {
        const Cell &cell = all[k];
        auto *const at = reinterpret_cast<unsigned char *>(&rs) + cell.offset;
        if (cell.kind == Cell::Kind::texture) {
            storeTexture(cell, &rs, textureAt(cells[k]));
        } else if (cell.kind == Cell::Kind::operation) {
            PixelOperator function = Library::linked().operators().of(cells[k]);
            if (Operators::isHost(cells[k]))
                function = cell.name == "multiFunc" ? speakMulti : speakBlend;
            std::memcpy(at, &function, sizeof function);
        } else {
            writeCell(cell, &rs, cell.kind == Cell::Kind::address ? standIn(cells[k]) : cells[k]);
        }
    }
}

uint64_t Player::textureField(const Texture *texture, size_t cell) const { return held.at(addresses.at(texture)).cells[cell]; }

// The recorded address that a field of rs, or a map of tex0, has.
uint64_t Player::recordedField(layer::Field field) const
{
    switch (field) {
    case layer::Field::runlengthMap: return textureField(rs.tex0, textureCell("runlengthMap"));
    case layer::Field::zeroPixelMap: return textureField(rs.tex0, textureCell("zeroPixelMap"));
    default: return cells[stateCell(layer::fieldName(field))];
    }
}

// Stand-ins in rs, the textures and the footprint become addresses of our own.
bool Player::map()
{
    if (rs.dstShift > 30)
        return refuse("its frame buffer is too wide");
    asking = this;
    const auto readable = [](const Texture *texture) {
        const auto found = asking->addresses.find(texture);
        return found != asking->addresses.end() && asking->held.at(found->second).told;
    };
    layer::findFootprint(current.id, readable, reach);
    if (current.back && current.back > int64_t{reach.pixels.right} - reach.pixels.left + 128)
        return refuse("it claims to move back further than it can");
    for (const layer::TextureUse &use : reach.textures())
        if (use.fetched && (!readable(use.texture) || !hasSizes(*use.texture) || uintptr_t(use.texture->pixels) % 4))
            return refuse(std::string("the capture lacks the texture of ") + layer::fieldName(use.field));
    // A map may move it back also where the host's did not; whole buffers come at once, so that they need not grow.
    const bool runs = layer::needsOf(current.id).map == ninefold::Map::runs;
    const uint32_t back = runs && !reach.pixels.empty() ? uint32_t(reach.pixels.right - reach.pixels.left) + 128 : 0;
    const auto noMemory = [&] {
        return refuse("it needs more memory than " + std::to_string(Store::usualLimit >> 20) +
                      " MiB, or has addresses out of range");
    };
    const layer::Pixels &p = reach.pixels;
    // So that distances are the same with pointers of any size.
    if (!p.empty() && uint64_t(int64_t{p.bottom} - p.top) << rs.dstShift > Store::usualLimit)
        return noMemory();
    static const size_t pixelsCell = textureCell("pixels"), dstPixels = stateCell("dstPixels");
    const uint64_t area = rs.dstHeight <= largestSide ? uint64_t{rs.dstHeight} << rs.dstShift : 0;
    const auto whole = [&](layer::Field field, uint64_t size) {
        if (const uint64_t begin = recordedField(field); begin && area && area <= mostPixels)
            store.ensure(begin, size);
    };
    uint64_t recorded[std::extent_v<decltype(reach.used)>] = {}; // where each use begins
    for (size_t k = 0; k < reach.memoryCount; ++k) {
        const layer::MemoryUse &use = reach.used[k];
        const bool bytes = use.field == layer::Field::zBuffer || use.field == layer::Field::runlengthMap;
        const bool words = use.field == layer::Field::shaheiPlane || use.field == layer::Field::zeroPixelMap;
        if (!use.begin || uintptr_t(use.begin) % (bytes ? 1 : words ? 2 : 4))
            return refuse(std::string("rs.") + layer::fieldName(use.field) + (use.begin ? " is misaligned" : " is null"));
        if (use.field == layer::Field::dstPixels)
            whole(use.field, 4 * area);
        else if (use.field == layer::Field::zBuffer)
            whole(use.field, area);
        else if (use.field == layer::Field::shaheiPlane)
            whole(use.field, (area + 15) / 16 * 2);
        const uint64_t field = recordedField(use.field);
        recorded[k] = field + uint64_t(intptr_t(uintptr_t(use.begin) - standIn(field)));
        const uint64_t more = use.field == layer::Field::dstPixels ? uint64_t{4} * back
                              : use.field == layer::Field::zBuffer ? back
                                                                   : 0;
        if (more > recorded[k] || !store.ensure(recorded[k] - more, use.size + more))
            return noMemory();
    }
    for (const layer::TextureUse &use : reach.textures())
        if (use.fetched &&
            !store.ensure(textureField(use.texture, pixelsCell), uint64_t{4} * use.texture->width * use.texture->height))
            return noMemory();

    patched.clear();
    const auto patch = [&](const Texture *texture) {
        auto *const record = const_cast<Texture *>(texture);
        if (std::none_of(patched.begin(), patched.end(), [&](const auto &one) { return one.first == record; })) {
            const auto *const bytes = reinterpret_cast<const unsigned char *>(record);
            patched.emplace_back(record, std::vector<unsigned char>(bytes, bytes + sizeof *record));
        }
        return record;
    };
    for (size_t k = 0; k < reach.memoryCount; ++k) {
        layer::MemoryUse &use = reach.used[k];
        const uint8_t *const begin = store.at(recorded[k]);
        const auto ours = [&](auto *&pointer) {
            const auto distance = uintptr_t(pointer) - uintptr_t(use.begin);
            pointer = reinterpret_cast<std::remove_reference_t<decltype(pointer)>>(uintptr_t(begin) + distance);
        };
        switch (use.field) {
        case layer::Field::dstPixels: ours(rs.dstPixels); break;
        case layer::Field::shaheiPlane: ours(rs.shaheiPlane); break;
        case layer::Field::zBuffer: ours(rs.zBuffer); break;
        case layer::Field::lineTable0: ours(rs.lineTable0); break;
        case layer::Field::lineTable1: ours(rs.lineTable1); break;
        case layer::Field::scanShift: ours(rs.scanShift); break;
        case layer::Field::runlengthMap: ours(patch(rs.tex0)->runlengthMap); break;
        case layer::Field::zeroPixelMap: ours(patch(rs.tex0)->zeroPixelMap); break;
        default: break;
        }
        use.begin = begin;
    }
    for (const layer::TextureUse &use : reach.textures())
        if (use.fetched)
            patch(use.texture)->pixels = reinterpret_cast<uint32_t *>(store.at(textureField(use.texture, pixelsCell)));
    const auto drawsTo = [&](const layer::MemoryUse &use) { return use.field == layer::Field::dstPixels; };
    const std::span<const layer::MemoryUse> uses = reach.memory();
    if (rs.frameBuffer && textureField(rs.frameBuffer, pixelsCell) == cells[dstPixels] &&
        std::any_of(uses.begin(), uses.end(), drawsTo))
        patch(rs.frameBuffer)->pixels = rs.dstPixels;
    findRows(reach, current.back, reachRows);
    return true;
}

const std::vector<std::string> &Player::findings() { return rulesMet; }

bool Player::prepare(bool unchecked)
{
    rulesMet.clear();
    patched.clear();
    told = false;
    why.clear();
    if (!current.known)
        return refuse("this library has no such kernel");
    fill();
    if (!map()) {
        finish();
        return false;
    }
    for (size_t k = 0; k < stateCells().size(); ++k)
        if (stateCells()[k].kind == Cell::Kind::operation && cells[k] && !Operators::isHost(cells[k]) &&
            !Library::linked().operators().of(cells[k])) {
            finish();
            return refuse("this library has no operator " + std::to_string(cells[k]));
        }
    call = {};
    call.id = current.id;
    debug::settings().action = unchecked ? NINEFOLD_DEBUG_DRAW : NINEFOLD_DEBUG_SKIP;
    finding.clear();
    told = layer::before(call);
    if (!told) {
        finish();
        return refuse(finding.empty() ? "the rules of the debug twin refuse it" : finding);
    }
    std::memcpy(before, &rs, sizeof before);
    return true;
}

uint64_t Player::make(Library &library)
{
    using Clock = std::chrono::steady_clock;
    std::memcpy(static_cast<void *>(&rs), before, sizeof rs);
    for (int which = 0; which < 2; ++which)
        speakers[which] = {&current.words[which], 0, 0};
    if (reach.pixels.empty()) {
        // It draws nothing, but may look along its tables, which were not recorded: what it left in rs is taken as told.
        for (size_t k = 0; k < stateCells().size(); ++k) {
            const Cell &cell = stateCells()[k];
            if (cell.kind == Cell::Kind::number)
                writeCell(cell, &rs, current.after[k]);
            else if (cell.kind == Cell::Kind::texture)
                storeTexture(cell, &rs, textureAt(current.after[k]));
        }
        return 0;
    }
    const DrawFunc kernel = library.kernel(current.id);
    RenderState &state = library.state();
    if (!library.isLinked()) {
        std::memcpy(static_cast<void *>(&state), &rs, sizeof rs);
        static const size_t multiCell = stateCell("multiFunc"), blendCell = stateCell("blendFunc");
        if (cells[multiCell] && !Operators::isHost(cells[multiCell]))
            state.multiFunc = library.operators().of(cells[multiCell]);
        if (cells[blendCell] && !Operators::isHost(cells[blendCell]))
            state.blendFunc = library.operators().of(cells[blendCell]);
    }
    const Clock::time_point start = Clock::now();
    kernel();
    const Clock::time_point end = Clock::now();
    if (!library.isLinked()) {
        const PixelOperator multi = rs.multiFunc, blend = rs.blendFunc;
        std::memcpy(static_cast<void *>(&rs), &state, sizeof rs);
        rs.multiFunc = multi, rs.blendFunc = blend;
    }
    return uint64_t(std::chrono::duration_cast<std::chrono::nanoseconds>(end - start).count());
}

void Player::finish()
{
    if (told)
        layer::after(call);
    told = false;
    for (const auto &[record, bytes] : patched)
        std::memcpy(static_cast<void *>(record), bytes.data(), bytes.size());
    patched.clear();
}

Result Player::now() const
{
    Result result;
    for (const Rows &one : reachRows) {
        if (!one.written)
            continue;
        const int part = one.field == layer::Field::dstPixels ? 0 : one.field == layer::Field::shaheiPlane ? 1 : 2;
        RowHash hash;
        for (size_t row = 0; row < one.rows; ++row)
            hash.add(reinterpret_cast<const void *>(one.row(row)), one.rowBytes);
        result.hash[part] = hash.value();
        result.flags |= uint8_t(1 << part);
    }
    for (int which = 0; which < 2; ++which)
        result.digest[which] = speakers[which].digest, result.calls[which] = speakers[which].calls;
    return result;
}

std::string Player::compare() const
{
    if (!current.hasResult)
        return "";
    const Result is = now(), &wanted = current.result;
    std::string words;
    const auto say = [&](const std::string &more) { words += (words.empty() ? "" : "; ") + more; };
    constexpr layer::Field fields[] = {layer::Field::dstPixels, layer::Field::shaheiPlane, layer::Field::zBuffer};
    constexpr uint8_t memoryFlags = resultPixels | resultPlane | resultPriorities;
    if ((is.flags & memoryFlags) != (wanted.flags & memoryFlags))
        say("it reaches other memory than it did");
    else
        for (int part = 0; part < 3; ++part)
            if (is.hash[part] != wanted.hash[part])
                say(std::string(partName(fields[part])) + " differs");
    for (int which = 0; which < 2; ++which) {
        const char *const name = which == 0 ? "multiFunc" : "blendFunc";
        if (!(wanted.flags & (which == 0 ? resultMulti : resultBlend)))
            continue;
        if (is.calls[which] != wanted.calls[which])
            say(std::string("rs.") + name + " was called " + std::to_string(is.calls[which]) + " times instead of " +
                std::to_string(wanted.calls[which]));
        else if (is.digest[which] != wanted.digest[which])
            say(std::string("rs.") + name + " was called with other pixels, or in another order");
    }
    const std::span<const Cell> all = stateCells();
    for (size_t k = 0; k < all.size(); ++k) {
        const Cell &cell = all[k];
        uint64_t value = current.after[k];
        if (cell.kind == Cell::Kind::number) {
            value = readCell(cell, &rs);
        } else if (cell.kind == Cell::Kind::texture) {
            const Texture *texture, *first;
            std::memcpy(&texture, reinterpret_cast<const unsigned char *>(&rs) + cell.offset, sizeof texture);
            std::memcpy(&first, before + cell.offset, sizeof first);
            const auto known = addresses.find(texture);
            value = texture == first ? cells[k] : !texture ? 0 : known == addresses.end() ? ~uint64_t{0} : known->second;
        }
        if (value != current.after[k])
            say("rs." + cell.name + " is " + std::to_string(int64_t(value)) + " instead of " +
                std::to_string(int64_t(current.after[k])));
    }
    return words;
}

Bytes Player::save() const
{
    Bytes saved;
    for (const Rows &one : reachRows)
        if (one.written)
            for (size_t row = 0; row < one.rows; ++row) {
                const auto *const from = reinterpret_cast<const uint8_t *>(one.row(row));
                saved.insert(saved.end(), from, from + one.rowBytes);
            }
    return saved;
}

void Player::restore(const Bytes &saved)
{
    const uint8_t *from = saved.data();
    for (const Rows &one : reachRows)
        if (one.written)
            for (size_t row = 0; row < one.rows; ++row, from += one.rowBytes)
                std::memcpy(reinterpret_cast<void *>(one.row(row)), from, one.rowBytes);
}

std::optional<Player::Snapshot> Player::snapshot(const Snapshot *earlier) const
{
    if (hasAhead || !trouble.empty())
        return std::nullopt;
    Snapshot taken;
    taken.place = reader.place();
    taken.memory = store.image(earlier ? &earlier->memory : nullptr);
    taken.cells = drawn ? current.after : cells;
    for (const auto &[address, texture] : held)
        if (texture.told)
            taken.textures[address] = texture.cells;
    taken.draws = drawCount, taken.frames = frameCount, taken.lost = lostCount;
    return taken;
}

bool Player::restore(const Snapshot &snapshot)
{
    if (!reader.go(snapshot.place) || !store.restore(snapshot.memory))
        return false;
    trouble.clear();
    drawn = hasAhead = false;
    current = {};
    cells = snapshot.cells;
    for (auto &[address, texture] : held) {
        const auto then = snapshot.textures.find(address);
        texture.told = then != snapshot.textures.end();
        const std::vector<uint64_t> none(texture.cells.size());
        const std::vector<uint64_t> &values = texture.told ? then->second : none;
        for (size_t k = 0; k < values.size(); ++k)
            if (texture.cells[k] != values[k])
                storeCell(k, values[k], texture);
    }
    drawCount = snapshot.draws, frameCount = snapshot.frames, lostCount = snapshot.lost;
    return true;
}

Player::Picture Player::picture(uint64_t pixels, uint32_t shift, uint32_t width, uint32_t height) const
{
    Picture result;
    if (!width || !height || width > largestSide || height > largestSide || uint64_t{width} * height > mostPixels)
        return result;
    result.width = width, result.height = height;
    result.pixels.resize(size_t{width} * height);
    for (uint64_t y = 0; y < height; ++y)
        store.read(pixels + (y << shift) * 4, uint64_t{width} * 4, reinterpret_cast<uint8_t *>(result.pixels.data() + y * width));
    return result;
}

Player::Picture Player::drawPicture() const
{
    static const size_t pixels = stateCell("dstPixels"), shift = stateCell("dstShift"), pitch = stateCell("dstPitch"),
                        rows = stateCell("dstHeight"), buffer = stateCell("frameBuffer");
    uint32_t width = uint32_t(cells[pitch]), height = uint32_t(cells[rows]);
    if (const auto found = held.find(cells[buffer]); found != held.end() && found->second.told) {
        const Texture &t = *found->second.record;
        width = std::min(width, t.origWidth ? t.origWidth : width);
        height = std::min(height, t.origHeight ? t.origHeight : height);
    }
    return cells[shift] > 30 ? Picture{} : picture(cells[pixels], uint32_t(cells[shift]), width, height);
}

Player::Picture Player::texturePicture(const Texture *texture) const
{
    static const size_t pixels = textureCell("pixels");
    const Texture &t = *texture;
    return t.log2Width > 30
               ? Picture{}
               : picture(textureField(texture, pixels), t.log2Width, t.origWidth ? std::min(t.origWidth, t.width) : t.width,
                         t.origHeight ? std::min(t.origHeight, t.height) : t.height);
}

uint64_t Player::frameHash() const
{
    const layer::Pixels &p = ended.reached;
    RowHash hash;
    if (!p.empty() && uint64_t(p.right - p.left) * uint64_t(p.bottom - p.top) <= mostPixels) {
        Bytes row(size_t(p.right - p.left) * 4);
        for (int64_t y = p.top; y < p.bottom; ++y) {
            store.read(ended.pixels + ((uint64_t(y) << ended.shift) + uint64_t(p.left)) * 4, row.size(), row.data());
            hash.add(row.data(), row.size());
        }
    }
    return hash.value();
}

std::string Player::textureName(uint64_t address) const
{
    if (!address)
        return "null";
    const auto found = held.find(address);
    std::string name = "texture";
    if (const auto label = labelTexts.find(address); label != labelTexts.end())
        name = "\"" + label->second + "\"";
    if (found != held.end() && found->second.told)
        name += " of " + std::to_string(found->second.record->width) + " x " + std::to_string(found->second.record->height);
    char at[32];
    std::snprintf(at, sizeof at, " at 0x%llx", static_cast<unsigned long long>(address));
    return name + at;
}

} // namespace capture
