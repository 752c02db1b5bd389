// The table of this instruction set.
#include "kernels/set/tables.h"

namespace ninefold::NINEFOLD_SET {

constinit const SetTable set = {
    fronts.at, seconds.at, {backs.at[0], backs.at[1]}, {operators.at[0], operators.at[1]}, hostOperator, blocks.at, fusedSpans.at,
};

} // namespace ninefold::NINEFOLD_SET
