// What the commands of ninefold-replay share: arguments, messages, progress.
#pragma once

#include "inspect.h"

#include <chrono>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace replay {

// Exit statuses.
enum : int {
    statusGood = 0,
    statusFound = 1, // what was looked for: a difference
    statusUsage = 2,
    statusFile = 3, // a file cannot be read or written, or is damaged
};

struct Option {
    const char *name; // without its dashes
    const char *value; // what it takes, in capitals; null: nothing
    const char *meaning;
};

class Arguments {
public:
    std::vector<std::string> words; // besides options
    bool has(const char *option) const { return options.contains(option); }
    // The option's value, or another.
    std::string text(const char *option, const std::string &otherwise) const;

    std::map<std::string, std::string> options;
};

struct Command {
    const char *name;
    const char *words; // what it takes besides options, as "FILE N"
    const char *summary;
    std::vector<Option> options;
    int (*run)(const Arguments &);
};
std::span<const Command> commands();

// A wrong argument or a file that cannot be used. main() prints it.
struct Failure {
    int status;
    std::string text;
};
[[noreturn]] void fail(int status, const std::string &text);
uint64_t numberOf(const std::string &text, const std::string &what, uint64_t least, uint64_t most); // fails where it is none

// Says on standard error what is wrong with a capture that was read, if anything; the status that follows from it.
int complain(const std::string &path, const capture::Player &player);

// A capture and what draws it.
struct Opened {
    std::string path;
    std::unique_ptr<capture::Reader> reader;
    std::unique_ptr<capture::Player> player;

    explicit Opened(const std::string &wanted);
    int complaint() const { return complain(path, *player); }
    // The same where all was read and no draw has the wanted number. Does not return where nothing else is wrong.
    int complaintOfNone(uint64_t wanted) const;
};

// The library of --lib, or the linked one.
class Drawer {
public:
    explicit Drawer(const Arguments &arguments);
    capture::Library &library() const { return *use; }

private:
    std::unique_ptr<capture::Library> loaded;
    capture::Library *use;
};
extern const Option libraryOption, uncheckedOption, threadsOption;

// A line on standard error that is written over, where that is a terminal.
class Progress {
public:
    Progress(std::string doing, const capture::Reader &from);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    void show(const capture::Player &player);
    void show(const std::string &line);

private:
    std::string what;
    const capture::Reader &reader;
    std::chrono::steady_clock::time_point next;
    bool shows, wrote = false;
};

std::string grouped(uint64_t number); // 1,234,567
std::string counted(uint64_t number, const char *noun); // 1 draw, 1,234 draws

// Makes the directory, and writes a picture into it.
void makeDirectory(const std::string &directory);
void writePicture(const capture::Player::Picture &picture, const std::string &path);

// The state of a draw in words, on standard output. `previous`: cells of rs before the draw before, or empty.
void printState(const capture::Player &player, const std::vector<uint64_t> &previous);

// From the words A..B, or one number for both.
struct Range {
    uint64_t first, last;
    bool holds(uint64_t number) const { return number >= first && number <= last; }
};
Range rangeOf(const std::string &text, const std::string &what);

// Refuses to write a file over the capture that is read.
void keep(const std::string &capture, const std::string &out);

// Draws from now on go to a new capture; endRecording says whether it is whole.
void startRecording(const std::string &path, const capture::Player &player);
void endRecording(const std::string &path);

int runThreads(const Arguments &, bool times); // of verify and time, with --threads
int runInfo(const Arguments &);
int runTrim(const Arguments &);
int runTime(const Arguments &);
int runDiff(const Arguments &);
int runMinimise(const Arguments &);
int runExport(const Arguments &);
int runVerify(const Arguments &);
int runFrames(const Arguments &);
int runDraw(const Arguments &);

} // namespace replay
