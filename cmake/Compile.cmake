# How targets are compiled and linked.

if(TLVFORGE_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "TLVFORGE_FUZZ needs clang: cmake --preset fuzz")
    endif()
    if(TLVFORGE_UNDEFINED)
        # clang has no library of messages for these two together, so undefined behaviour is a trap.
        add_compile_options(-fsanitize-trap=undefined)
        add_link_options(-fsanitize=leak)
    else()
        set(TLVFORGE_SANITIZE ON)
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(TLVFORGE_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
if(TLVFORGE_UNDEFINED)
    add_compile_options(-fsanitize=undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=undefined)
endif()
if(TLVFORGE_RACES)
    add_compile_options(-fsanitize=thread)
    add_link_options(-fsanitize=thread)
endif()

if(TLVFORGE_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()

# No path of the machine that builds gets into a binary.
add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}/= -ffile-prefix-map=${PROJECT_BINARY_DIR}=.)

# C++20 with every warning; CMAKE_COMPILE_WARNING_AS_ERROR makes them errors.
function(tlvforge_compile target)
    set_target_properties(${target} PROPERTIES CXX_STANDARD 20 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wpedantic)
endfunction()

function(tlvforge_compile_library target)
    tlvforge_compile(${target})
    set_target_properties(${target} PROPERTIES
        POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    # What the library calls by an exported name is its own function, so calls need no indirection.
    target_compile_options(${target} PRIVATE -fno-exceptions -fno-rtti -fno-semantic-interposition)
    target_include_directories(${target}
        PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
        PRIVATE ${PROJECT_SOURCE_DIR}/src)
endfunction()

# Links against the C library alone: with the C compiler, and with every symbol defined. The sanitizers bring libraries
# of their own and leave symbols for them to define; what is linked in of archives, as counters of lines, isn't exported.
function(tlvforge_link_library target)
    set(map ${PROJECT_SOURCE_DIR}/cmake/exports.map)
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE C LINK_DEPENDS ${map})
    if(WIN32)
        # There the headers and JNIEXPORT say what is exported, and nothing else is.
        set_target_properties(${target} PROPERTIES PREFIX "")
        target_compile_definitions(${target} PRIVATE JNIEXPORT=__declspec\(dllexport\))
        target_link_options(${target} PRIVATE -static -Wl,--no-undefined)
        return()
    endif()
    target_link_options(${target} PRIVATE
        -Wl,--version-script=${map} -Wl,--exclude-libs,ALL -Wl,-Bsymbolic-functions -Wl,--as-needed)
    if(NOT TLVFORGE_SANITIZE AND NOT TLVFORGE_UNDEFINED AND NOT TLVFORGE_RACES AND NOT TLVFORGE_COVERAGE)
        target_link_options(${target} PRIVATE -static-libgcc -Wl,-z,defs)
    endif()
endfunction()
