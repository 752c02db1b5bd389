set(CMAKE_SYSTEM_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
# Tests run under Wine where it is installed.
find_program(WINE NAMES wine wine64 PATHS /usr/lib/wine)
if(WINE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${WINE})
endif()
