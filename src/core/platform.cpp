#include "core/platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#if defined(_WIN32)
#include <malloc.h>
#else
#define O_BINARY 0
#endif
#if !defined(O_CLOEXEC)
#define O_CLOEXEC 0
#endif

namespace ninefold {
namespace {

constexpr size_t cacheLine = 64;

struct File {
    int handle;
    ~File()
    {
        if (handle >= 0)
            close(handle);
    }
};

} // namespace

void *allocateAligned(size_t bytes)
{
#if defined(_WIN32)
    return _aligned_malloc(bytes, cacheLine);
#else
    void *memory = nullptr;
    return posix_memalign(&memory, cacheLine, bytes) == 0 ? memory : nullptr;
#endif
}

void freeAligned(void *memory)
{
#if defined(_WIN32)
    _aligned_free(memory);
#else
    free(memory);
#endif
}

bool readFile(const char *path, FileBytes &bytes)
{
    const File file{open(path, O_RDONLY | O_BINARY | O_CLOEXEC)};
    struct stat status {};
    if (file.handle < 0 || fstat(file.handle, &status) != 0 || S_ISDIR(status.st_mode)) // open() grants directories
        return false;

    const auto size = static_cast<size_t>(std::max<int64_t>(status.st_size, 0));
    bytes.data.reset(new uint8_t[size]);
    bytes.size = 0;
    while (bytes.size < size) {
        constexpr size_t most = size_t{1} << 30; // more than this in one call is not portable
        const auto got =
            read(file.handle, bytes.data.get() + bytes.size, static_cast<unsigned>(std::min(size - bytes.size, most)));
        if (got > 0)
            bytes.size += static_cast<size_t>(got);
        else if (got == 0 || errno != EINTR)
            break;
    }
    return true;
}

} // namespace ninefold
