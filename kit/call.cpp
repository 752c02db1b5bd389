#include "call.h"

#include "codes.h"
#include "error.h"

namespace {

void callKernel(uint32_t, DrawFunc kernel) { kernel(); }

// Found kernels, by a few bits of their codes.
struct Kept {
    uint32_t code;
    DrawFunc kernel;
} kept[256];

[[gnu::noinline]] DrawFunc lookUp(const char *function, uint32_t code, Kept &place)
{
    if (!nfk::codeExists(code)) {
        nfk::fail("%s: there is no kernel 0x%X %s: %s; nfkExplainCode says what is near", function, code,
                  nfk::valuesExist(code) ? nfk::nameOrNumber(code).c_str() : "", nfk::reasonAgainst(code).c_str());
        return nullptr;
    }
    const DrawFunc kernel = SearchDrawFunc(code);
    if (!kernel) {
        nfk::fail("%s: the library was not started; call nfkStart", function);
        return nullptr;
    }
    place = {code, kernel};
    return kernel;
}

} // namespace

NfkCaller nfk::caller = callKernel;

NfkCaller nfkSetCaller(NfkCaller caller)
{
    const NfkCaller before = nfk::caller;
    nfk::caller = caller ? caller : callKernel;
    return before;
}

DrawFunc nfk::kernelOf(const char *function, uint32_t code)
{
    Kept &place = kept[(code >> 8 ^ code >> 15 ^ code >> 20 ^ code << 6) & 255];
    return place.code == code ? place.kernel : lookUp(function, code, place);
}
