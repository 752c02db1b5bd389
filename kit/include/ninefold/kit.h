/*
 * The kit: what nearly every host of Ninefold would otherwise write itself. One include for all of it, and for the library.
 *
 * kit/screen.h starts the library and makes screens; kit/draws.h has each common draw in one call; kit/pictures.h loads and saves
 * picture files; kit/text.h writes text; kit/show.h copies a screen to a window; kit/codes.h explains draw codes; kit/state.h
 * describes the library's records for other languages. kit.hpp is a layer of owning handles for C++.
 *
 * Unlike the library the kit checks its arguments. A function that fails returns null or 0, changes nothing, and leaves a text for
 * nfkError (kit/api.h). Like the library it is used from one thread; only error texts are kept for each.
 */
#ifndef NINEFOLD_KIT_H
#define NINEFOLD_KIT_H

#include <ninefold/kit/api.h>
#include <ninefold/kit/codes.h>
#include <ninefold/kit/draws.h>
#include <ninefold/kit/pictures.h>
#include <ninefold/kit/screen.h>
#include <ninefold/kit/show.h>
#include <ninefold/kit/state.h>
#include <ninefold/kit/text.h>

#endif
