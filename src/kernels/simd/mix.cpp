// Fronts and seconds that mix four texels, or choose by a stipple.
#include "kernels/simd/mix.h"
#include "kernels/simd/front.h"

namespace ninefold::NINEFOLD_SET {

NINEFOLD_READING(Reading::mix3)
NINEFOLD_READING(Reading::mix4)
NINEFOLD_READING(Reading::stipple)

} // namespace ninefold::NINEFOLD_SET
