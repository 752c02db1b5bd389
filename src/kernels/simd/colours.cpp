// Fronts and seconds of colours.
#include "kernels/simd/colours.h"
#include "kernels/simd/front.h"

namespace ninefold::NINEFOLD_SET {

NINEFOLD_READING(Reading::flat)
NINEFOLD_READING(Reading::gouraud)
NINEFOLD_READING(Reading::corners)

} // namespace ninefold::NINEFOLD_SET
