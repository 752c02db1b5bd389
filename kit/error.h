// The text of the last error, kept for each thread.
#pragma once

#include <ninefold/kit/api.h>

#include <exception>
#include <new>

namespace nfk {

// Keeps a text for nfkError, cut to 1023 bytes at the end of a character. False, so that `return fail(...)` ends a function;
// `return fail(...), nullptr` ends one that returns a pointer.
[[gnu::format(printf, 1, 2), gnu::cold]] bool fail(const char *format, ...);

// What `body` returns; where it throws, fails by the exception's text, with the name of the function, and returns a zero.
template <class Body>
auto guarded(const char *function, Body &&body) -> decltype(body())
{
    try {
        return body();
    } catch (const std::bad_alloc &) {
        fail("%s: not enough memory", function);
    } catch (const std::exception &exception) {
        fail("%s: %s", function, exception.what());
    }
    return {};
}

} // namespace nfk
