// Draws states: one screen, one call of a kernel.
#pragma once

#include "state.h"

namespace page {

// The screen, screenWidth by screenHeight pixels at the top left of a frame buffer of screenWidth by bufferHeight.
uint32_t *screenPixels();
uint16_t *shaheiPlane();
uint8_t *priorityPlane();

// Fills the screen and its planes with what is there before the draw.
void clearScreen(const State &state);

// Fills rs. What it points at stays as it is until the next state.
void setState(const State &state);

// All of it: the screen before, rs, and the kernel of the state's code.
void draw(const State &state);

} // namespace page
