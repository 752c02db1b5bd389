/*
 * Ninefold: a software rasteriser for 32-bit ARGB pixels. One include for the whole interface.
 *
 * The host fills the global rs (render_state.h), asks for the draw code of the modes it set, looks up the kernel of that code
 * (draw_code.h) and calls it. axes.h has names for all values of the modes, texture.h makes and loads pixel surfaces, draw.h has
 * the functions that need no draw code, glyph.h rasterises text.
 *
 * Everything runs on the caller's thread: rs, the look-up's cache and the reference counts have no locks. Of every integer
 * argument the low 32 bits count. No function checks a pointer, except where its comment says so.
 */
#ifndef NINEFOLD_NINEFOLD_H
#define NINEFOLD_NINEFOLD_H

#include <ninefold/axes.h>
#include <ninefold/draw.h>
#include <ninefold/draw_code.h>
#include <ninefold/glyph.h>
#include <ninefold/render_state.h>
#include <ninefold/texture.h>

#endif
