# Run by cpack on the laid out components, before they become packages: brings them into the form that Debian asks for.
cmake_minimum_required(VERSION 3.25)

macro(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endmacro()

set(staging ${CPACK_TEMPORARY_DIRECTORY})
set(library ${staging}/runtime/usr/${CPACK_TLVFORGE_LIBDIR}/${CPACK_TLVFORGE_SONAME})
run(strip --strip-unneeded --remove-section=.comment --remove-section=.note ${library})

# dpkg-shlibdeps wants a file debian/control where it runs.
set(directory ${CPACK_TOPLEVEL_DIRECTORY}/shlibdeps)
file(WRITE ${directory}/debian/control "")
# What a file of a component needs.
macro(find_dependencies COMPONENT file)
    run(dpkg-shlibdeps -O -e${file} WORKING_DIRECTORY ${directory} OUTPUT_VARIABLE depends ERROR_QUIET
        OUTPUT_STRIP_TRAILING_WHITESPACE)
    string(REGEX REPLACE "^shlibs:Depends=" "" CPACK_DEBIAN_${COMPONENT}_PACKAGE_DEPENDS "${depends}")
endmacro()
find_dependencies(RUNTIME ${library})
if(tools IN_LIST CPACK_COMPONENTS_ALL)
    set(program ${staging}/tools/usr/bin/tlvforge-inspect)
    run(strip --strip-unneeded --remove-section=.comment --remove-section=.note ${program})
    find_dependencies(TOOLS ${program})
endif()

# A jar has its version in its name. The virtual machine looks for native methods in the folder jni.
if(java IN_LIST CPACK_COMPONENTS_ALL)
    set(jars ${staging}/java/usr/share/java)
    file(RENAME ${jars}/tlvforge.jar ${jars}/tlvforge-${CPACK_PACKAGE_VERSION}.jar)
    file(CREATE_LINK tlvforge-${CPACK_PACKAGE_VERSION}.jar ${jars}/tlvforge.jar SYMBOLIC)
    set(jni ${staging}/java/usr/${CPACK_TLVFORGE_LIBDIR}/jni)
    file(MAKE_DIRECTORY ${jni})
    file(CREATE_LINK ../${CPACK_TLVFORGE_SONAME} ${jni}/libtlvforge_64.so SYMBOLIC)
endif()

# The documents of a package lie under its own name. The licence itself is on every system, copyright names it.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} COMPONENT)
    set(share ${staging}/${component}/usr/share)
    set(documents ${share}/doc/${CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME})
    if(EXISTS ${share}/doc/tlvforge)
        file(RENAME ${share}/doc/tlvforge ${documents})
    endif()
    file(REMOVE ${documents}/LICENSE)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/copyright ${documents}/copyright COPYONLY)
    file(WRITE ${documents}/changelog.Debian
        "tlvforge (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) bookworm; urgency=medium\n\n"
        "  * Packages of the release, whose changes stand with the library.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    if(EXISTS ${documents}/CHANGELOG.md)
        file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
    endif()
    file(GLOB pages ${documents}/*.md)
    foreach(page IN LISTS pages)
        file(READ ${page} text)
        string(REPLACE "](LICENSE)" "](copyright)" text "${text}")
        string(REPLACE "](CHANGELOG.md)" "](../${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME}/changelog.gz)" text "${text}")
        file(WRITE ${page} "${text}")
    endforeach()
    file(GLOB texts ${documents}/changelog* ${share}/man/man*/*.[137])
    run(gzip -9 -n ${texts})
endforeach()
