// The capture file: a header, then chunks of events. docs/capture-format.md describes it for readers in other languages; numbers
// here are part of the format.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace capture {

using Bytes = std::vector<uint8_t>;

constexpr uint8_t magic[8] = {0x89, 'N', 'F', 'C', '\r', '\n', 0x1A, '\n'};
constexpr uint32_t formatVersion = 1;

// Limits. A reader refuses what goes beyond before it takes memory for it.
constexpr size_t chunkLimit = size_t{1} << 25; // bytes of a chunk's events, and as they are stored
constexpr size_t contentLimit = size_t{1} << 24; // bytes of one content
// A content may be referred to until more than so many bytes of others came behind it: writer and reader forget it then.
constexpr uint64_t contentWindow = uint64_t{1} << 28;

enum class EventType : uint8_t {
    cells = 1, // names of the cells that states and textures are told by
    note, // about the file: key and value
    label, // the host's name for a texture or memory
    content, // bytes that later events refer to by number
    memory, // a content goes to an address
    texture, // cells of a texture's record
    draw, // cells of rs, and what is called
    result, // of the draw before
    frame, // the end of a frame
    end, // of the capture: it is whole
    lost // a draw that could not be recorded
};

// Why a frame ended.
enum class Cut : uint8_t { buffer, mark, pause, end };
const char *cutName(Cut cut);

// How the bytes of a content are stored.
enum class Encoding : uint8_t { plain, picture };

// Bits of a result.
enum : uint8_t { resultPixels = 1, resultPlane = 2, resultPriorities = 4, resultMulti = 8, resultBlend = 16 };

uint64_t hashOf(const void *bytes, size_t size);

// Of rows of bytes, as if they lay one behind the other.
class RowHash {
public:
    RowHash();
    ~RowHash();
    RowHash(const RowHash &) = delete;
    RowHash &operator=(const RowHash &) = delete;
    void add(const void *bytes, size_t size);
    uint64_t value() const;

private:
    struct State;
    std::unique_ptr<State> state;
};

// One call of an operator taken into the digest of those before it; 0 at first.
inline uint64_t digestCall(uint64_t digest, uint32_t first, uint32_t second)
{
    digest = (digest ^ (uint64_t{first} << 32 | second)) * 0x9E3779B97F4A7C15u;
    return digest ^ digest >> 29;
}

// Writes the payload of an event.
class Out {
public:
    Bytes bytes;
    void byte(uint8_t value) { bytes.push_back(value); }
    void number(uint64_t value); // seven bits a byte, lowest first
    void difference(int64_t value); // 0, -1, 1, -2, ... as 0, 1, 2, 3, ...
    void word(uint64_t value); // eight bytes
    void text(std::string_view value);
};

// Reads one. Past its end, or where a value makes no sense, it turns bad and gives zeros.
class In {
public:
    explicit In(std::span<const uint8_t> from) : rest(from) {}
    uint8_t byte();
    uint64_t number();
    uint64_t number(uint64_t limit); // bad above it
    int64_t difference();
    uint64_t word();
    std::string text(size_t limit);
    std::span<const uint8_t> remaining() const { return rest; }
    bool good() const { return isGood; }
    void fail() { isGood = false, rest = {}; }

private:
    std::span<const uint8_t> rest;
    bool isGood = true;
};

// A content in memory: rows without gaps.
struct Content {
    uint32_t rowBytes = 0, rows = 0;
    Bytes bytes;
};

class Writer {
public:
    // Null, and why, where the file cannot be written.
    static std::unique_ptr<Writer> create(const std::string &path, int level, std::string &error);
    ~Writer();
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    void event(EventType type, const Out &payload);
    // The number of a content of rows without gaps, which is written unless it is still there. `picture`: words of pixels.
    uint64_t content(uint32_t rowBytes, uint32_t rows, const uint8_t *bytes, bool picture);
    void flush(); // what is there becomes a chunk
    void close(); // flushes; the file is closed
    bool good() const { return !failed; } // false after an error of the file system
    uint64_t written() const { return bytesWritten; }

private:
    Writer() = default;
    void put(const void *bytes, size_t size);
    void forget();
    size_t packedSize(std::span<const uint8_t> bytes); // quickly

    std::FILE *file = nullptr;
    bool failed = false;
    int zstdLevel = 0;
    void *zstd = nullptr;
    Bytes pending, packed;
    uint64_t bytesWritten = 0;
    // Contents within the window, by hash and size.
    struct Key {
        uint64_t low, high;
        uint32_t rowBytes, rows;
        bool operator==(const Key &) const = default;
    };
    struct KeyHash {
        size_t operator()(const Key &key) const { return size_t(key.low); }
    };
    std::unordered_map<Key, uint64_t, KeyHash> numbers;
    std::deque<std::pair<Key, uint64_t>> order; // with its size in bytes
    uint64_t firstKept = 0, kept = 0; // the number of order's first; bytes in it
};

// A whole file of events, uncompressed.
Bytes fileOf(std::span<const uint8_t> events);

struct Event {
    EventType type{};
    std::span<const uint8_t> payload; // until the next event is read
};

class Reader {
public:
    // Null, and why, where the file cannot be opened or is none.
    static std::unique_ptr<Reader> open(const std::string &path, std::string &error);
    // Bytes in memory, which must live as long as the reader.
    static std::unique_ptr<Reader> open(std::span<const uint8_t> bytes, std::string &error);
    ~Reader();
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;

    // False at the end, or where the file is damaged. Contents are taken in on the way and not told.
    bool next(Event &event);
    // Null where there is none of that number, or none any more.
    const Content *content(uint64_t number) const;

    bool whole() const { return sawEnd; } // the end was read
    // What is wrong with the file; empty while nothing is.
    const std::string &problem() const { return trouble; }
    uint64_t position() const { return at; } // bytes read
    uint64_t size() const { return fileSize; } // of the file, 0 where it is not known
    const std::vector<uint64_t> &chunkStarts() const { return starts; }

    // Where the next event is read, to go back to.
    struct Place {
        uint64_t chunk, contents, firstKept;
        size_t cursor;
        bool sawEnd;
    };
    Place place() const;
    // False where contents are forgotten that were kept then, the reader was never there, or the file cannot be read; only a new
    // reader helps.
    bool go(const Place &to);

private:
    Reader() = default;
    bool begin(std::string &error);
    bool get(void *to, size_t count);
    bool readChunk();
    bool takeContent(std::span<const uint8_t> payload);
    bool broken(const std::string &what);

    std::FILE *file = nullptr;
    std::span<const uint8_t> memory;
    uint64_t at = 0, fileSize = 0, chunk = 0, chunkEnd = 0; // of the chunk in `events`
    Bytes packed, events;
    size_t cursor = 0;
    bool sawEnd = false, stopped = false;
    std::string trouble;
    std::vector<uint64_t> starts;
    std::deque<Content> contents;
    uint64_t firstKept = 0, kept = 0;
    uint64_t passed = 0; // contents before the place; after a step back those behind it are still kept
};

// The picture encoding: planes of green, red less green, blue less green and alpha, each row with the filter that leaves least.
// rowBytes is a multiple of 4.
void encodePicture(uint32_t rowBytes, uint32_t rows, const uint8_t *from, Bytes &to);
size_t encodedPictureSize(uint32_t rowBytes, uint32_t rows);
bool decodePicture(uint32_t rowBytes, uint32_t rows, std::span<const uint8_t> from, Bytes &to);

} // namespace capture
