# What `cmake --install` lays out, in three components: runtime has the library, development the headers,
# find_package(tlvforge), pkg-config and the documents, java the jar.
include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/tlvforge)

install(TARGETS tlvforge_64 tlvforge EXPORT tlvforge-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(FILES LICENSE CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)

install(DIRECTORY include/tlvforge DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
    FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
install(EXPORT tlvforge-targets NAMESPACE tlvforge:: FILE tlvforge-config.cmake DESTINATION ${packageDir}
    COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tlvforge-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tlvforge-config-version.cmake DESTINATION ${packageDir} COMPONENT development)

file(RELATIVE_PATH TLVFORGE_PC_UP /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" TLVFORGE_PC_UP ${TLVFORGE_PC_UP})
configure_file(${CMAKE_CURRENT_LIST_DIR}/tlvforge.pc.in ${PROJECT_BINARY_DIR}/tlvforge.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tlvforge.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(FILES README.md CONTRIBUTING.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development
    FILES_MATCHING PATTERN "*.md" PATTERN reference EXCLUDE)
install(FILES packaging/tlvforge.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT development)

if(TARGET tlvforge_jar)
    get_target_property(jar tlvforge_jar JAR)
    install(FILES ${jar} DESTINATION ${CMAKE_INSTALL_DATADIR}/java COMPONENT java)
else()
    install(CODE "message(WARNING \"tlvforge.jar is left out: this was built without a JDK\")" COMPONENT java)
endif()
