// The rules, each once, as data: what is told, how grave it is, for which kernels it is asked, when it holds, what follows from
// it, and what to do.
#pragma once

#include "footprint.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace debug {

// What was found, in words.
class Text {
public:
    std::string words;
    // Returns true, for conditions to end with.
    [[gnu::format(printf, 2, 3)]] bool say(const char *format, ...);
};

enum class State : uint8_t { good, null, deleted, unreadable, sizes, pixels };

// A draw that is about to be made. rs is what it will be made from.
struct Draw {
    layer::Id id;
    const layer::Needs &needs;
    const layer::Footprint &reach;
    State state[std::size(layer::Footprint{}.texture)]; // of each texture of the footprint
    uint32_t states; // bits of those that occur

    Draw(layer::Id wanted, const layer::Footprint &footprint);
    bool has(State s) const { return states >> int(s) & 1; }
    bool anything() const { return !reach.pixels.empty(); }
};

// What a rule is asked about, beside draws.
struct Rule {
    uint16_t number;
    const char *name;
    int severity;
    const char *scope; // which kernels or functions, in words
    bool (*applies)(const layer::Needs &); // null: not asked before draws, but told where a function is called
    bool (*breaks)(const Draw &, Text &);
    const char *when; // the condition, in words
    const char *effect; // what follows
    const char *advice;
};

extern const std::span<const Rule> rules;
constexpr size_t ruleLimit = 64;

// The index of a rule.
size_t ruleNamed(std::string_view name);

// Bit k: rule k is asked before this draws.
uint64_t rulesFor(layer::Id id);

// The state of a texture and its pixels, or of its record alone.
State stateOf(const Texture *texture, bool withPixels);
bool canLookAt(const Texture *texture);

} // namespace debug
