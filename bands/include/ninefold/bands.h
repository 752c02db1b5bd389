/*
 * Bands: the library that draws a recorded frame on every core, with the bits of one thread. It has the library's name and exports
 * and stands in a folder of its own (lib/ninefold/bands): a host that is linked with the library runs on it with
 * LD_LIBRARY_PATH=.../lib/ninefold/bands, on Windows with that folder in PATH or its DLL beside the program. Until it is started it
 * draws like the library.
 *
 *     NinefoldBandsStart(0);     once
 *     ... draw as ever ...
 *     NinefoldBandsFlush();      before the frame buffer is looked at
 *
 * Once started, calling a kernel records it, with rs as it stands, and returns. A flush draws what was recorded, band of rows by
 * band of rows, each band in the order of the calls. Between a recorded call and the flush the host must not look at or change
 * the frame buffer and the planes, and must not change or free textures, their chains and maps. rs may change freely; of line
 * tables and scanShift there are copies. The library's own functions that touch pixels or textures flush first, and so does a
 * change of the frame buffer or the planes. Draws that bands cannot cut are drawn at once, after what was recorded before them.
 *
 * The calls below resolve at run time: under the plain library they do nothing and say so, by returning 0, so a host can keep
 * them in. They, and all drawing, belong to one thread of the host's.
 */
#ifndef NINEFOLD_BANDS_H
#define NINEFOLD_BANDS_H

#include <ninefold/ninefold.h>

#include <stddef.h>

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

#define NINEFOLD_BANDS_MOST_THREADS 256

/* The calls of bands. Only ever grows at its end. */
typedef struct NinefoldBandsCalls {
    size_t size; /* of this record, bytes */
    int (*start)(int threads);
    void (*flush)(void);
    void (*stop)(void);
    void (*declarePure)(PixelOperator function);
    unsigned long long (*count)(int what);
    void (*recordAll)(int all);
} NinefoldBandsCalls;

/* What NinefoldBandsCount counts, since the program began. */
enum {
    NINEFOLD_BANDS_RECORDED = 0, /* draws that were recorded; where that does not pay they are drawn at once instead */
    NINEFOLD_BANDS_WHOLE = 1, /* draws that bands cannot cut, drawn at once after a flush */
    NINEFOLD_BANDS_FLUSHES = 2, /* flushes that had something to draw */
    NINEFOLD_BANDS_SHARED = 3 /* of these, those that were worth other threads */
};

/* The calls of bands, null under the plain library. */
static inline const NinefoldBandsCalls *NinefoldBands(void)
{
    typedef const NinefoldBandsCalls *(*Get)(void);
    static const NinefoldBandsCalls *calls;
    static int asked;
    if (!asked) {
        Get get = 0;
#if defined(_WIN32)
        struct HINSTANCE__ *module = 0;
        if (GetModuleHandleExA(2 | 4 /* the one that this address is in, and no reference */, (const char *)(void *)&rs, &module))
            get = (Get)(void (*)(void))GetProcAddress(module, "ninefoldBandsCalls");
#else
        *(void **)&get = dlsym(dlopen(0, RTLD_LAZY), "ninefoldBandsCalls"); /* of all that the program has loaded */
#endif
        asked = 1;
        calls = get ? get() : 0;
    }
    return calls;
}

/* Begins to record, with so many threads that draw, the calling one included; 0: as many as there are processors that the program
 * may use. More than these would only wait for each other, so there are never more (but see NinefoldBandsRecordAll). Returns their
 * number, which may be less where the system refuses threads; 0 under the plain library. Where recording has begun already it
 * flushes and changes the number. Call it after the four Make... functions or before. */
static inline int NinefoldBandsStart(int threads) { return NinefoldBands() ? NinefoldBands()->start(threads) : 0; }

/* Draws what was recorded; returns 1 when it is drawn, 0 under the plain library. rs is left alone. */
static inline int NinefoldBandsFlush(void) { return NinefoldBands() ? (NinefoldBands()->flush(), 1) : 0; }

/* Flushes, ends the threads and draws at once from now on. Returns 1, or 0 under the plain library. */
static inline int NinefoldBandsStop(void) { return NinefoldBands() ? (NinefoldBands()->stop(), 1) : 0; }

/* Says that an operator of the host's depends on its two arguments alone, changes nothing and may run on any thread: draws with
 * it are then cut into bands too. Others are drawn whole. Returns 1, or 0 under the plain library. */
static inline int NinefoldBandsDeclarePure(PixelOperator function)
{
    return NinefoldBands() ? (NinefoldBands()->declarePure(function), 1) : 0;
}

/* One of the counts above; 0 under the plain library, and for what is not counted. */
static inline unsigned long long NinefoldBandsCount(int what) { return NinefoldBands() ? NinefoldBands()->count(what) : 0; }

/* For tests of a program: 1 records every draw that bands can cut and draws it on all threads, also where that does not pay, and has
 * as many threads as were asked for, at most NINEFOLD_BANDS_MOST_THREADS, however few processors there are; 0, as at first, where it
 * pays. Flushes. Returns 1, or 0 under the plain library. */
static inline int NinefoldBandsRecordAll(int all) { return NinefoldBands() ? (NinefoldBands()->recordAll(all), 1) : 0; }

#ifdef __cplusplus
}
#endif

#endif
