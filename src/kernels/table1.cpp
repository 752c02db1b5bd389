#define NINEFOLD_UNIT 1
#include "kernels/table.inc"
