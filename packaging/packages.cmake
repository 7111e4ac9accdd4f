# What `cpack` makes of the installed components: for Windows an archive of all, else a Debian package of each, and what
# lies in these stands in files.txt.

if(WIN32)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_PACKAGE_FILE_NAME tlvforge-${PROJECT_VERSION}-windows-x64)
    include(CPack)
    return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET tlvforge-inspect)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(TARGET tlvforge_jar)
    list(APPEND CPACK_COMPONENTS_ALL java)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)

set(CPACK_PACKAGE_CONTACT "Maintainers of tlvforge <maintainers@tlvforge.example>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE tlvforge)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Each package depends on exactly its own version of the library. What that needs is found when the packages are made.
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_JAVA_DEPENDS runtime)
set(CPACK_DEBIAN_JAVA_PACKAGE_DEPENDS "default-jre-headless (>= 2:1.17) | java17-runtime-headless")

# Each has a first line of its own; CPack would put the project's before it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
function(describe COMPONENT name section summary text)
    set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME ${name} PARENT_SCOPE)
    set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_SECTION ${section} PARENT_SCOPE)
    string(JOIN "\n" description
        "object model of the documents of a PKI - ${summary}"
        "Trees of plain records are read from BER or DER, changed and written again:"
        "certificates, CRLs, requests, CMS and CAdES messages, OCSP, time-stamps."
        "."
        ${text})
    set(CPACK_DEBIAN_${COMPONENT}_DESCRIPTION "${description}" PARENT_SCOPE)
endfunction()
describe(RUNTIME libtlvforge-64 libs "library" "This is the shared library.")
describe(DEVELOPMENT libtlvforge-dev libdevel "headers"
    "These are the headers and the files for CMake and pkg-config.")
describe(TOOLS tlvforge-tools utils "tlvforge-inspect"
    "This is the program that prints outlines of documents, with the library inside.")
describe(JAVA libtlvforge-java java "Java class" "Each function of the library is a native method of the class.")

# CPack's own search for shared libraries would add scripts that call ldconfig, where Debian has a trigger.
set(soname libtlvforge_64.so.${PROJECT_VERSION_MAJOR})
set(control ${PROJECT_BINARY_DIR}/packaging)
file(WRITE ${control}/triggers "activate-noawait ldconfig\n")
file(WRITE ${control}/shlibs
    "libtlvforge_64 ${PROJECT_VERSION_MAJOR} ${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${control}/triggers ${control}/shlibs)

set(CPACK_TLVFORGE_LIBDIR ${CMAKE_INSTALL_LIBDIR})
set(CPACK_TLVFORGE_SONAME ${soname})
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
include(CPack)
