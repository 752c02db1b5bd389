#include "format.h"

#define XXH_INLINE_ALL
#include <xxhash.h>
#include <zstd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace capture {
namespace {

constexpr size_t headerSize = sizeof magic + 4;
constexpr size_t chunkHeaderSize = 4 + 4 + 4 + 8; // type, size as stored, size of the events, hash of what is stored
constexpr char eventChunk[4] = {'E', 'V', 'N', 'T'};
constexpr size_t chunkTarget = size_t{1} << 20; // a chunk is written when it has so many bytes

void store32(uint8_t *to, uint32_t value)
{
    for (int k = 0; k < 4; ++k)
        to[k] = uint8_t(value >> (8 * k));
}
void store64(uint8_t *to, uint64_t value)
{
    for (int k = 0; k < 8; ++k)
        to[k] = uint8_t(value >> (8 * k));
}
uint32_t load32(const uint8_t *from)
{
    return uint32_t(from[0]) | uint32_t(from[1]) << 8 | uint32_t(from[2]) << 16 | uint32_t(from[3]) << 24;
}
uint64_t load64(const uint8_t *from) { return load32(from) | uint64_t{load32(from + 4)} << 32; }

} // namespace

namespace {

// Of a chunk's type, sizes and bytes.
uint64_t chunkHash(const uint8_t *header, std::span<const uint8_t> stored)
{
    RowHash hash;
    hash.add(header, 12);
    hash.add(stored.data(), stored.size());
    return hash.value();
}

} // namespace

const char *cutName(Cut cut)
{
    static constexpr const char *names[] = {"SetFrameBuffer", "mark", "pause", "end"};
    return names[size_t(cut)];
}

uint64_t hashOf(const void *bytes, size_t size) { return XXH3_64bits(bytes, size); }

struct RowHash::State {
    XXH3_state_t xxh;
};
RowHash::RowHash() : state(std::make_unique<State>()) { XXH3_64bits_reset(&state->xxh); }
RowHash::~RowHash() = default;
void RowHash::add(const void *bytes, size_t size) { XXH3_64bits_update(&state->xxh, bytes, size); }
uint64_t RowHash::value() const { return XXH3_64bits_digest(&state->xxh); }

void Out::number(uint64_t value)
{
    for (; value >= 0x80; value >>= 7)
        byte(uint8_t(value | 0x80));
    byte(uint8_t(value));
}
void Out::difference(int64_t value) { number(uint64_t(value) << 1 ^ uint64_t(value >> 63)); }
void Out::word(uint64_t value)
{
    bytes.resize(bytes.size() + 8);
    store64(bytes.data() + bytes.size() - 8, value);
}
void Out::text(std::string_view value)
{
    number(value.size());
    bytes.insert(bytes.end(), value.begin(), value.end());
}

uint8_t In::byte()
{
    if (rest.empty())
        return fail(), uint8_t{0};
    const uint8_t value = rest[0];
    rest = rest.subspan(1);
    return value;
}
uint64_t In::number()
{
    uint64_t value = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
        const uint8_t part = byte();
        if (shift == 63 && part > 1)
            break;
        value |= uint64_t(part & 0x7F) << shift;
        if (!(part & 0x80))
            return value;
    }
    return fail(), 0;
}
uint64_t In::number(uint64_t limit)
{
    const uint64_t value = number();
    return value > limit ? (fail(), 0) : value;
}
int64_t In::difference()
{
    const uint64_t value = number();
    return int64_t(value >> 1 ^ (~(value & 1) + 1));
}
uint64_t In::word()
{
    if (rest.size() < 8)
        return fail(), 0;
    const uint64_t value = load64(rest.data());
    rest = rest.subspan(8);
    return value;
}
std::string In::text(size_t limit)
{
    const uint64_t size = number(limit);
    if (size > rest.size())
        return fail(), "";
    const auto *const begin = reinterpret_cast<const char *>(rest.data());
    std::string value(begin, begin + size);
    rest = rest.subspan(size_t(size));
    return value;
}

std::unique_ptr<Writer> Writer::create(const std::string &path, int level, std::string &error)
{
    std::unique_ptr<Writer> writer(new Writer);
    writer->file = std::fopen(path.c_str(), "wb");
    if (!writer->file) {
        error = "cannot write " + path + ": " + std::strerror(errno);
        return nullptr;
    }
    writer->zstdLevel = level;
    writer->zstd = ZSTD_createCCtx();
    uint8_t header[headerSize];
    std::memcpy(header, magic, sizeof magic);
    store32(header + sizeof magic, formatVersion);
    writer->put(header, sizeof header);
    return writer;
}

Writer::~Writer()
{
    close();
    ZSTD_freeCCtx(static_cast<ZSTD_CCtx *>(zstd));
}

void Writer::put(const void *bytes, size_t size)
{
    if (!failed && std::fwrite(bytes, 1, size, file) != size)
        failed = true;
    bytesWritten += size;
}

void Writer::event(EventType type, const Out &payload)
{
    Out head;
    head.byte(uint8_t(type));
    head.number(payload.bytes.size());
    if (pending.size() + head.bytes.size() + payload.bytes.size() > chunkLimit)
        flush();
    pending.insert(pending.end(), head.bytes.begin(), head.bytes.end());
    pending.insert(pending.end(), payload.bytes.begin(), payload.bytes.end());
    if (pending.size() >= chunkTarget)
        flush();
}

size_t Writer::packedSize(std::span<const uint8_t> bytes)
{
    packed.resize(ZSTD_compressBound(bytes.size()));
    const size_t size =
        ZSTD_compressCCtx(static_cast<ZSTD_CCtx *>(zstd), packed.data(), packed.size(), bytes.data(), bytes.size(), 1);
    return ZSTD_isError(size) ? SIZE_MAX : size;
}

uint64_t Writer::content(uint32_t rowBytes, uint32_t rows, const uint8_t *bytes, bool picture)
{
    const size_t size = size_t{rowBytes} * rows;
    const XXH128_hash_t hash = XXH3_128bits(bytes, size);
    const Key key{hash.low64, hash.high64, rowBytes, rows};
    if (const auto known = numbers.find(key); known != numbers.end())
        return known->second;

    Out out;
    Bytes filtered;
    bool filters = picture && rowBytes % 4 == 0 && size >= 256 && encodedPictureSize(rowBytes, rows) < chunkLimit / 2;
    if (filters) {
        encodePicture(rowBytes, rows, bytes, filtered);
        filters = packedSize(filtered) < packedSize({bytes, size});
    }
    out.byte(uint8_t(filters ? Encoding::picture : Encoding::plain));
    out.number(rowBytes), out.number(rows);
    if (filters)
        out.bytes.insert(out.bytes.end(), filtered.begin(), filtered.end());
    else
        out.bytes.insert(out.bytes.end(), bytes, bytes + size);
    event(EventType::content, out);

    const uint64_t number = firstKept + order.size();
    order.emplace_back(key, size);
    numbers.emplace(key, number);
    kept += size;
    forget();
    return number;
}

void Writer::forget()
{
    while (kept - order.front().second > contentWindow) {
        kept -= order.front().second;
        numbers.erase(order.front().first);
        order.pop_front();
        ++firstKept;
    }
}

Bytes fileOf(std::span<const uint8_t> events)
{
    Bytes file(headerSize + chunkHeaderSize);
    std::memcpy(file.data(), magic, sizeof magic);
    store32(file.data() + sizeof magic, formatVersion);
    uint8_t *const header = file.data() + headerSize;
    std::memcpy(header, eventChunk, 4);
    store32(header + 4, uint32_t(events.size()));
    store32(header + 8, uint32_t(events.size()));
    store64(header + 12, chunkHash(header, events));
    file.insert(file.end(), events.begin(), events.end());
    return file;
}

void Writer::flush()
{
    if (pending.empty())
        return;
    packed.resize(ZSTD_compressBound(pending.size()));
    const size_t size = ZSTD_compressCCtx(static_cast<ZSTD_CCtx *>(zstd), packed.data(), packed.size(), pending.data(),
                                          pending.size(), zstdLevel);
    const bool packs = !ZSTD_isError(size) && size < pending.size();
    const uint8_t *const stored = packs ? packed.data() : pending.data();
    const size_t storedSize = packs ? size : pending.size();
    uint8_t header[chunkHeaderSize];
    std::memcpy(header, eventChunk, 4);
    store32(header + 4, uint32_t(storedSize));
    store32(header + 8, uint32_t(pending.size()));
    store64(header + 12, chunkHash(header, {stored, storedSize}));
    put(header, sizeof header);
    put(stored, storedSize);
    if (!failed && std::fflush(file) != 0)
        failed = true;
    pending.clear();
}

void Writer::close()
{
    if (!file)
        return;
    flush();
    if (std::fclose(file) != 0)
        failed = true;
    file = nullptr;
}

std::unique_ptr<Reader> Reader::open(const std::string &path, std::string &error)
{
    std::unique_ptr<Reader> reader(new Reader);
    reader->file = std::fopen(path.c_str(), "rb");
    if (!reader->file) {
        error = "cannot read " + path + ": " + std::strerror(errno);
        return nullptr;
    }
    if (std::fseek(reader->file, 0, SEEK_END) == 0) {
        const long end = std::ftell(reader->file);
        reader->fileSize = end > 0 ? uint64_t(end) : 0;
        std::rewind(reader->file);
    }
    if (reader->begin(error))
        return reader;
    error = path + ": " + error;
    return nullptr;
}

std::unique_ptr<Reader> Reader::open(std::span<const uint8_t> bytes, std::string &error)
{
    std::unique_ptr<Reader> reader(new Reader);
    reader->memory = bytes;
    reader->fileSize = bytes.size();
    return reader->begin(error) ? std::move(reader) : nullptr;
}

Reader::~Reader()
{
    if (file)
        std::fclose(file);
}

bool Reader::get(void *to, size_t count)
{
    size_t had = 0;
    if (file) {
        had = std::fread(to, 1, count, file);
    } else {
        had = std::min<uint64_t>(count, memory.size() - at);
        std::memcpy(to, memory.data() + at, had);
    }
    at += had;
    return had == count;
}

bool Reader::begin(std::string &error)
{
    uint8_t header[headerSize];
    if (!get(header, sizeof header) || std::memcmp(header, magic, sizeof magic) != 0) {
        error = "no capture file";
        return false;
    }
    const uint32_t version = load32(header + sizeof magic);
    if (version == 0 || version > formatVersion) {
        error = "a capture of version " + std::to_string(version) + "; this program reads versions up to " +
                std::to_string(formatVersion);
        return false;
    }
    return true;
}

bool Reader::broken(const std::string &what)
{
    trouble = what;
    stopped = true;
    return false;
}

bool Reader::readChunk()
{
    const uint64_t start = at;
    const std::string where = " at byte " + std::to_string(start);
    uint8_t header[chunkHeaderSize];
    if (!get(header, sizeof header))
        return at == start ? (stopped = true, false) : broken("the file ends inside the chunk" + where);
    const uint32_t stored = load32(header + 4), size = load32(header + 8);
    if (stored > chunkLimit || size > chunkLimit)
        return broken("the chunk" + where + " is larger than a chunk may be");
    if (fileSize && stored > fileSize - at)
        return broken("the file ends inside the chunk" + where);
    packed.resize(stored);
    if (!get(packed.data(), stored))
        return broken("the file ends inside the chunk" + where);
    if (chunkHash(header, packed) != load64(header + 12))
        return broken("the chunk" + where + " is damaged");
    chunk = start, chunkEnd = at;
    if (starts.empty() || start > starts.back())
        starts.push_back(start);
    events.clear();
    cursor = 0;
    if (std::memcmp(header, eventChunk, 4) != 0) // of a later version
        return true;
    if (stored == size) {
        events.swap(packed);
        return true;
    }
    events.resize(size);
    const size_t had = ZSTD_decompress(events.data(), size, packed.data(), stored);
    return !ZSTD_isError(had) && had == size ? true : broken("the chunk" + where + " is damaged");
}

bool Reader::next(Event &event)
{
    for (;;) {
        while (!stopped && cursor == events.size())
            if (!readChunk())
                break;
        if (stopped) {
            if (!sawEnd && trouble.empty())
                trouble = "the file ends before the capture does";
            return false;
        }
        In in(std::span<const uint8_t>(events).subspan(cursor));
        const auto type = EventType(in.byte());
        const uint64_t size = in.number();
        if (!in.good() || size > in.remaining().size())
            return broken("an event before byte " + std::to_string(at) + " is longer than its chunk");
        const std::span<const uint8_t> payload = in.remaining().first(size_t(size));
        cursor = size_t(payload.data() + payload.size() - events.data());
        if (type == EventType::content) {
            if (!takeContent(payload))
                return broken("a content before byte " + std::to_string(at) + " makes no sense");
            continue;
        }
        if (type == EventType::end)
            sawEnd = true;
        event = {type, payload};
        return true;
    }
}

Reader::Place Reader::place() const { return {chunk, passed, firstKept, cursor, sawEnd}; }

bool Reader::go(const Place &to)
{
    if (to.firstKept < firstKept || to.contents > firstKept + contents.size())
        return false;
    stopped = false;
    trouble.clear();
    const bool other = to.chunk != chunk;
    at = !to.chunk ? headerSize : other ? to.chunk : chunkEnd;
    if (file && std::fseek(file, long(at), SEEK_SET) != 0)
        return false;
    if (other) {
        events.clear();
        chunk = 0;
        if (to.chunk && !readChunk())
            return false;
    }
    cursor = to.cursor, sawEnd = to.sawEnd, passed = to.contents;
    return true;
}

bool Reader::takeContent(std::span<const uint8_t> payload)
{
    if (passed++ < firstKept + contents.size())
        return true; // read before
    In in(payload);
    const uint8_t encoding = in.byte();
    Content content;
    content.rowBytes = uint32_t(in.number(contentLimit));
    content.rows = uint32_t(in.number(contentLimit));
    const uint64_t size = uint64_t{content.rowBytes} * content.rows;
    if (!in.good() || size == 0 || size > contentLimit)
        return false;
    if (encoding == uint8_t(Encoding::picture)) {
        if (!decodePicture(content.rowBytes, content.rows, in.remaining(), content.bytes))
            return false;
    } else {
        if (encoding != uint8_t(Encoding::plain) || in.remaining().size() != size)
            return false;
        content.bytes.assign(in.remaining().begin(), in.remaining().end());
    }
    kept += size;
    contents.push_back(std::move(content));
    while (kept - contents.front().bytes.size() > contentWindow) {
        kept -= contents.front().bytes.size();
        contents.pop_front();
        ++firstKept;
    }
    return true;
}

const Content *Reader::content(uint64_t number) const
{
    return number < firstKept || number - firstKept >= contents.size() ? nullptr : &contents[size_t(number - firstKept)];
}

} // namespace capture
