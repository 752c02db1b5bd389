// Fronts and seconds of mosaics.
#include "kernels/simd/mosaic.h"
#include "kernels/simd/front.h"

namespace ninefold::NINEFOLD_SET {

NINEFOLD_READING(Reading::mosaic)

} // namespace ninefold::NINEFOLD_SET
