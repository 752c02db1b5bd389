#define NINEFOLD_UNIT 0
#include "kernels/table.inc"
