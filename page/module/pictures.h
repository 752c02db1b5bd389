// The page's pictures as textures, and what its planes and tables hold. All arithmetic is in whole numbers, so that every machine
// gives the same words.
#pragma once

#include "choices.h"

#include <ninefold/ninefold.h>

#include <cstdint>

namespace page {

constexpr int screenWidth = 256, screenHeight = 192; // of all pictures that are drawn; the width is that of the frame buffer
constexpr int bufferHeight = 256;

// The file in gallery/pictures of a picture; empty: it has none.
const char *fileOf(Picture picture);

// The texture, made where it is first asked for; null where its file has not been given.
Texture *textureOf(Picture picture);

// Gives a file's pixels, straight alpha, and of the dropped picture its own; the pixels are copied.
void giveFile(const char *file, const uint32_t *pixels, uint32_t width, uint32_t height);
void giveDropped(const uint32_t *pixels, uint32_t width, uint32_t height);

void fillPlane(Plane content, uint16_t *plane);
void fillPriority(Priority content, uint8_t *priorities);
void fillTable(Table content, const Texture &picture, LineTableRecord *rows, int count);
void fillShift(Shift content, int32_t *rows);

} // namespace page
