#include "core/platform.h"

#include <algorithm>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <malloc.h>
#include <share.h>
#else
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace ninefold {
namespace {

constexpr size_t cacheLine = 64;

// An open file and its length at that time.
class File {
public:
    File(const File &) = delete;
    File &operator=(const File &) = delete;

#if defined(_WIN32)
    explicit File(const char *path)
    {
        if (_sopen_s(&handle, path, _O_RDONLY | _O_BINARY, _SH_DENYNO, 0) == 0)
            length = _filelengthi64(handle);
    }

    ~File()
    {
        if (isOpen())
            _close(handle);
    }

    int64_t read(uint8_t *to, size_t bytes) { return _read(handle, to, static_cast<unsigned>(std::min(bytes, maxRead))); }
#else
    explicit File(const char *path) : handle(open(path, O_RDONLY | O_CLOEXEC))
    {
        struct stat status;
        if (!isOpen() || fstat(handle, &status) != 0)
            return;
        if (S_ISDIR(status.st_mode)) { // which open() grants
            close(handle);
            handle = -1;
        }
        length = status.st_size;
    }

    ~File()
    {
        if (isOpen())
            close(handle);
    }

    int64_t read(uint8_t *to, size_t bytes)
    {
        ssize_t got;
        do
            got = ::read(handle, to, std::min(bytes, maxRead));
        while (got < 0 && errno == EINTR);
        return got;
    }
#endif

    bool isOpen() const { return handle >= 0; }
    size_t size() const { return static_cast<size_t>(std::max<int64_t>(length, 0)); }

private:
    static constexpr size_t maxRead = size_t{1} << 30; // more than this in one call is not portable

    int handle = -1;
    int64_t length = 0;
};

} // namespace

#if defined(_WIN32)

void *allocateAligned(size_t bytes) { return _aligned_malloc(bytes, cacheLine); }

void freeAligned(void *memory) { _aligned_free(memory); }

#else

void *allocateAligned(size_t bytes)
{
    void *memory = nullptr;
    return posix_memalign(&memory, cacheLine, bytes) == 0 ? memory : nullptr;
}

void freeAligned(void *memory) { free(memory); }

#endif

bool readFile(const char *path, FileBytes &file)
{
    File source(path);
    if (!source.isOpen())
        return false;

    file.data.reset(new uint8_t[source.size()]);
    file.size = 0;
    while (file.size < source.size()) {
        const int64_t got = source.read(file.data.get() + file.size, source.size() - file.size);
        if (got <= 0)
            break;
        file.size += static_cast<size_t>(got);
    }
    return true;
}

} // namespace ninefold
