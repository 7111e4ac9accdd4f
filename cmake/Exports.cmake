# The exported names are those that the public headers declare, and the native methods of the Java bridge.

# Sets `names` to the sorted names of all functions of the headers, and writes them and the names behind `mapFile` to
# `listFile`, one a line, and to the linker's version script `mapFile`. Declarations begin a line with TLVFORGE_STATUS,
# or TLVFORGE_API and a type; the name stands on that line.
function(tlvforge_exports names listFile mapFile)
    file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/tlvforge/*.h)
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${headers})
    set(found)
    foreach(header IN LISTS headers)
        file(READ ${header} text)
        string(REGEX MATCHALL "\n[ \t]*TLVFORGE_(STATUS|API)[ \t\n]" declarations "${text}")
        string(REGEX MATCHALL "\nTLVFORGE_(STATUS|API [^\n(]*[ *]) *[A-Za-z0-9_]+\\(" heads "${text}")
        list(LENGTH declarations expected)
        list(LENGTH heads actual)
        if(NOT expected EQUAL actual)
            message(FATAL_ERROR "${header}: ${actual} of ${expected} declarations have their name on the line of the macro")
        endif()
        list(TRANSFORM heads REPLACE ".*[ *]([A-Za-z0-9_]+)\\($" "\\1")
        list(APPEND found ${heads})
    endforeach()

    list(SORT found)
    set(unique ${found})
    list(REMOVE_DUPLICATES unique)
    if(NOT unique STREQUAL found)
        message(FATAL_ERROR "a function is declared twice in include/tlvforge")
    endif()

    set(${names} ${found} PARENT_SCOPE)
    list(APPEND found ${ARGN})
    list(JOIN found "\n" lines)
    file(CONFIGURE OUTPUT ${listFile} CONTENT "@lines@\n" @ONLY)
    list(JOIN found ";\n    " lines)
    file(CONFIGURE OUTPUT ${mapFile} CONTENT "{\nglobal:\n    @lines@;\nlocal:\n    *;\n};\n" @ONLY)
endfunction()
