set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
# 64-bit Wine takes such a program, runs nothing and reports success, so ctest runs none: scripts/ports and scripts/windows do, by
# scripts/wine32.
