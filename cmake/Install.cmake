include(CMakePackageConfigHelpers)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ninefold DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS ninefold EXPORT ninefold INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/ninefold)
install(EXPORT ninefold FILE ninefoldConfig.cmake NAMESPACE ninefold:: DESTINATION ${package_directory})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ninefoldConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ninefoldConfigVersion.cmake DESTINATION ${package_directory})

# Paths in the .pc file follow the file, so that the installed tree can be moved.
file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(directory INCLUDEDIR LIBDIR)
    set(pc_${directory} "\${prefix}")
    cmake_path(APPEND pc_${directory} ${CMAKE_INSTALL_${directory}})
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/cmake/ninefold.pc.in ${PROJECT_BINARY_DIR}/ninefold.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ninefold.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
