/*
 * A sprite game loop. The arrow keys, or W A S D, move the cup; a click lets a horse go where the pointer is; the space bar colours
 * all of them anew.
 *
 *     cc sprites.c $(pkg-config --cflags --libs ninefold-kit sdl2) -o sprites
 */
#include "window.h"

enum { WIDTH = 640, HEIGHT = 480, MOST = 500, SPEED = 4 };

static struct {
    NfkPoint position[MOST], speed[MOST];
    uint32_t color[MOST];
    uint32_t count, random;
} horses = {.random = 1};

static int32_t cupX = 256, cupY = 181;

static uint32_t dice(uint32_t sides)
{
    horses.random = horses.random * 1664525 + 1013904223;
    return (horses.random >> 16) % sides;
}

static uint32_t someColor(void) { return 0xFF000000 | dice(224) << 16 | dice(224) << 8 | dice(224); }

/* A horse with its middle at x, y. */
static void letGo(int32_t x, int32_t y)
{
    if (horses.count == MOST)
        return;
    const uint32_t i = horses.count++;
    horses.position[i] = (NfkPoint){x - 64, y - 52};
    horses.speed[i] = (NfkPoint){(int32_t)dice(7) - 3, (int32_t)dice(7) - 3};
    horses.color[i] = someColor();
}

static int32_t clamped(int32_t value, int32_t most) { return value < 0 ? 0 : value > most ? most : value; }

static void step(const Texture *horse, const Texture *cup)
{
    const uint8_t *keys = SDL_GetKeyboardState(NULL);
    const int32_t right = (keys[SDL_SCANCODE_RIGHT] | keys[SDL_SCANCODE_D]) - (keys[SDL_SCANCODE_LEFT] | keys[SDL_SCANCODE_A]);
    const int32_t down = (keys[SDL_SCANCODE_DOWN] | keys[SDL_SCANCODE_S]) - (keys[SDL_SCANCODE_UP] | keys[SDL_SCANCODE_W]);
    cupX = clamped(cupX + SPEED * right, WIDTH - (int32_t)cup->origWidth);
    cupY = clamped(cupY + SPEED * down, HEIGHT - (int32_t)cup->origHeight);

    const NfkPoint most = {WIDTH - (int32_t)horse->origWidth, HEIGHT - (int32_t)horse->origHeight};
    for (uint32_t i = 0; i < horses.count; ++i) {
        NfkPoint *at = &horses.position[i], *speed = &horses.speed[i];
        at->x += speed->x, at->y += speed->y;
        if (at->x < 0 || at->x > most.x)
            speed->x = at->x < 0 ? abs(speed->x) : -abs(speed->x);
        if (at->y < 0 || at->y > most.y)
            speed->y = at->y < 0 ? abs(speed->y) : -abs(speed->y);
    }
}

int main(int argc, char **argv)
{
    Window window;
    SDL_Event event;
    if (!openWindow(&window, "sprites", WIDTH, HEIGHT, argc, argv))
        return window.status;

    Texture *stars = loadPicture(&window, "stars", NFK_PICTURE_EDGE, 0);
    Texture *horse = loadPicture(&window, "horse", 0, 1);
    Texture *cup = loadPicture(&window, "cup", 0, 1);
    NfkFont *font = nfkOpenFont("DejaVu Sans:bold", 18);
    check(&window, font != NULL);

    const NfkRect all = {0, 0, WIDTH, HEIGHT};
    NfkOptions sky = nfkOptions(); /* no part of it is transparent */
    sky.blend = NINEFOLD_BLEND_COPY;
    sky.filter = NINEFOLD_FILTER_BILINEAR;
    NfkOptions coloured = nfkOptions();
    coloured.multiOp = NINEFOLD_MULTI_OP_ADD; /* the horse is dark, so its colour is added */
    const NfkTextStyle style = {.color = 0xFFFFFFFF, .rimColor = 0xFF203060, .rim = 2, .width = WIDTH - 24};
    for (int i = 0; i < 12; ++i)
        letGo(64 + (int32_t)dice(WIDTH - 128), 64 + (int32_t)dice(HEIGHT - 128));

    while (beginFrame(&window)) {
        while (nextEvent(&window, &event)) {
            if (event.type == SDL_MOUSEBUTTONDOWN)
                letGo(event.button.x, event.button.y);
            else if (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_SPACE)
                for (uint32_t i = 0; i < horses.count; ++i)
                    horses.color[i] = someColor();
        }
        step(horse, cup);

        char line[80];
        snprintf(line, sizeof line, "%u horses - arrow keys, space bar, click", (unsigned)horses.count);
        check(&window, nfkPicture(stars, &all, NULL, &sky));
        check(&window, nfkSprites(horse, horses.count, horses.position, NULL, horses.color, &coloured));
        check(&window, nfkSprite(cup, cupX, cupY, NULL, NULL));
        check(&window, nfkWrite(font, line, 12, 10, &style));
    }

    nfkCloseFont(font);
    DeleteTexture(stars), DeleteTexture(horse), DeleteTexture(cup);
    return closeWindow(&window);
}
