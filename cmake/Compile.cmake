if(NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" OR MSVC)
    message(FATAL_ERROR "ninefold is written with the vector extensions of g++ and clang; ${CMAKE_CXX_COMPILER_ID} has none")
endif()

# ninefold_warnings: for every target of this project.
add_library(ninefold_warnings INTERFACE)
target_compile_features(ninefold_warnings INTERFACE cxx_std_20)
target_compile_options(ninefold_warnings INTERFACE -Wall -Wextra -Wshadow)

# ninefold_compile: for the library's own objects.
add_library(ninefold_compile INTERFACE)
target_link_libraries(ninefold_compile INTERFACE ninefold_warnings)
target_include_directories(ninefold_compile INTERFACE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
target_compile_definitions(ninefold_compile INTERFACE NINEFOLD_BUILD)
target_compile_options(ninefold_compile INTERFACE
    # All coordinate and pixel arithmetic wraps at 32 bits, signed or not, whatever a host passes in.
    -fwrapv
    # Hosts hand in planes, maps and pixels as memory of their own types, and vectors are loaded from arrays of words.
    -fno-strict-aliasing
    # The few computations in double must give the same bits in every instruction set, also where there is a fused multiply-add.
    -ffp-contract=off
    -fvisibility=hidden
    -fvisibility-inlines-hidden
    # Each specialisation of a table of parts or kernels is defined in a unit of its own. A warning of clang's, also in clang-tidy.
    -Wno-undefined-var-template)
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    # The catalogue and what follows from it are worked out at compile time.
    target_compile_options(ninefold_compile INTERFACE -fconstexpr-steps=16777216)
endif()

if(EMSCRIPTEN)
    # A module is linked once: with -fPIC every address would be looked up.
    set(CMAKE_CXX_COMPILE_OPTIONS_PIC "")
endif()

include(CheckCXXSourceCompiles)
check_cxx_source_compiles("#ifndef __x86_64__\n#error\n#endif\nint main() {}" NINEFOLD_X86_64)
check_cxx_source_compiles("#ifndef __i386__\n#error\n#endif\nint main() {}" NINEFOLD_X86_32)
if(NINEFOLD_X86_32)
    # x87 would carry excess precision; hosts may call with a stack that is aligned to 4 bytes only.
    target_compile_options(ninefold_compile INTERFACE -msse2 -mfpmath=sse -mstackrealign)
endif()
