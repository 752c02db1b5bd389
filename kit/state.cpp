#include <ninefold/kit/state.h>

RenderState *nfkState(void) { return &rs; }
