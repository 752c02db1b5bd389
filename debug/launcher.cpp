// ninefold-debug: runs a host program on the debug twin.
#include "settings.h"

#include <ninefold/debug.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <process.h>
#include <vector>
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace {

constexpr const char *usage =
    "usage: ninefold-debug [--KEY VALUE | --KEY=VALUE]... PROGRAM [ARGUMENT]...\n"
    "       ninefold-debug --rules [--markdown]\n"
    "Runs PROGRAM with the debug twin in the place of libninefold: what it does wrong is said on\n"
    "standard error, pixels stay the same. The environment variable NINEFOLD_DEBUG holds the same\n"
    "settings for a program that runs on the twin by itself, as KEY=VALUE with commas between; a comma\n"
    "in a value is written twice there.\n\n";

void help()
{
    std::fputs(usage, stdout);
#define NINEFOLD_SETTING(key, value, meaning) std::printf("  --%-27s  %s\n", key " " value, meaning);
    NINEFOLD_DEBUG_SETTINGS(NINEFOLD_SETTING)
#undef NINEFOLD_SETTING
    std::puts("  --rules                        print all rules, with --markdown as a page\n"
              "  --help                         print this\n"
              "  --version                      print the version\n"
              "\nExit status: that of PROGRAM, or the one of --status; 2 for wrong options, 127 where PROGRAM cannot be run.\n"
              "Programs that the linker gave the static library cannot be looked at.");
}

bool isSetting(const std::string &key)
{
#define NINEFOLD_SETTING(name, value, meaning)                                                                                   \
    if (key == name)                                                                                                             \
        return true;
    NINEFOLD_DEBUG_SETTINGS(NINEFOLD_SETTING)
#undef NINEFOLD_SETTING
    return false;
}

int fail(int status, const std::string &words)
{
    std::fprintf(stderr, "ninefold-debug: %s\n", words.c_str());
    return status;
}

// Where the twin stands: NINEFOLD_DEBUG_LIBRARY, or beside the launcher as they were built or installed.
std::filesystem::path twin(const char *self)
{
    namespace fs = std::filesystem;
    if (const char *const named = std::getenv("NINEFOLD_DEBUG_LIBRARY"))
        return named;
    std::error_code ignored;
#if defined(_WIN32)
    char path[MAX_PATH];
    const fs::path here =
        GetModuleFileNameA(nullptr, path, sizeof path) ? fs::path(path).parent_path() : fs::path(self).parent_path();
#else
    const fs::path link = fs::read_symlink("/proc/self/exe", ignored);
    const fs::path here = (link.empty() ? fs::absolute(self, ignored) : link).parent_path();
#endif
    for (const char *const folder : {NINEFOLD_DEBUG_PLACES})
        if (const fs::path file = here / folder / NINEFOLD_DEBUG_FILE; fs::exists(file, ignored))
            return fs::canonical(file, ignored);
    return {};
}

#if defined(_WIN32)

// The library in the program's own folder, which goes before any other; empty where there is none.
std::filesystem::path besideProgram(const char *program)
{
    char file[MAX_PATH];
    if (!SearchPathA(nullptr, program, ".exe", sizeof file, file, nullptr))
        return {};
    const std::filesystem::path beside = std::filesystem::path(file).parent_path() / NINEFOLD_DEBUG_FILE;
    std::error_code ignored;
    return std::filesystem::exists(beside, ignored) ? beside : std::filesystem::path();
}

// As a program takes its command line apart.
std::string quotedArgument(const std::string &argument)
{
    if (!argument.empty() && argument.find_first_of(" \t\"") == std::string::npos)
        return argument;
    std::string result = "\"";
    size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '"')
            result.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        result += c;
    }
    return result.append(backslashes, '\\') + '"';
}

#endif

int printRules(const std::filesystem::path &library, bool markdown)
{
    using Get = const NinefoldDebugCalls *(*)();
    Get get = nullptr;
#if defined(_WIN32)
    if (HMODULE module = LoadLibraryW(library.c_str()))
        get = reinterpret_cast<Get>(reinterpret_cast<void *>(GetProcAddress(module, "ninefoldDebugCalls")));
#else
    if (void *const module = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL))
        get = reinterpret_cast<Get>(dlsym(module, "ninefoldDebugCalls"));
#endif
    if (!get)
        return fail(1, "cannot load " + library.string() + "; set NINEFOLD_DEBUG_LIBRARY to the twin");
    get()->printRules(stdout, markdown);
    return 0;
}

} // namespace

int main(int count, char **arguments)
{
    std::string settings = std::getenv("NINEFOLD_DEBUG") ? std::getenv("NINEFOLD_DEBUG") : "";
    bool rules = false, markdown = false;
    int at = 1;
    for (; at < count && std::strncmp(arguments[at], "--", 2) == 0; ++at) {
        const std::string option = arguments[at] + 2;
        const size_t equals = option.find('=');
        const std::string key = option.substr(0, equals);
        if (key == "help")
            return help(), 0;
        if (key == "version")
            return std::printf("ninefold-debug %d.%d.%d\n", NINEFOLD_VERSION_MAJOR, NINEFOLD_VERSION_MINOR,
                               NINEFOLD_VERSION_PATCH),
                   0;
        if (key.empty()) {
            ++at;
            break;
        }
        if (key == "rules" || key == "markdown") {
            (key == "rules" ? rules : markdown) = true;
            continue;
        }
        if (!isSetting(key))
            return fail(2, "no option '--" + key + "'; --help names them all");
        if (equals == std::string::npos && ++at == count)
            return fail(2, "--" + key + " needs a value; --help says which");
        settings += (settings.empty() ? "" : ",") + key + "=";
        for (const char c : equals == std::string::npos ? std::string(arguments[at]) : option.substr(equals + 1))
            settings += c == ',' ? ",," : std::string(1, c);
    }
    const std::filesystem::path library = twin(arguments[0]);
    if (library.empty())
        return fail(1, std::string("cannot find ") + NINEFOLD_DEBUG_FILE + " of the twin; set NINEFOLD_DEBUG_LIBRARY to it");
    if (rules)
        return printRules(library, markdown);
    if (at >= count)
        return std::fputs(usage, stderr), 2;

#if defined(_WIN32)
    if (const std::filesystem::path beside = besideProgram(arguments[at]); !beside.empty())
        return fail(1, "the system takes the library that stands beside the program, " + beside.string() + ": put " +
                           library.string() + " in its place, and run the program without ninefold-debug");
    _putenv_s("NINEFOLD_DEBUG", settings.c_str());
    const char *const path = std::getenv("PATH");
    _putenv_s("PATH", (library.parent_path().string() + ";" + (path ? path : "")).c_str());
    std::vector<std::string> quoted;
    std::vector<const char *> list;
    for (int k = at; k < count; ++k)
        quoted.push_back(quotedArgument(arguments[k]));
    for (const std::string &argument : quoted)
        list.push_back(argument.c_str());
    list.push_back(nullptr);
    const intptr_t status = _spawnvp(_P_WAIT, arguments[at], list.data());
    if (status != -1)
        return int(status);
#else
    setenv("NINEFOLD_DEBUG", settings.c_str(), 1);
    setenv("NINEFOLD_DEBUG_PROCESS", std::to_string(getpid()).c_str(), 1);
    const char *const others = std::getenv("LD_PRELOAD");
    setenv("LD_PRELOAD", (library.string() + (others && *others ? std::string(":") + others : "")).c_str(), 1);
    execvp(arguments[at], arguments + at);
#endif
    return fail(127, std::string("cannot run ") + arguments[at] + ": " + std::strerror(errno));
}
