#include "report.h"

#include "memory.h"
#include "recording.h"
#include "settings.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <unordered_map>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

namespace debug {

uint64_t drawCount;
bool used;
NinefoldFindingCallback callback;
void *callbackContext;

namespace {

struct Counts {
    std::unordered_map<uint64_t, uint64_t> byCall; // by rule and id
    uint64_t byRule[ruleLimit], kernels[ruleLimit], bySeverity[3];
    std::FILE *out = nullptr;
};
// Never destroyed: it is read at the very end.
Counts &counts()
{
    static auto *const all = new Counts{};
    return *all;
}

std::FILE *output()
{
    std::FILE *&out = counts().out;
    if (!out && !settings().file.empty()) {
        out = std::fopen(settings().file.c_str(), "a");
        if (!out)
            std::fprintf(stderr, "ninefold: cannot write %s (%s); messages go to standard error\n", settings().file.c_str(),
                         std::strerror(errno));
    }
    if (!out)
        out = stderr;
    return out;
}

void print(const Rule &rule, const NinefoldFinding &f, bool last)
{
    const std::vector<std::string> stack = settings().stack ? hostStack() : std::vector<std::string>{};
    std::string line;
    char part[160];
    if (settings().json) {
        std::snprintf(part, sizeof part, "{\"rule\":\"%s\",\"name\":\"%s\",\"severity\":\"%s\",\"draw\":%llu,\"count\":%llu,",
                      ruleLabel(rule).c_str(), rule.name, severityName(rule.severity), f.draw, f.count);
        line = part;
        line += "\"call\":" + quoted(f.call);
        if (f.code) {
            std::snprintf(part, sizeof part, ",\"code\":\"0x%lx\"", f.code);
            line += part;
        }
        line += ",\"text\":" + quoted(f.text) + ",\"effect\":" + quoted(rule.effect) + ",\"advice\":" + quoted(rule.advice);
        if (!stack.empty()) {
            line += ",\"stack\":[";
            for (size_t k = 0; k < stack.size(); ++k)
                line += (k ? "," : "") + quoted(stack[k]);
            line += ']';
        }
        line += "}\n";
    } else {
        std::snprintf(part, sizeof part, "ninefold: %s %s %s: draw %llu, ", severityName(rule.severity), ruleLabel(rule).c_str(),
                      rule.name, f.draw);
        line = part;
        line += f.call;
        if (f.code) {
            std::snprintf(part, sizeof part, " (0x%lx)", f.code);
            line += part;
        }
        line += std::string(": ") + f.text + " " + rule.effect + " " + rule.advice;
        if (last)
            line += " (From here on this rule is only counted.)";
        line += '\n';
        for (const std::string &caller : stack)
            line += "    at " + caller + "\n";
    }
    std::fputs(line.c_str(), output());
    std::fflush(output());
}

int wordIn(const std::string &value, std::initializer_list<const char *> words)
{
    int index = 0;
    for (const char *const word : words) {
        if (value == word)
            return index;
        ++index;
    }
    return -1;
}

bool set(const std::string &key, const std::string &value, Settings &to)
{
    const auto number = [&](int limit, int &field) {
        char *end;
        const long n = std::strtol(value.c_str(), &end, 10);
        const bool is = !value.empty() && !*end && n >= 0 && n <= limit;
        if (is)
            field = int(n);
        return is;
    };
    const auto choice = [&](std::initializer_list<const char *> words, auto &field) {
        const int index = wordIn(value, words);
        if (index >= 0)
            field = std::remove_reference_t<decltype(field)>(index);
        return index >= 0;
    };
    if (key == "severity")
        return choice({"hint", "warning", "error"}, to.severity);
    if (key == "action")
        return choice({"draw", "skip", "abort"}, to.action);
    if (key == "format")
        return choice({"text", "json"}, to.json);
    if (key == "stack")
        return choice({"off", "on"}, to.stack);
    if (key == "summary")
        return choice({"off", "on"}, to.summary);
    if (key == "repeat")
        return number(1000000000, to.repeat);
    if (key == "kernels")
        return number(1000000000, to.kernels);
    if (key == "status")
        return number(125, to.status);
    if (key == "file")
        return !(to.file = value).empty();
#if NINEFOLD_CAPTURE
    if (key == "capture")
        return !(to.capture = value).empty();
    if (key == "capture-cut")
        return choice({"buffer", "mark"}, to.captureCut);
    if (key == "capture-textures")
        return choice({"frame", "draw"}, to.captureTextures);
    if (key == "capture-flush")
        return choice({"frame", "draw"}, to.captureFlush);
    if (key == "capture-pause")
        return number(1000000000, to.capturePause);
    if (key == "capture-level")
        return number(19, to.captureLevel) && to.captureLevel > 0;
#endif
    return false;
}

void summarise()
{
    const Counts &c = counts();
    if (!settings().summary || !used || (settings().json && !c.bySeverity[0] && !c.bySeverity[1] && !c.bySeverity[2]))
        return;
    std::FILE *const out = output();
    if (settings().json) {
        std::fprintf(out, "{\"summary\":{\"draws\":%llu", static_cast<unsigned long long>(drawCount));
        for (size_t k = 0; k < rules.size(); ++k)
            if (c.byRule[k])
                std::fprintf(out, ",\"%s\":%llu", ruleLabel(rules[k]).c_str(), static_cast<unsigned long long>(c.byRule[k]));
        std::fputs("}}\n", out);
        return;
    }
    std::fprintf(out, "ninefold: %llu draws, %llu errors, %llu warnings, %llu hints\n",
                 static_cast<unsigned long long>(drawCount), static_cast<unsigned long long>(c.bySeverity[NINEFOLD_DEBUG_ERROR]),
                 static_cast<unsigned long long>(c.bySeverity[NINEFOLD_DEBUG_WARNING]),
                 static_cast<unsigned long long>(c.bySeverity[NINEFOLD_DEBUG_HINT]));
    for (int severity = NINEFOLD_DEBUG_ERROR; severity >= NINEFOLD_DEBUG_HINT; --severity)
        for (size_t k = 0; k < rules.size(); ++k)
            if (rules[k].severity == severity && c.byRule[k])
                std::fprintf(out, "ninefold:   %s %s %s: %llu times, by %llu kernels or functions\n", severityName(severity),
                             ruleLabel(rules[k]).c_str(), rules[k].name, static_cast<unsigned long long>(c.byRule[k]),
                             static_cast<unsigned long long>(c.kernels[k]));
}

// After the host's own exit handlers and destructors.
[[gnu::destructor]] void atEnd()
{
    summarise();
    std::fflush(output());
    if (settings().status && findings(NINEFOLD_DEBUG_ERROR)) {
        std::fflush(nullptr);
#if defined(_WIN32)
        TerminateProcess(GetCurrentProcess(), UINT(settings().status)); // the process is at its end, and no DLL may ask for it
#endif
        std::_Exit(settings().status);
    }
}

} // namespace

std::string quoted(const std::string &text)
{
    std::string result = "\"";
    for (const char c : text)
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(c));
            result += code;
        } else {
            result += c;
        }
    return result + '"';
}

void printRules(std::FILE *out, bool markdown)
{
    if (!markdown) {
        for (const Rule &rule : rules)
            std::fprintf(out, "%s %s (%s), for %s: %s. %s %s\n", ruleLabel(rule).c_str(), rule.name, severityName(rule.severity),
                         rule.scope, rule.when, rule.effect, rule.advice);
        return;
    }
    std::fputs(
        "# The rules of the debug twin\n\n"
        "Written by `ninefold-debug --rules --markdown`. A rule keeps its number and its name for good. An error is a call that\n"
        "is undefined, a warning one that was surely not meant, a hint one that is slow or perhaps not meant.\n\n"
        "| rule | | asked for | says |\n|---|---|---|---|\n",
        out);
    for (const Rule &rule : rules)
        std::fprintf(out, "| %s `%s` | %s | %s | %c%s. %s *%s* |\n", ruleLabel(rule).c_str(), rule.name,
                     severityName(rule.severity), rule.scope, std::toupper(static_cast<unsigned char>(rule.when[0])),
                     rule.when + 1, rule.effect, rule.advice);
}

Settings &settings()
{
    static auto *const all = new Settings;
    return *all;
}

std::string parseSettings(const std::string &text, Settings &to)
{
    for (size_t at = 0; at < text.size();) {
        std::string item;
        for (; at < text.size(); ++at) {
            if (text[at] == ',' && text.compare(at, 2, ",,") != 0)
                break;
            item += text[at];
            at += text[at] == ',';
        }
        ++at;
        const size_t equals = item.find('=');
        if (!item.empty() && (equals == std::string::npos || !set(item.substr(0, equals), item.substr(equals + 1), to)))
            return item;
    }
    return "";
}

void readSettings()
{
    static bool read;
    if (read)
        return;
    read = true;
    const char *const text = std::getenv("NINEFOLD_DEBUG");
    if (!text)
        return;
    const std::string wrong = parseSettings(text, settings());
    if (wrong.empty()) {
        if (!settings().capture.empty() && !startRecording())
            std::_Exit(2);
        return;
    }
    std::fprintf(stderr,
                 "ninefold: '%s' is no setting%s. They are, in NINEFOLD_DEBUG with commas between (,, is one in a value), as "
                 "options like --repeat 3:\n",
                 wrong.c_str(),
                 wrong.rfind("capture", 0) == 0 && !NINEFOLD_CAPTURE ? " of this build, which cannot capture" : "");
#define NINEFOLD_SETTING(key, value, meaning) std::fprintf(stderr, "    %s=%s  %s\n", key, value, meaning);
    NINEFOLD_DEBUG_SETTINGS(NINEFOLD_SETTING)
#undef NINEFOLD_SETTING
    std::_Exit(2);
}

bool report(size_t index, layer::Id id, const std::string &words, uint32_t code)
{
    const Rule &rule = rules[index];
    const Settings &s = settings();
    if (rule.severity < s.severity)
        return true;
    Counts &c = counts();
    ++c.bySeverity[rule.severity];
    ++c.byRule[index];
    const uint64_t count = ++c.byCall[uint64_t(index) << 32 | id];
    if (count == 1)
        ++c.kernels[index];
    const bool skip = rule.severity == NINEFOLD_DEBUG_ERROR && s.action != NINEFOLD_DEBUG_DRAW;
    const bool prints = count <= uint64_t(s.repeat) && c.kernels[index] <= uint64_t(s.kernels);
    if (callback || prints || (skip && s.action == NINEFOLD_DEBUG_ABORT)) {
        const std::string name = layer::nameOf(id);
        const NinefoldFinding finding{
            rule.severity, rule.number, rule.name,     name.c_str(), layer::isRecord(id) ? layer::codeOf(id) : code,
            drawCount,     count,       words.c_str(), rule.advice};
        if (prints)
            print(rule, finding, count == uint64_t(s.repeat) && c.kernels[index] == uint64_t(s.kernels));
        if (callback)
            callback(&finding, callbackContext);
        if (skip && s.action == NINEFOLD_DEBUG_ABORT)
            std::abort();
    }
    return !skip;
}

bool isHeard(size_t index, layer::Id id)
{
    const Settings &s = settings();
    if (rules[index].severity < s.severity)
        return false;
    const auto found = counts().byCall.find(uint64_t(index) << 32 | id);
    return callback || found == counts().byCall.end() || found->second < uint64_t(s.repeat);
}

uint64_t findings(int severity) { return severity >= 0 && severity < 3 ? counts().bySeverity[severity] : 0; }

const char *severityName(int severity)
{
#define NINEFOLD_WORD(name, value, word, meaning) word,
    static constexpr const char *names[] = {NINEFOLD_DEBUG_SEVERITIES(NINEFOLD_WORD)};
#undef NINEFOLD_WORD
    return names[severity];
}

std::string ruleLabel(const Rule &rule)
{
    char text[16];
    std::snprintf(text, sizeof text, "NF-%04u", unsigned(rule.number));
    return text;
}

} // namespace debug
