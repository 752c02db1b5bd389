// Included before every unit of the WebAssembly build: what the C++ library of Debian's Emscripten does not have yet.
#pragma once

#include <bit>

#if !defined(__cpp_lib_bit_cast)
namespace std {
template <class To, class From>
constexpr To bit_cast(const From &from) noexcept
{
    return __builtin_bit_cast(To, from);
}
} // namespace std
#endif
