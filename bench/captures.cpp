#include "captures.h"

#include "../layer/exports.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

namespace bench {

capture::Draws *openCapture(const std::string &path, std::string &error)
{
    static const DrawFunc named[] = {
#define BENCH_NAMED(name) name,
        NINEFOLD_NAMED_DRAWS(BENCH_NAMED)
#undef BENCH_NAMED
    };
    static const capture::Host host = {&rs, SearchDrawFunc, SetBlendMode, SetBlendModeMulti, SetPrescaleMultiMode, named};
    namespace fs = std::filesystem;
    std::error_code ignored;
    const fs::path here = fs::read_symlink("/proc/self/exe", ignored).parent_path();
    for (const char *const place : {BENCH_CAPTURES}) {
        const fs::path file = here / place;
        if (!fs::exists(file, ignored))
            continue;
        void *const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
        const auto open = library ? reinterpret_cast<decltype(&ninefoldOpenDraws)>(dlsym(library, "ninefoldOpenDraws")) : nullptr;
        if (!open) {
            error = std::string("cannot load ") + dlerror();
            return nullptr;
        }
        char words[1000];
        capture::Draws *const draws = open(path.c_str(), &host, words, sizeof words);
        if (!draws)
            error = words;
        return draws;
    }
    error =
        "captures need libninefold-captures.so, which is built where the kit, libzstd and libxxhash are there (scripts/setup kit "
        "capture) and installed with this program";
    return nullptr;
}

} // namespace bench
