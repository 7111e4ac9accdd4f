# What `cmake --install` lays out, in four components: runtime has the library, development the headers,
# find_package(tlvforge), pkg-config and the documents, tools tlvforge-inspect, java the jar.
include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/tlvforge)

install(TARGETS tlvforge_64 tlvforge EXPORT tlvforge-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
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

# The headers lie elsewhere than in the sources, so the links of the pages to them change.
file(RELATIVE_PATH headers ${CMAKE_INSTALL_FULL_DOCDIR} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
file(GLOB pages CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} README.md CONTRIBUTING.md SECURITY.md docs/*.md)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${pages})
file(REMOVE_RECURSE ${PROJECT_BINARY_DIR}/pages)
foreach(page IN LISTS pages)
    file(READ ${page} text)
    string(REPLACE "](include/" "](${headers}/" text "${text}")
    string(REPLACE "](../include/" "](../${headers}/" text "${text}")
    file(WRITE ${PROJECT_BINARY_DIR}/pages/${page} "${text}")
endforeach()
install(DIRECTORY ${PROJECT_BINARY_DIR}/pages/ DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY docs/pictures DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT development)
# The examples of one file each, with what they include.
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development FILES_MATCHING
    PATTERN "*.cpp" PATTERN "*.h" PATTERN "*.java")
install(FILES packaging/tlvforge.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT development)
# The list of statuses is that of the headers.
set(statuses "")
file(STRINGS include/tlvforge/status.h numbers REGEX "^TLVFORGE_NUMBER.Status")
file(READ include/tlvforge/status_text.h sentences)
foreach(number IN LISTS numbers)
    string(REGEX REPLACE ".*[(](Status[A-Za-z]+), ([0-9]+)[)].*" "\\1;\\2" number "${number}")
    list(POP_FRONT number name)
    if(NOT sentences MATCHES "case ${name}: return \"([^\"]+)\"")
        message(FATAL_ERROR "status_text.h has no sentence for ${name}")
    endif()
    string(APPEND statuses ".It ${number} Dv ${name}\n${CMAKE_MATCH_1}\n")
endforeach()
string(STRIP "${statuses}" statuses)
configure_file(packaging/tlvforge-status.7.in ${PROJECT_BINARY_DIR}/tlvforge-status.7 @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tlvforge-status.7 DESTINATION ${CMAKE_INSTALL_MANDIR}/man7 COMPONENT development)

if(TARGET tlvforge-inspect)
    install(TARGETS tlvforge-inspect RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    install(FILES packaging/tlvforge-inspect.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    install(FILES tools/inspect/completion.bash RENAME tlvforge-inspect COMPONENT tools
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endif()

if(TARGET tlvforge_jar)
    get_target_property(jar tlvforge_jar JAR)
    install(FILES ${jar} DESTINATION ${CMAKE_INSTALL_DATADIR}/java COMPONENT java)
else()
    install(CODE "message(WARNING \"tlvforge.jar is left out: this was built without a JDK\")" COMPONENT java)
endif()
