#ifndef NINEFOLD_KIT_SHOW_H
#define NINEFOLD_KIT_SHOW_H

#include <ninefold/kit/api.h>

#endif
