#define NINEFOLD_UNIT 6
#include "kernels/table.inc"
