#include "command.h"

#include "recording.h"

#include <ninefold/kit.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#ifdef _WIN32
#include <io.h>
#define isatty _isatty
#define fileno _fileno
#else
#include <unistd.h>
#endif

namespace replay {

using namespace capture;

const Option libraryOption = {"lib", "PATH", "draw with the library in this file instead of the one built in"};
const Option uncheckedOption = {"unchecked", nullptr,
                                "draw also what the debug twin's rules call undefined: only captures that you trust"};

std::string Arguments::text(const char *option, const std::string &otherwise) const
{
    const auto found = options.find(option);
    return found == options.end() ? otherwise : found->second;
}

void fail(int status, const std::string &text) { throw Failure{status, text}; }

uint64_t numberOf(const std::string &text, const std::string &what, uint64_t least, uint64_t most)
{
    char *end;
    errno = 0;
    const unsigned long long number = std::strtoull(text.c_str(), &end, 10);
    if (text.empty() || text[0] == '-' || *end || errno || number < least || number > most)
        fail(statusUsage,
             what + " is '" + text + "'; it is a number from " + std::to_string(least) + " to " + std::to_string(most));
    return number;
}

Opened::Opened(const std::string &wanted) : path(wanted)
{
    std::string error;
    reader = Reader::open(path, error);
    if (!reader)
        fail(statusFile, error);
    player = std::make_unique<Player>(*reader);
}

int complain(const std::string &path, const Player &player)
{
    if (player.lost())
        std::fprintf(stderr, "ninefold-replay: %s: %s could not be recorded, because memory that was needed was missing\n",
                     path.c_str(), counted(player.lost(), "draw").c_str());
    if (player.problem().empty())
        return statusGood;
    std::fprintf(stderr, "ninefold-replay: %s: %s; it goes up to draw %s of frame %s\n", path.c_str(), player.problem().c_str(),
                 grouped(player.draws()).c_str(), grouped(player.frames() + 1).c_str());
    return statusFile;
}

int Opened::complaintOfNone(uint64_t wanted) const
{
    const int status = complaint();
    if (status == statusGood)
        fail(statusUsage, path + " has " + counted(player->draws(), "draw") + ", none of number " + std::to_string(wanted));
    return status;
}

Drawer::Drawer(const Arguments &arguments) : use(&Library::linked())
{
    if (!arguments.has("lib"))
        return;
    std::string error;
    loaded = Library::load(arguments.text("lib", ""), error);
    if (!loaded)
        fail(statusFile, error);
    use = loaded.get();
}

Progress::Progress(std::string doing, const Reader &from)
    : what(std::move(doing)), reader(from), next(std::chrono::steady_clock::now() + std::chrono::milliseconds(500)),
      shows(isatty(fileno(stderr)) != 0)
{}
Progress::~Progress()
{
    if (wrote)
        std::fputs("\r\33[K", stderr);
}
void Progress::show(const Player &player)
{
    if (shows && std::chrono::steady_clock::now() >= next)
        show(what + ": draw " + grouped(player.draws()) + ", " +
             std::to_string(reader.size() ? 100 * reader.position() / reader.size() : 0) + " %");
}
void Progress::show(const std::string &line)
{
    if (!shows || std::chrono::steady_clock::now() < next)
        return;
    next = std::chrono::steady_clock::now() + std::chrono::milliseconds(200);
    wrote = true;
    std::fprintf(stderr, "\r%s\33[K", line.c_str());
}

std::string grouped(uint64_t number)
{
    std::string text = std::to_string(number);
    for (size_t at = text.size(); at > 3;)
        text.insert(at -= 3, ",");
    return text;
}

std::string counted(uint64_t number, const char *noun) { return grouped(number) + " " + noun + (number == 1 ? "" : "s"); }

Range rangeOf(const std::string &text, const std::string &what)
{
    const size_t dots = text.find("..");
    if (dots == std::string::npos) {
        const uint64_t number = numberOf(text, what, 1, UINT64_MAX);
        return {number, number};
    }
    const Range range{numberOf(text.substr(0, dots), "the first of " + what, 1, UINT64_MAX),
                      numberOf(text.substr(dots + 2), "the last of " + what, 1, UINT64_MAX)};
    if (range.last < range.first)
        fail(statusUsage, what + " " + text + " ends before it begins");
    return range;
}

void keep(const std::string &capture, const std::string &out)
{
    std::error_code error;
    if (std::filesystem::equivalent(capture, out, error))
        fail(statusUsage, out + " is the capture itself, which would be lost; name another file");
}

void startRecording(const std::string &path, const Player &player)
{
    if (!recordTo(path, player))
        fail(statusFile, "cannot write " + path);
}

void endRecording(const std::string &path)
{
    if (!debug::stopRecording())
        fail(statusFile, "cannot write all of " + path);
}

void makeDirectory(const std::string &directory)
{
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error)
        fail(statusFile, "cannot make the directory " + directory + ": " + error.message());
}

void writePicture(const Player::Picture &picture, const std::string &path)
{
    // The twin is not told of it.
    Texture *const texture = own_CreateTexture(picture.width, picture.height);
    const bool there = texture->pixels;
    for (uint32_t y = 0; there && y < picture.height; ++y)
        std::memcpy(texture->pixels + (size_t{y} << texture->log2Width), picture.pixels.data() + size_t{y} * picture.width,
                    size_t{4} * picture.width);
    const bool done = there && nfkSavePicture(texture, path.c_str(), 0);
    own_DeleteTexture(texture);
    if (!done)
        fail(statusFile, there ? nfkError() : "no memory for " + path);
}

void printState(const Player &player, const std::vector<uint64_t> &previous)
{
    std::printf("%s\n%s", drawLabel(player.draw()).c_str(), codeInWords(player.draw()).c_str());
    std::printf("\nrs, where it is not 0; * marks what is new since the draw before:\n");
    for (const CellInWords &one : stateInWords(player, previous))
        if (one.value || one.isNew)
            std::printf("  %c %-18s %s\n", one.isNew ? '*' : ' ', stateCells()[one.cell].name.c_str(), one.text.c_str());
}

} // namespace replay
