#include "captures.h"

#include "report.h"
#include "tape.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using namespace capture;

class Taped : public Draws {
public:
    Taped(std::unique_ptr<Tape> of, std::unique_ptr<Library> by) : tape(std::move(of)), library(std::move(by)) {}
    uint64_t draws() const override { return tape->draws(); }
    uint64_t refused() const override { return tape->refused(); }
    uint64_t frames() const override { return tape->frames(); }
    const char *refusal() const override { return tape->refusal().c_str(); }
    double play(void (*flush)(), double (*clock)()) override
    {
        tape->play(*library, flush, clock, frameSeconds);
        double sum = 0;
        for (const double each : frameSeconds)
            sum += each;
        return sum;
    }
    const char *verify(void (*flush)()) override
    {
        words = tape->difference().empty() ? tape->verify(*library, flush) : tape->difference();
        return words.c_str();
    }

private:
    std::unique_ptr<Tape> tape;
    std::unique_ptr<Library> library;
    std::vector<double> frameSeconds;
    std::string words;
};

} // namespace

extern "C" NINEFOLD_API Draws *ninefoldOpenDraws(const char *path, const Host *host, char *error, size_t size)
{
    unsetenv("NINEFOLD_DEBUG"); // what is set for the program is not meant for the rules that stand before draws here
    debug::settings().summary = false;
    constexpr size_t namedCount = layer::namedDrawCount;
    std::string words;
    std::unique_ptr<Tape> tape = Tape::read(path, false, nullptr, words);
    if (tape && tape->draws() == 0) {
        words = std::string(path) + " has no draw that can be made";
        for (const std::string &why : {tape->refusal(), tape->player().problem()})
            words += why.empty() ? "" : ": " + why;
        tape.reset();
    }
    if (!tape) {
        std::snprintf(error, size, "%s", words.c_str());
        return nullptr;
    }
    return new Taped(std::move(tape), Library::of({host->state, host->search, host->blend, host->multi, host->bank,
                                                   std::vector<DrawFunc>(host->named, host->named + namedCount)}));
}
