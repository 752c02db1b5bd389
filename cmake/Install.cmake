include(CMakePackageConfigHelpers)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ninefold DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/ninefold)
# An export each: what the static library needs of its users is nothing to those of the shared one.
foreach(library ninefold ninefold_static)
    install(TARGETS ${library} EXPORT ${library} INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    install(EXPORT ${library} FILE ${library}.cmake NAMESPACE ninefold:: DESTINATION ${package_directory})
endforeach()

# What the static library is linked with, the runtime of C++ for hosts in C.
set(pc_libraries_private "-lstdc++ -lm")
if(NINEFOLD_GLYPHS AND WIN32)
    string(PREPEND pc_libraries_private "-lgdi32 -luser32 ")
elseif(NINEFOLD_GLYPHS)
    set(pc_requires_private "freetype2 fontconfig")
endif()
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ninefoldConfig.cmake.in ${PROJECT_BINARY_DIR}/ninefoldConfig.cmake
    INSTALL_DESTINATION ${package_directory} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ninefoldConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ninefoldConfig.cmake ${PROJECT_BINARY_DIR}/ninefoldConfigVersion.cmake
    DESTINATION ${package_directory})

# Paths in the .pc file follow the file, so that the installed tree can be moved.
file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(directory INCLUDEDIR LIBDIR)
    set(pc_${directory} "\${prefix}")
    cmake_path(APPEND pc_${directory} ${CMAKE_INSTALL_${directory}})
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/cmake/ninefold.pc.in ${PROJECT_BINARY_DIR}/ninefold.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ninefold.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
