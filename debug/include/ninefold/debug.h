/*
 * The debug twin: the library that looks at every call first and says what a host does wrong. It has the library's name, exports
 * and pixels, and stands in a folder of its own (lib/ninefold/debug): `ninefold-debug program` runs a host on it unchanged.
 *
 * A host may talk to it by the calls below. They resolve at run time: under the plain library they do nothing and say so, by
 * returning 0, so a host can keep them in. They may come at any time, from the thread that draws.
 */
#ifndef NINEFOLD_DEBUG_H
#define NINEFOLD_DEBUG_H

#include <ninefold/ninefold.h>

#include <stddef.h>
#include <stdio.h>

#if !defined(_WIN32)
#include <dlfcn.h>
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* As windows.h declares them, which brings thousands of names along; it may come before or behind. */
#if defined(_WIN32) && !defined(_WINDOWS_)
struct HINSTANCE__;
#if defined(_WIN64)
typedef long long(__stdcall *NinefoldProcedure)();
#else
typedef int(__stdcall *NinefoldProcedure)();
#endif
__declspec(dllimport) int __stdcall GetModuleHandleExA(unsigned long flags, const char *name, struct HINSTANCE__ **module);
__declspec(dllimport) NinefoldProcedure __stdcall GetProcAddress(struct HINSTANCE__ *module, const char *name);
#endif

/* How grave a finding is. Error: what the call does is undefined. Warning: surely not meant. Hint: slow, or perhaps not meant. */
#define NINEFOLD_DEBUG_SEVERITIES(X)                                                                                             \
    X(NINEFOLD_DEBUG_HINT, 0, "hint", "slow, or perhaps not meant")                                                              \
    X(NINEFOLD_DEBUG_WARNING, 1, "warning", "surely not meant")                                                                  \
    X(NINEFOLD_DEBUG_ERROR, 2, "error", "what the call does is undefined")
/* What becomes of a call with an error in it. */
#define NINEFOLD_DEBUG_ACTIONS(X)                                                                                                \
    X(NINEFOLD_DEBUG_DRAW, 0, "draw", "made all the same")                                                                       \
    X(NINEFOLD_DEBUG_SKIP, 1, "skip", "left out, with 0 for its result")                                                         \
    X(NINEFOLD_DEBUG_ABORT, 2, "abort", "the program is aborted there")

enum { NINEFOLD_DEBUG_SEVERITIES(NINEFOLD_ENUMERATOR) };
enum { NINEFOLD_DEBUG_ACTIONS(NINEFOLD_ENUMERATOR) };

/* One finding. Strings live until the callback returns. */
typedef struct NinefoldFinding {
    int severity; /* NINEFOLD_DEBUG_ERROR, ... */
    unsigned rule; /* the number behind NF-; it never changes its meaning */
    const char *name; /* of the rule, such as clip-outside */
    const char *call; /* readable name of the kernel, or the function's */
    unsigned long code; /* draw code, of SearchDrawFunc the one asked for; 0 for other functions */
    unsigned long long draw; /* number of the draw, from 1; of functions that of the draw before */
    unsigned long long count; /* how often this rule has met this kernel or function, this time included */
    const char *text; /* field and value */
    const char *advice; /* what to do */
} NinefoldFinding;

/* Gets every finding of at least the severity asked for, repeats included. It must not draw. */
typedef void (*NinefoldFindingCallback)(const NinefoldFinding *finding, void *context);

/* The calls of the twin. Only ever grows at its end. */
typedef struct NinefoldDebugCalls {
    size_t size; /* of this record, bytes */
    void (*setCallback)(NinefoldFindingCallback callback, void *context);
    void (*setSeverity)(int severity);
    void (*setAction)(int action);
    void (*labelTexture)(const Texture *texture, const char *name);
    void (*labelMemory)(const void *memory, size_t bytes, const char *name);
    void (*forgetMemory)(const void *memory);
    void (*frame)(void);
    unsigned long long (*findings)(int severity);
    void (*printRules)(FILE *out, int markdown); /* for ninefold-debug --rules */
} NinefoldDebugCalls;

/* The twin's calls, null under the plain library. */
static inline const NinefoldDebugCalls *NinefoldDebug(void)
{
    typedef const NinefoldDebugCalls *(*Get)(void);
    static const NinefoldDebugCalls *calls;
    static int asked;
    if (!asked) {
        Get get = 0;
#if defined(_WIN32)
        struct HINSTANCE__ *module = 0;
        if (GetModuleHandleExA(2 | 4 /* the one that this address is in, and no reference */, (const char *)(void *)&rs, &module))
            get = (Get)(void (*)(void))GetProcAddress(module, "ninefoldDebugCalls");
#else
        *(void **)&get = dlsym(dlopen(0, RTLD_LAZY), "ninefoldDebugCalls"); /* of all that the program has loaded */
#endif
        asked = 1;
        calls = get ? get() : 0;
    }
    return calls;
}

/* Each of these returns 1, or 0 where the library is not the twin. */

/* Hands findings to `callback` (null: to none) besides printing them. */
static inline int NinefoldDebugSetCallback(NinefoldFindingCallback callback, void *context)
{
    return NinefoldDebug() ? (NinefoldDebug()->setCallback(callback, context), 1) : 0;
}

/* Findings below `severity` are neither printed nor handed on nor counted. At first NINEFOLD_DEBUG_HINT. */
static inline int NinefoldDebugSetSeverity(int severity)
{
    return NinefoldDebug() ? (NinefoldDebug()->setSeverity(severity), 1) : 0;
}

/* What becomes of calls with errors. At first NINEFOLD_DEBUG_DRAW. */
static inline int NinefoldDebugSetAction(int action) { return NinefoldDebug() ? (NinefoldDebug()->setAction(action), 1) : 0; }

/* Names a texture in messages. The name is copied. */
static inline int NinefoldDebugLabelTexture(const Texture *texture, const char *name)
{
    return NinefoldDebug() ? (NinefoldDebug()->labelTexture(texture, name), 1) : 0;
}

/* Says how large a plane, a table or pixels of the host's are (bytes) and names them in messages. Draws are then held to that
 * size; without it the twin can only ask whether there is memory at all. */
static inline int NinefoldDebugLabelMemory(const void *memory, size_t bytes, const char *name)
{
    return NinefoldDebug() ? (NinefoldDebug()->labelMemory(memory, bytes, name), 1) : 0;
}

/* Takes such a label back: before the memory is freed. */
static inline int NinefoldDebugForgetMemory(const void *memory)
{
    return NinefoldDebug() ? (NinefoldDebug()->forgetMemory(memory), 1) : 0;
}

/* Marks the end of a frame: rules that read whole pictures look once a frame. SetFrameBuffer marks one too. */
static inline int NinefoldDebugFrame(void) { return NinefoldDebug() ? (NinefoldDebug()->frame(), 1) : 0; }

/* How many findings of exactly that severity there were, repeats included; 0 under the plain library. */
static inline unsigned long long NinefoldDebugFindings(int severity)
{
    return NinefoldDebug() ? NinefoldDebug()->findings(severity) : 0;
}

#ifdef __cplusplus
}
#endif

#endif
