// The words of NINEFOLD_DEBUG and of the launcher's options, each once: X(key, value, meaning).
#pragma once

/* clang-format off */
#define NINEFOLD_DEBUG_SETTINGS(X) \
    X("severity", "hint|warning|error", "print and count nothing below (hint)") \
    X("action",   "draw|skip|abort",    "what becomes of a call with an error: made, left out, the program aborted (draw)") \
    X("repeat",   "N",                  "print a rule N times for each kernel; the rest is counted (1)") \
    X("kernels",  "N",                  "print a rule for N kernels; the rest is counted (20)") \
    X("format",   "text|json",          "sentences, or a JSON object on each line (text)") \
    X("file",     "PATH",               "append to PATH instead of standard error") \
    X("stack",    "on|off",             "print the callers with each message, where the platform can tell (off)") \
    X("summary",  "on|off",             "print what was counted at the end (on)") \
    X("status",   "N",                  "end with status N, 1 to 125, if there were errors; 0 leaves the program's own (0)") \
    X("capture",  "PATH",               "record all draws to PATH, for ninefold-replay; the file holds the program's pictures") \
    X("capture-cut", "buffer|mark",     "frames end where SetFrameBuffer is called or one is marked, or at marks alone (buffer)") \
    X("capture-pause", "N",             "a pause of N milliseconds between two draws ends a frame too; 0: it does not (0)") \
    X("capture-textures", "frame|draw", "look for changes of whole textures once a frame, or at each draw; in the part that is drawn always (frame)") \
    X("capture-flush", "frame|draw",    "what a crash leaves: all frames before, or all draws; the latter is larger (frame)") \
    X("capture-level", "N",             "how hard to compress, 1 to 19 (3)")
/* clang-format on */
