#define NINEFOLD_UNIT 2
#include "kernels/table.inc"
