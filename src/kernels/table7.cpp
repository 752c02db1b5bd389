#define NINEFOLD_UNIT 7
#include "kernels/table.inc"
