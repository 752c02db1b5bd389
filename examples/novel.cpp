// A scene of a visual novel: two pictures, a transition along a rule picture, and a text box whose rimmed text writes itself. A
// click, or the space bar, goes on.
//
//     c++ -std=c++17 novel.cpp $(pkg-config --cflags --libs ninefold-kit sdl2) -o novel

#include "window.h"

#include <ninefold/kit.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>

namespace {

constexpr int32_t width = 640, height = 480, seconds = 60; // frames
constexpr NfkRect all{0, 0, width, height}, box{24, 336, width - 48, 120};

struct Line {
    int picture; // before which it is said
    const char *text;
};
constexpr Line lines[] = {
    {0, "The café was empty. One cup of コーヒー, still warm."},
    {0, "Somebody had left in a hurry. On the saucer: three ginger hairs."},
    {1, "“You took your time,” said the cat. «Кофе остыл.»"},
    {0, "And I knew that I would never drink that coffee."},
};
constexpr int lineCount = sizeof lines / sizeof *lines;

// A rule picture: rings around the middle, the brightest, which comes first. Its values are the low bytes.
nfk::Texture rings()
{
    nfk::Texture rule(256, 256);
    for (int32_t y = 0; y < 256; ++y)
        for (int32_t x = 0; x < 256; ++x) {
            const double distance = std::hypot(x - 128, y - 128) / 182;
            const double wave = std::sin(distance * 40) * 0.12;
            rule.row(y)[x] = 0xFF000000 | static_cast<uint32_t>(255 * std::clamp(1 - distance + wave, 0.0, 1.0));
        }
    return rule;
}

// The scene: which line is said, and when its text and its picture began to appear.
struct Scene {
    int line = 0, textFrame = 0, pictureFrame = -seconds;

    int length() const { return static_cast<int>(std::strlen(lines[line].text)); }
    bool wiping(int frame) const { return frame < pictureFrame + seconds; }
    int bytes(int frame) const { return frame - textFrame; } // a byte a frame
    bool written(int frame) const { return bytes(frame) >= length(); }

    // Ends what is going on, or goes on to the next line.
    void click(int frame)
    {
        if (wiping(frame)) {
            pictureFrame = frame - seconds;
            textFrame = frame;
        } else if (!written(frame)) {
            textFrame = frame - length();
        } else {
            const int before = lines[line].picture;
            line = (line + 1) % lineCount;
            textFrame = frame;
            if (lines[line].picture != before) {
                pictureFrame = frame;
                textFrame = frame + seconds;
            }
        }
    }
};

void play(Window &window)
{
    const nfk::Texture pictures[] = {nfk::Texture(loadPicture(&window, "coffee", NFK_PICTURE_EDGE, 0)),
                                     nfk::Texture(loadPicture(&window, "cat", NFK_PICTURE_EDGE, 0))};
    const nfk::Texture rule = rings();
    nfk::Font font("DejaVu Sans:bold", 22);
    NfkTextStyle style{};
    style.color = 0xFFFFFFFF, style.rimColor = 0xFF402010, style.rim = 3, style.width = box.width - 40;
    NfkOptions still = nfkOptions(), smooth = nfkOptions();
    still.filter = smooth.filter = NINEFOLD_FILTER_BILINEAR;
    still.blend = NINEFOLD_BLEND_COPY;

    Scene scene;
    SDL_Event event;
    while (beginFrame(&window)) {
        const int frame = window.frame;
        while (nextEvent(&window, &event))
            if (event.type == SDL_MOUSEBUTTONDOWN || (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_SPACE))
                scene.click(frame);

        const int now = lines[scene.line].picture;
        if (scene.wiping(frame)) {
            const float t = static_cast<float>(frame - scene.pictureFrame) / seconds;
            nfk::checked(nfkPicture(pictures[1 - now], &all, nullptr, &still));
            nfk::checked(nfkTransition(pictures[now], &all, nullptr, rule, t, 48, &smooth));
            continue;
        }
        nfk::checked(nfkPicture(pictures[now], &all, nullptr, &still));

        // The box: dark, see-through, darker below, with a light edge.
        constexpr uint32_t shades[] = {0x80201008, 0x80201008, 0xE0201008, 0xE0201008};
        nfk::checked(nfkGradient(&box, shades, nullptr));
        const NfkPoint edge[] = {
            {box.x, box.y}, {box.x + box.width, box.y}, {box.x, box.y + box.height}, {box.x + box.width, box.y + box.height}};
        constexpr uint32_t light[] = {0xFFE0C8A0, 0xFFE0C8A0};
        nfk::checked(nfkLines(2, edge, light, nullptr));

        nfk::Text text(font, lines[scene.line].text, &style);
        text.draw(box.x + 20, box.y + 16, 255, scene.bytes(frame));
        if (scene.written(frame) && frame / 30 % 2 == 0)
            font.write("▼", box.x + box.width - 36, box.y + box.height - 34, &style);
    }
}

} // namespace

int main(int argc, char **argv)
{
    Window window;
    if (!openWindow(&window, "novel", width, height, argc, argv))
        return window.status;
    try {
        play(window);
    } catch (const std::exception &error) {
        failed(&window, error.what());
    }
    return closeWindow(&window);
}
