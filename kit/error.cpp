#include "error.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

thread_local char text[1024];

} // namespace

const char *nfkError(void) { return text; }

bool nfk::fail(const char *format, ...)
{
    // Arguments may be parts of the text before.
    char next[sizeof text];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(next, sizeof next, format, arguments);
    va_end(arguments);
    if (length >= int(sizeof next)) {
        char *end = next + sizeof next - 1;
        // Back over the bytes of a character that was cut.
        while (end > next && (*end & 0xC0) == 0x80)
            --end;
        const char *last = end - 1;
        while (last > next && (*last & 0xC0) == 0x80)
            --last;
        const auto lead = static_cast<unsigned char>(*last);
        const int bytes = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        next[last - next + bytes <= end - next ? end - next : last - next] = 0;
    }
    std::memcpy(text, next, std::strlen(next) + 1);
    return false;
}
