// Findings on their way out: counted, printed, handed to the host's callback; what is to become of the call.
#pragma once

#include "rules.h"

#include <ninefold/debug.h>

#include <cstdint>
#include <cstdio>
#include <string>

namespace debug {

// From NINEFOLD_DEBUG, by debug.h.
struct Settings {
    int severity = NINEFOLD_DEBUG_HINT;
    int action = NINEFOLD_DEBUG_DRAW;
    int repeat = 1; // times that a rule is printed for one kernel or function
    int kernels = 20; // kernels and functions for which a rule is printed
    int status = 0; // of the program at its end where there were errors; 0: its own
    bool json = false, stack = false, summary = true;
    std::string file; // empty: standard error
    std::string capture; // empty: nothing is recorded
    int captureCut = 0, captureTextures = 0, captureFlush = 0; // by their place among the words
    int capturePause = 0, captureLevel = 3;
};
Settings &settings();

// Set at the first call of the library: a program that makes none gets no summary.
extern bool used;

// Reads them once. What it does not know it says on standard error, and ends the program.
void readSettings();

// key=value,key=value, with ,, for a comma in a value; the first that is wrong, or empty.
std::string parseSettings(const std::string &text, Settings &to);

extern uint64_t drawCount; // draws so far, the one that is asked about included

// False where the call is to be left out. `code` is the draw code that a function was called with; kernels have their own.
bool report(size_t index, layer::Id id, const std::string &words, uint32_t code = 0);

// Whether the next finding of a rule at a kernel or function will be printed or handed on. Else its words do not matter.
bool isHeard(size_t index, layer::Id id);

uint64_t findings(int severity);
const char *severityName(int severity);

// As a string of JSON.
std::string quoted(const std::string &text);

// How a rule is named in messages and in the list.
std::string ruleLabel(const Rule &rule); // NF-0107

// All rules, as a list or as a page.
void printRules(std::FILE *out, bool markdown);

extern NinefoldFindingCallback callback;
extern void *callbackContext;

} // namespace debug
