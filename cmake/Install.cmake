# What `cmake --install` lays out: library, headers, find_package(tlvforge) and pkg-config.
include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/tlvforge)
install(TARGETS tlvforge_64 EXPORT tlvforge-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/tlvforge DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(EXPORT tlvforge-targets NAMESPACE tlvforge:: FILE tlvforge-config.cmake DESTINATION ${packageDir})

write_basic_package_version_file(${PROJECT_BINARY_DIR}/tlvforge-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tlvforge-config-version.cmake DESTINATION ${packageDir})

file(RELATIVE_PATH TLVFORGE_PC_UP /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${CMAKE_CURRENT_LIST_DIR}/tlvforge.pc.in ${PROJECT_BINARY_DIR}/tlvforge.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tlvforge.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
