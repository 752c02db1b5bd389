set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
# 64-bit Wine takes such a program, runs nothing and reports success: tests are run by hand where a 32-bit one is at hand.
