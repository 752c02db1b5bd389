// The buffers that all contenders share.
#pragma once

#include "bench.h"

namespace bench {

struct Surface {
    uint32_t *pixels;
    int width, height;
};

// Instead of noise, a picture without zeros that changes slowly, so that a result half a texel off still compares.
void useSmoothPictures();

Texture *frameBuffer();
Surface frame();
void fillFrame();

Texture *texture(Content content, int size);
Surface straight(Content content, int size);
Surface premultiplied(Content content, int size); // the same picture with colours times alpha

Texture *ruleTexture(int value); // of the frame's size, every rule value the same

void seed(); // anew for every job, so that jobs do not hang on each other
int random(int bound); // 0 to bound - 1

} // namespace bench
