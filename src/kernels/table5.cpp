#define NINEFOLD_UNIT 5
#include "kernels/table.inc"
