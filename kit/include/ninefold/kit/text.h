#ifndef NINEFOLD_KIT_TEXT_H
#define NINEFOLD_KIT_TEXT_H

#include <ninefold/kit/api.h>

#endif
