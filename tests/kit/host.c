/* The smallest host in C: starts, draws, shows, and is told what is wrong. */
#include <ninefold/kit.h>

#include <stdio.h>
#include <string.h>

int main(void)
{
    static uint32_t window[64 * 48];
    NfkScreen *screen = nfkCreateScreen(64, 48);
    NfkOptions options = nfkOptions();
    NfkRect all = {0, 0, 64, 48};
    if (!screen)
        return fprintf(stderr, "%s\n", nfkError()), 1;
    options.blend = NINEFOLD_BLEND_COPY;
    if (!nfkFill(&all, 0xFF204060, &options) || !nfkLine(0, 0, 64, 48, 0xFFFFFFFF, NULL) ||
        !nfkShow(screen, window, 256, 64, 48, NFK_FORMAT_ARGB8888))
        return fprintf(stderr, "%s\n", nfkError()), 1;
    if (window[0] != 0xFFFFFFFF || window[1] != 0xFF204060)
        return fprintf(stderr, "pixels %08X %08X\n", (unsigned)window[0], (unsigned)window[1]), 1;
    options.shahei = NINEFOLD_SHAHEI_PRIORITY;
    if (nfkFill(&all, 0, &options) || !strstr(nfkError(), "BLEND_COPY"))
        return fprintf(stderr, "a code that does not exist is drawn: %s\n", nfkError()), 1;
    nfkReleaseScreen(screen);
    puts("the kit draws");
    return 0;
}
