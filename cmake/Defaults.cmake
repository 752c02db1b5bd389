# What a build gets when nothing was asked for. As a subproject nothing of this is imposed on the project around.
if(NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()

get_property(multi_config GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
if(NOT multi_config AND NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

if(NOT DEFINED CMAKE_COMPILE_WARNING_AS_ERROR)
    set(CMAKE_COMPILE_WARNING_AS_ERROR ON)
endif()
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Every unit goes through a launcher that logs its seconds and peak memory, and uses ccache where it is installed.
if(CMAKE_HOST_UNIX AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${PROJECT_SOURCE_DIR}/scripts/measure ${PROJECT_BINARY_DIR}/units.log)
    set(CMAKE_C_COMPILER_LAUNCHER ${CMAKE_CXX_COMPILER_LAUNCHER})
endif()

set(NINEFOLD_SANITIZE "" CACHE STRING "Sanitizers for every target, comma-separated: address, undefined")
if(NINEFOLD_SANITIZE)
    add_compile_options(-fsanitize=${NINEFOLD_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${NINEFOLD_SANITIZE})
endif()
option(NINEFOLD_COVERAGE "Count executed lines (gcov)" OFF)
if(NINEFOLD_COVERAGE)
    add_compile_options(--coverage)
    add_link_options(--coverage)
endif()
