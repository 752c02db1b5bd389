#ifndef NINEFOLD_KIT_DRAWS_H
#define NINEFOLD_KIT_DRAWS_H

#include <ninefold/kit/api.h>

#endif
