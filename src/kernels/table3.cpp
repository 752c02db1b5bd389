#define NINEFOLD_UNIT 3
#include "kernels/table.inc"
