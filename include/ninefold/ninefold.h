/* Ninefold: a software rasteriser for 32-bit ARGB pixels. One include for the whole interface. */
#ifndef NINEFOLD_NINEFOLD_H
#define NINEFOLD_NINEFOLD_H

#include <ninefold/draw.h>
#include <ninefold/draw_code.h>
#include <ninefold/glyph.h>
#include <ninefold/render_state.h>
#include <ninefold/texture.h>

#endif
