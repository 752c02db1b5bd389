# WebAssembly by Debian's Emscripten. The library's four lanes are SIMD128.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
set(CMAKE_CXX_FLAGS_INIT "-msimd128 -include ${CMAKE_CURRENT_LIST_DIR}/wasm.h")
set(CMAKE_C_FLAGS_INIT -msimd128)
# The compilers of this machine are of no use to the target, nor is its test framework: that is built from source.
set(CMAKE_DISABLE_FIND_PACKAGE_GTest ON)
set(gtest_disable_pthreads ON)
set(NINEFOLD_GLYPHS OFF CACHE BOOL "")
