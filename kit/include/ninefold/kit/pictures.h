#ifndef NINEFOLD_KIT_PICTURES_H
#define NINEFOLD_KIT_PICTURES_H

#include <ninefold/kit/api.h>

#endif
