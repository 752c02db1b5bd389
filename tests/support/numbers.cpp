#include "numbers.h"

#include <cctype>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

namespace support {

uint64_t numberFrom(const char *text, const char *name, uint64_t least, uint64_t most, int base)
{
    char *end = nullptr;
    errno = 0;
    const uint64_t number = std::strtoull(text, &end, base);
    if (std::isalnum(static_cast<unsigned char>(*text)) && *end == 0 && errno == 0 && number >= least && number <= most)
        return number;
    std::fprintf(stderr, "%s: '%s' is no whole number from %" PRIu64 " to %" PRIu64 "\n", name, text, least, most);
    std::exit(2);
}

uint64_t numberOfVariable(const char *name, uint64_t otherwise, uint64_t least, uint64_t most)
{
    const char *const text = std::getenv(name);
    return text == nullptr ? otherwise : numberFrom(text, name, least, most);
}

} // namespace support
