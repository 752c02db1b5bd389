// The table of this instruction set.
#include "kernels/set/gates.h"
#include "kernels/set/tables.h"

namespace ninefold::NINEFOLD_SET {
namespace {

template <Gate g>
int refused(const Span& s, int first, int n)
{
    return refusedPixels<g>(s, first, n);
}

} // namespace

constinit const SetTable set = {
    .fronts = fronts.at,
    .seconds = seconds.at,
    .backs = {backs.at[0], backs.at[1]},
    .operators = {operators.at[0], operators.at[1]},
    .hostOperator = hostOperator,
    .blocks = blocks.at,
    .spans = fusedSpans.at,
    .refused = {nullptr, refused<Gate::plane>, refused<Gate::z>, nullptr, refused<Gate::zMask>},
#if defined(__AVX512F__)
    .upTo8 = &v3::set,
    .upTo4 = &v1::set,
#elif defined(__AVX2__)
    .upTo8 = &v3::set,
    .upTo4 = &v1::set,
#else
    .upTo8 = &v1::set,
    .upTo4 = &v1::set,
#endif
};

} // namespace ninefold::NINEFOLD_SET
