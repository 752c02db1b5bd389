#include "library.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace capture {

Library &Library::linked()
{
    static Library *const one = [] {
        auto *const made = new Library;
        made->renderState = &rs;
        made->search = own_SearchDrawFunc;
#define NINEFOLD_DRAW(name) made->named.push_back(own_##name);
        NINEFOLD_NAMED_DRAWS(NINEFOLD_DRAW)
#undef NINEFOLD_DRAW
        // By the exports, so that the twin's rules know of it.
        MakeUVLShiftTable(), MakeShaheiRunlengthTbl(), MakeDrawFuncTable(), MakeDrawMaskTable();
        made->own = std::make_unique<Operators>(
            Operators::Setters{&rs, own_SetBlendMode, own_SetBlendModeMulti, own_SetPrescaleMultiMode});
        made->kernels.resize(layer::recordCount);
        return made;
    }();
    return *one;
}

std::unique_ptr<Library> Library::of(const Exports &exports)
{
    std::unique_ptr<Library> library(new Library);
    library->renderState = exports.state;
    library->search = exports.search;
    library->named = exports.named;
    library->own = std::make_unique<Operators>(Operators::Setters{exports.state, exports.blend, exports.multi, exports.bank});
    library->kernels.resize(layer::recordCount);
    return library;
}

void *Library::find(const char *name) const
{
#ifdef _WIN32
    return module ? reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(module), name)) : nullptr;
#else
    return module ? dlsym(module, name) : nullptr;
#endif
}

std::unique_ptr<Library> Library::load(const std::string &path, std::string &error)
{
    std::unique_ptr<Library> library(new Library);
#ifdef _WIN32
    HMODULE module = LoadLibraryA(path.c_str());
    library->module = module;
    if (!module)
        error = "cannot load " + path + ": error " + std::to_string(GetLastError());
    const auto find = [&](const char *name) { return reinterpret_cast<void *>(GetProcAddress(module, name)); };
#else
    // A path without a slash would be looked for among the system's libraries.
    library->module = dlopen(path.find('/') == std::string::npos ? ("./" + path).c_str() : path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library->module)
        error = std::string("cannot load ") + dlerror();
    const auto find = [&](const char *name) { return dlsym(library->module, name); };
#endif
    if (!library->module)
        return nullptr;
    bool all = true;
    const auto get = [&](auto &function, const char *name) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(find(name));
        if (!function && all) {
            all = false;
            error = path + " lacks " + name;
        }
    };
    get(library->renderState, "rs");
    get(library->search, "SearchDrawFunc");
    DrawFunc draw;
#define NINEFOLD_DRAW(name) get(draw, #name), library->named.push_back(draw);
    NINEFOLD_NAMED_DRAWS(NINEFOLD_DRAW)
#undef NINEFOLD_DRAW
    for (const char *const name : {"MakeUVLShiftTable", "MakeShaheiRunlengthTbl", "MakeDrawFuncTable", "MakeDrawMaskTable"}) {
        get(draw, name);
        if (draw)
            draw();
    }
    Operators::Setters setters{library->renderState, nullptr, nullptr, nullptr};
    get(setters.blend, "SetBlendMode");
    get(setters.multi, "SetBlendModeMulti");
    get(setters.bank, "SetPrescaleMultiMode");
    if (!all)
        return nullptr;
    library->own = std::make_unique<Operators>(setters);
    library->kernels.resize(layer::recordCount);
    return library;
}

// A loaded library stays: it may have started what cannot be ended.
Library::~Library() = default;

DrawFunc Library::kernel(layer::Id id)
{
    if (!layer::isRecord(id))
        return named[id - layer::recordCount];
    DrawFunc &kernel = kernels[id];
    if (!kernel)
        kernel = search(layer::codeOf(id));
    return kernel;
}

} // namespace capture
