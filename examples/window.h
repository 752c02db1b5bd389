/*
 * What the SDL2 examples share: their options, a window, and the pace of 60 frames a second.
 *
 *     Window window;
 *     SDL_Event event;
 *     if (!openWindow(&window, "name", 640, 480, argc, argv))
 *         return window.status;
 *     while (beginFrame(&window)) {
 *         while (nextEvent(&window, &event))
 *             ...
 *         ...draw...
 *     }
 *     return closeWindow(&window);
 *
 * With --picture FILE.png there is no window, no event but the clicks of --click, and SDL is not started: the last frame goes to
 * the file.
 */
#ifndef WINDOW_H
#define WINDOW_H

#include <ninefold/kit.h>

/* --threads: with the library of bands a frame is drawn on several cores. Where its header is missing the option fails. */
#if defined(__has_include)
#if __has_include(<ninefold/bands.h>)
#include <ninefold/bands.h>
#endif
#endif
#ifndef NINEFOLD_BANDS_H
static inline int NinefoldBandsStart(int threads) { return threads * 0; }
static inline int NinefoldBandsFlush(void) { return 0; }
#endif

/* The ends of frames for captures: ninefold-debug --capture FILE PROGRAM. */
#if defined(__has_include)
#if __has_include(<ninefold/debug.h>)
#include <ninefold/debug.h>
#endif
#endif
#ifndef NINEFOLD_DEBUG_H
static inline int NinefoldDebugFrame(void) { return 0; }
#endif

#include <SDL.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#ifndef PICTURES
#define PICTURES "pictures" /* where the examples' bitmaps are */
#endif

typedef struct Window {
    const char *name;
    const char *pictures; /* folder */
    const char *picture; /* file of --picture; null: a window */
    int frames; /* to be drawn; 0: until the window is closed */
    int threads; /* of --threads; 0: each draw at once */
    int click; /* of --click; 0: no clicks */
    int frame; /* number of the one that is being drawn, from 0 */
    int clicked; /* the frame of the last click of --click */
    int closed, stopped, status; /* status: what main returns */
    NfkScreen *screen; /* what is drawn on */
    SDL_Window *window;
    SDL_Renderer *renderer;
    SDL_Texture *texture;
    uint64_t began, next; /* times of the performance counter: of the first frame, when the next one is due */
} Window;

static inline int failed(Window *window, const char *why)
{
    fprintf(stderr, "%s: %s\n", window->name, why);
    window->status = 1;
    return 0;
}

static inline int readOptions(Window *window, int argc, char **argv)
{
    const char *usage = "usage: %s [--frames N] [--picture FILE.png] [--click N] [--pictures FOLDER] [--threads N]\n"
                        "  --frames N         ends after N frames (with --picture: 90 unless told)\n"
                        "  --picture FILE.png opens no window; writes the last frame to the file\n"
                        "  --click N          with --picture: clicks into the middle every N frames\n"
                        "  --pictures FOLDER  where the bitmaps are [%s]\n"
                        "  --threads N        draws on N threads, with LD_LIBRARY_PATH=LIBRARIES/ninefold/bands\n"
                        "Esc ends it. P stops it and writes the picture to %s.png; P again goes on.\n";
    for (int i = 1; i < argc; i += 2) {
        const char *value = i + 1 < argc ? argv[i + 1] : NULL;
        if (!strcmp(argv[i], "--help")) {
            printf(usage, window->name, PICTURES, window->name);
            return 0;
        }
        if (value && !strcmp(argv[i], "--picture"))
            window->picture = value;
        else if (value && !strcmp(argv[i], "--pictures"))
            window->pictures = value;
        else if (value && !strcmp(argv[i], "--frames") && atoi(value) > 0)
            window->frames = atoi(value);
        else if (value && !strcmp(argv[i], "--threads") && atoi(value) > 0)
            window->threads = atoi(value);
        else if (value && !strcmp(argv[i], "--click") && atoi(value) > 0)
            window->click = atoi(value);
        else {
            fprintf(stderr, "%s: '%s' is no option, or lacks its value; --help lists them\n", window->name, argv[i]);
            window->status = 2;
            return 0;
        }
    }
    if (window->picture && !window->frames)
        window->frames = 90;
    return 1;
}

/* Says how fast it went or writes the picture, and returns what main returns. */
static inline int closeWindow(Window *window)
{
    if (window->picture && !window->status) {
        if (nfkSavePicture(window->screen->texture, window->picture, 0))
            printf("%s: wrote %s\n", window->name, window->picture);
        else
            failed(window, nfkError());
    } else if (window->window && window->began) {
        const double seconds = (double)(SDL_GetPerformanceCounter() - window->began) / (double)SDL_GetPerformanceFrequency();
        printf("%s: %d frames, %.1f a second\n", window->name, window->frame, window->frame / seconds);
    }
    nfkReleaseScreen(window->screen);
    if (window->window)
        SDL_Quit(); /* window, renderer and texture go with it */
    return window->status;
}

/* 0 where the program is to end with window->status. */
static inline int openWindow(Window *window, const char *name, int width, int height, int argc, char **argv)
{
    memset(window, 0, sizeof *window);
    window->name = name;
    window->pictures = PICTURES;
    if (!readOptions(window, argc, argv))
        return 0;
    if (window->threads && !NinefoldBandsStart(window->threads))
        return failed(window, "--threads wants the library of bands: set LD_LIBRARY_PATH to its folder, ninefold/bands");
    window->screen = nfkCreateScreen(width, height);
    if (!window->screen)
        return failed(window, nfkError());
    if (window->picture)
        return 1;
    if (SDL_Init(SDL_INIT_VIDEO)) {
        failed(window, SDL_GetError());
        closeWindow(window);
        return 0;
    }
    window->window = SDL_CreateWindow(name, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width, height, SDL_WINDOW_RESIZABLE);
    if (window->window)
        window->renderer = SDL_CreateRenderer(window->window, -1, 0);
    /* The alpha of a frame buffer means nothing, so the window's format has none. */
    if (window->renderer)
        window->texture = SDL_CreateTexture(window->renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING, width, height);
    if (!window->texture) {
        failed(window, SDL_GetError());
        closeWindow(window);
        return 0;
    }
    SDL_RenderSetLogicalSize(window->renderer, width, height); /* a larger window shows the same pixels, larger */
    return 1;
}

static inline void showFrame(Window *window)
{
    const NfkScreen *screen = window->screen;
    void *pixels;
    int pitch;
    if (SDL_LockTexture(window->texture, NULL, &pixels, &pitch)) {
        failed(window, SDL_GetError());
        window->closed = 1;
        return;
    }
    nfkShow(screen, pixels, pitch, screen->width, screen->height, NFK_FORMAT_ARGB8888);
    SDL_UnlockTexture(window->texture);
    SDL_RenderClear(window->renderer);
    SDL_RenderCopy(window->renderer, window->texture, NULL, NULL);
    SDL_RenderPresent(window->renderer);
}

/* The next event that is the program's own business; 0 when there is none. Mouse positions are pixels of the screen. */
static inline int nextEvent(Window *window, SDL_Event *event)
{
    while (window->window && SDL_PollEvent(event)) {
        const SDL_Keycode key = event->type == SDL_KEYDOWN ? event->key.keysym.sym : 0;
        if (event->type == SDL_QUIT || key == SDLK_ESCAPE)
            window->closed = 1;
        else if (key == SDLK_p && !event->key.repeat)
            window->stopped = !window->stopped;
        else if (!window->stopped)
            return 1;
    }
    if (window->picture && window->click && window->frame % window->click == 0 && window->clicked < window->frame) {
        memset(event, 0, sizeof *event);
        event->type = SDL_MOUSEBUTTONDOWN;
        event->button.x = window->screen->width / 2, event->button.y = window->screen->height / 2;
        window->clicked = window->frame;
        return 1;
    }
    return 0;
}

/* P was pressed: the picture stands, and lies in a file, until it is pressed again. */
static inline void standStill(Window *window)
{
    char file[256];
    SDL_Event event;
    const uint64_t since = SDL_GetPerformanceCounter();
    snprintf(file, sizeof file, "%s.png", window->name);
    if (nfkSavePicture(window->screen->texture, file, 0))
        printf("%s: wrote %s, %d frames\n", window->name, file, window->frame + 1), fflush(stdout);
    else
        failed(window, nfkError());
    while (window->stopped && !window->closed) {
        nextEvent(window, &event);
        showFrame(window);
        SDL_Delay(16);
    }
    window->next = SDL_GetPerformanceCounter();
    window->began += window->next - since;
}

/* Shows the frame before and waits until the next one is due; 0 when the program is to end. */
static inline int beginFrame(Window *window)
{
    NinefoldBandsFlush();
    NinefoldDebugFrame();
    if (!window->began && window->window)
        window->began = window->next = SDL_GetPerformanceCounter();
    else if (window->window) {
        const uint64_t second = SDL_GetPerformanceFrequency();
        showFrame(window);
        if (window->stopped)
            standStill(window);
        ++window->frame;
        window->next += second / 60;
        const uint64_t now = SDL_GetPerformanceCounter();
        if (now < window->next)
            SDL_Delay((uint32_t)((window->next - now) * 1000 / second));
        else
            window->next = now; /* late: what is lost is not caught up with */
    } else if (window->began)
        ++window->frame;
    else
        window->began = 1;
    return !window->closed && (!window->frames || window->frame < window->frames);
}

/* Draws that fail say why; the program goes on to its end, with status 1. */
static inline void check(Window *window, int drawn)
{
    if (!drawn) {
        failed(window, nfkError());
        window->closed = 1;
    }
}

/* A picture of the examples' folder; where it cannot be loaded the program ends. With `keyed` magenta becomes transparent. */
static inline Texture *loadPicture(Window *window, const char *name, uint32_t extras, int keyed)
{
    char path[1024];
    snprintf(path, sizeof path, "%s/%s.bmp", window->pictures, name);
    Texture *texture = nfkLoadPicture(path, extras);
    if (!texture) {
        failed(window, nfkError());
        fprintf(stderr, "%s: --pictures FOLDER says where the bitmaps are\n", window->name);
        exit(1);
    }
    if (keyed)
        SetClearPixel(texture, 0xFFFF00FF);
    return texture;
}

#endif
