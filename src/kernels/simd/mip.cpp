// Fronts and seconds on mip levels.
#include "kernels/simd/mip.h"
#include "kernels/simd/front.h"

namespace ninefold::NINEFOLD_SET {

NINEFOLD_READING(Reading::firstTexel)
NINEFOLD_READING(Reading::mipMix)
NINEFOLD_READING(Reading::mipNext)
NINEFOLD_READING(Reading::mipBilinear)

} // namespace ninefold::NINEFOLD_SET
