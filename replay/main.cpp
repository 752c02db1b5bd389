// ninefold-replay: draws captures again.
#include "command.h"

#include "report.h"

#include <ninefold/ninefold.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace replay {
namespace {

constexpr Option helpOption = {"help", nullptr, "this help"};

const Command all[] = {
    {"info", "FILE", "what is in a capture: frames, draws by kernel with their pixels and times, textures", {}, runInfo},
    {"verify",
     "FILE",
     "draws it again and tells the first draw whose result is not the recorded one",
     {libraryOption,
      {"sets", nullptr, "draw with each instruction set that this machine runs, one after the other"},
      threadsOption,
      uncheckedOption},
     runVerify},
    {"frames",
     "FILE",
     "draws it again and writes the frame buffer at the end of each frame",
     {{"png", "DIR", "where frame-0001.png and its like go (.)"},
      {"frames", "A..B", "these frames alone"},
      libraryOption,
      uncheckedOption},
     runFrames},
    {"draw",
     "FILE N",
     "one draw: its state in words, the frame buffer before and after",
     {{"png", "DIR", "write before, after, difference, planes and the frame's overdraw up to there as pictures"},
      libraryOption,
      uncheckedOption},
     runDraw},
    {"time",
     "FILE",
     "the time of each draw and kernel, and the twenty slowest",
     {{"repeat", "N", "make each draw N times and take the shortest (5)"},
      {"html", "PAGE", "write a page with the same and a timeline of each frame (of the 40 slowest), too"},
      libraryOption,
      threadsOption,
      uncheckedOption},
     runTime},
    {"diff", "FILE OTHER", "the first draw where two captures part", {}, runDiff},
    {"trim",
     "FILE OUT",
     "writes a capture of some frames or draws alone",
     {{"frames", "A..B", "these frames"}, {"draws", "A..B", "these draws, counted over the whole capture"}, uncheckedOption},
     runTrim},
    {"minimise",
     "FILE OUT",
     "writes the smallest capture of a draw that another build draws otherwise or crashes in, or that breaks a rule",
     {{"lib", "PATH", "the other build"}, {"twin", "RULE", "the rule of the debug twin, by name or as NF-0107"}},
     runMinimise},
    {"export",
     "FILE N",
     "writes a C program that makes one draw and compares the result",
     {{"out", "PATH", "where it goes (draw-N.c)"}, uncheckedOption},
     runExport},
};

void printHelp()
{
    std::fputs("usage: ninefold-replay COMMAND FILE [ARGUMENT]... [--OPTION [VALUE] | --OPTION=VALUE]...\n"
               "Draws a capture again, which ninefold-debug --capture FILE PROGRAM recorded.\n\n",
               stdout);
    for (const Command &command : all)
        std::printf("  %-9s %s\n", command.name, command.summary);
    std::puts("\n  --help     print this; after a COMMAND, more about it\n"
              "  --version  print the version\n\n"
              "ninefold-replay FILE alone is info.\n"
              "Exit status: 0; 1 where what was looked for is found, a difference; 2 for wrong arguments; 3 for files that\n"
              "cannot be read or written, or are damaged.");
}

void printHelp(const Command &command)
{
    std::printf("usage: ninefold-replay %s %s%s\n%c%s.\n\n", command.name, command.words,
                command.options.empty() ? "" : " [--OPTION [VALUE] | --OPTION=VALUE]...", std::toupper(command.summary[0]),
                command.summary + 1);
    const auto print = [](const Option &option) {
        const std::string name = std::string(option.name) + (option.value ? std::string(" ") + option.value : "");
        std::printf("  --%-16s %s\n", name.c_str(), option.meaning);
    };
    for (const Option &option : command.options)
        print(option);
    print(helpOption);
}

const Command *find(const std::string &name)
{
    for (const Command &command : all)
        if (name == command.name)
            return &command;
    return nullptr;
}

size_t wordCount(const char *words) { return size_t(1 + std::count(words, words + std::strlen(words), ' ')); }

int run(std::vector<std::string> words)
{
    if (words.empty()) {
        printHelp();
        return statusUsage;
    }
    if (words[0] == "--help")
        return printHelp(), statusGood;
    if (words[0] == "--version") {
        std::printf("ninefold-replay %d.%d.%d\n", NINEFOLD_VERSION_MAJOR, NINEFOLD_VERSION_MINOR, NINEFOLD_VERSION_PATCH);
        return statusGood;
    }
    const Command *command = find(words[0]);
    if (!command && words.size() > 1 && (command = find(words[1])))
        std::swap(words[0], words[1]); // the file first
    if (!command && words.size() == 1 && words[0][0] != '-')
        words.insert(words.begin(), (command = find("info"))->name);
    if (!command)
        fail(statusUsage, "no command '" + words[0] + "'; --help names them all");
    Arguments arguments;
    for (size_t k = 1; k < words.size(); ++k) {
        if (words[k].compare(0, 2, "--") != 0) {
            arguments.words.push_back(words[k]);
            continue;
        }
        const size_t equals = std::min(words[k].find('='), words[k].size());
        const std::string name = words[k].substr(2, equals - 2);
        if (words[k] == std::string("--") + helpOption.name)
            return printHelp(*command), statusGood;
        const auto option =
            std::find_if(command->options.begin(), command->options.end(), [&](const Option &one) { return name == one.name; });
        if (option == command->options.end())
            fail(statusUsage, std::string(command->name) + " has no option '--" + name + "'; ninefold-replay " + command->name +
                                  " --help names them");
        const bool joined = equals < words[k].size();
        if (joined && !option->value)
            fail(statusUsage, "--" + name + " takes no value");
        if (!joined && option->value && k + 1 == words.size())
            fail(statusUsage, "--" + name + " needs a value, " + option->value);
        arguments.options[name] = joined ? words[k].substr(equals + 1) : option->value ? words[++k] : "";
    }
    if (arguments.words.size() != wordCount(command->words))
        fail(statusUsage, std::string("usage: ninefold-replay ") + command->name + " " + command->words);
    return command->run(arguments);
}

} // namespace

std::span<const Command> commands() { return all; }

} // namespace replay

int main(int count, char **arguments)
{
    // The twin's rules stand behind each draw here; what the user set for a program under the twin is not meant for them.
#ifdef _WIN32
    _putenv_s("NINEFOLD_DEBUG", "");
#else
    unsetenv("NINEFOLD_DEBUG");
#endif
    debug::settings().summary = false;
    try {
        return replay::run({arguments + 1, arguments + count});
    } catch (const replay::Failure &failure) {
        std::fprintf(stderr, "ninefold-replay: %s\n", failure.text.c_str());
        return failure.status;
    } catch (const std::bad_alloc &) {
        std::fputs("ninefold-replay: there is not enough memory\n", stderr);
        return replay::statusFile;
    }
}
