# What both toolchains for Windows have in common; they set the processor.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32 ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Nor does pkg-config look among this system's libraries.
if(NOT DEFINED ENV{PKG_CONFIG_LIBDIR})
    set(ENV{PKG_CONFIG_LIBDIR} /usr/${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32/lib/pkgconfig)
endif()
# GNU's take minutes for an archive of the library's objects.
foreach(tool AR RANLIB OBJCOPY)
    string(TOLOWER llvm-${tool} name)
    find_program(LLVM_${tool} ${name})
    if(LLVM_${tool})
        set(CMAKE_${tool} ${LLVM_${tool}} CACHE FILEPATH "")
    endif()
endforeach()
# Programs carry the compiler's runtime, so they run from anywhere.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
