/*
 * A window by Win32 alone, and the library without its kit: a gradient under a cross of lines. The arrow keys move the cross, a
 * click puts it where the pointer is.
 *
 *     x86_64-w64-mingw32-gcc-posix win32.c -I INCLUDE -L LIB -lninefold -lgdi32 -mwindows -o win32.exe
 *
 *     win32 [--frames N] [--picture FILE.bmp]
 *         --frames N          ends after N frames, 60 a second
 *         --picture FILE.bmp  opens no window; writes what the window would show to the file
 */
#include <ninefold/ninefold.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>

enum { WIDTH = 480, HEIGHT = 360, STEP = 10 };

static Texture *screen;
static int32_t crossX = WIDTH / 2, crossY = HEIGHT / 2;
static BITMAPINFO format; /* 32 bits a pixel and no alpha: that of a frame buffer means nothing. Rows go from top to bottom */

/* Tables, a frame buffer, and the clip rectangle: all that a draw needs. A multi mode of 0 would be a second texture. */
static void start(void)
{
    MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawMaskTable(), MakeDrawFuncTable();
    screen = CreateTexture(WIDTH, HEIGHT); /* 512 by 512 */
    SetFrameBuffer(screen);
    rs.clipRight = WIDTH, rs.clipBottom = HEIGHT;
    SetMultiMode(NINEFOLD_MULTI_NONE);
    format.bmiHeader.biSize = sizeof format.bmiHeader;
    format.bmiHeader.biWidth = (LONG)screen->width;
    format.bmiHeader.biHeight = -HEIGHT;
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 32;
}

static void line(int32_t x0, int32_t y0, int32_t x1, int32_t y1)
{
    rs.vertex[0].x = x0, rs.vertex[0].y = y0;
    rs.vertex[1].x = x1, rs.vertex[1].y = y1;
    SearchDrawFunc(CreateDrawCode())();
}

static void draw(void)
{
    static const uint32_t ground[] = {0xFF102040, 0xFF8040A0, 0xFF2080C0, 0xFFF0C060};
    memcpy(rs.color, ground, sizeof ground);
    SetShapeMode(NINEFOLD_SHAPE_RECTANGLE), SetFilterMode(NINEFOLD_FILTER_GOURAUD), SetBlendMode(NINEFOLD_BLEND_COPY);
    line(0, 0, WIDTH, HEIGHT); /* its corners are two vertices too */

    rs.color[0] = 0xFFFFFFFF;
    SetShapeMode(NINEFOLD_SHAPE_LINE), SetFilterMode(NINEFOLD_FILTER_FLAT);
    line(0, crossY, WIDTH, crossY), line(crossX, 0, crossX, HEIGHT);
}

static LRESULT CALLBACK onMessage(HWND window, UINT message, WPARAM w, LPARAM l)
{
    if (message == WM_DESTROY)
        PostQuitMessage(0);
    else if (message == WM_LBUTTONDOWN)
        crossX = (short)LOWORD(l), crossY = (short)HIWORD(l);
    else if (message == WM_KEYDOWN) {
        crossX += STEP * ((w == VK_RIGHT) - (w == VK_LEFT));
        crossY += STEP * ((w == VK_DOWN) - (w == VK_UP));
    } else if (message == WM_PAINT) {
        PAINTSTRUCT paint;
        const HDC context = BeginPaint(window, &paint);
        draw();
        SetDIBitsToDevice(context, 0, 0, WIDTH, HEIGHT, 0, 0, 0, HEIGHT, screen->pixels, &format, DIB_RGB_COLORS);
        EndPaint(window, &paint);
    } else
        return DefWindowProcA(window, message, w, l);
    return 0;
}

/* A bitmap file is the format's header and the rows as they are. */
static int writePicture(const char *path)
{
    BITMAPFILEHEADER header = {.bfType = 0x4D42, .bfOffBits = sizeof header + sizeof format.bmiHeader};
    FILE *file = fopen(path, "wb");
    draw();
    format.bmiHeader.biWidth = WIDTH;
    header.bfSize = header.bfOffBits + WIDTH * HEIGHT * 4;
    int good = file && fwrite(&header, sizeof header, 1, file) && fwrite(&format.bmiHeader, sizeof format.bmiHeader, 1, file);
    for (int y = 0; good && y < HEIGHT; ++y)
        good = fwrite(screen->pixels + (y << screen->log2Width), 4, WIDTH, file) == WIDTH;
    if (file && fclose(file))
        good = 0;
    if (!good)
        fprintf(stderr, "win32: cannot write %s\n", path);
    return !good;
}

int main(int argc, char **argv)
{
    int frames = 0;
    const char *picture = NULL;
    for (int i = 1; i < argc; i += 2) {
        if (i + 1 < argc && !strcmp(argv[i], "--picture"))
            picture = argv[i + 1];
        else if (i + 1 < argc && !strcmp(argv[i], "--frames"))
            frames = atoi(argv[i + 1]);
        else
            return fprintf(stderr, "usage: win32 [--frames N] [--picture FILE.bmp]\n"), strcmp(argv[i], "--help") ? 2 : 0;
    }
    start();
    if (picture)
        return writePicture(picture);

    const WNDCLASSA class = {.lpfnWndProc = onMessage,
                             .hInstance = GetModuleHandleA(NULL),
                             .hCursor = LoadCursorA(NULL, (LPCSTR)IDC_ARROW),
                             .lpszClassName = "ninefold"};
    const DWORD style = WS_OVERLAPPEDWINDOW & ~(WS_THICKFRAME | WS_MAXIMIZEBOX);
    RECT outer = {0, 0, WIDTH, HEIGHT};
    AdjustWindowRect(&outer, style, FALSE);
    RegisterClassA(&class);
    const HWND window = CreateWindowA("ninefold", "win32", style | WS_VISIBLE, CW_USEDEFAULT, CW_USEDEFAULT,
                                      outer.right - outer.left, outer.bottom - outer.top, NULL, NULL, class.hInstance, NULL);
    if (!window)
        return fprintf(stderr, "win32: no window, error %lu\n", GetLastError()), 1;
    for (int frame = 0; !frames || frame < frames; ++frame) {
        for (MSG message; PeekMessageA(&message, NULL, 0, 0, PM_REMOVE);) {
            if (message.message == WM_QUIT)
                return 0;
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        InvalidateRect(window, NULL, FALSE);
        Sleep(1000 / 60);
    }
    return 0;
}
