#define NINEFOLD_UNIT 4
#include "kernels/table.inc"
