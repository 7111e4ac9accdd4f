# Runs the commands of a page in order, in a fresh folder that holds its programs and files, and compares what they
# print.
#
#   PAGE        the page
#   PROGRAMS    the folder of its programs; DIRECTORY: the folder to run in
#   AVAILABLE   what "<!-- run: WHAT -->" can ask for
#   JAR         may be empty
#   INSTALLED   may be empty; where the library has been installed, and INSTALLED_LIBRARIES in there: the commands can
#               build with it
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/page.cmake)

file(REMOVE_RECURSE ${DIRECTORY})
file(MAKE_DIRECTORY ${PROGRAMS})
file(COPY ${PROGRAMS}/ DESTINATION ${DIRECTORY})
if(JAR)
    file(COPY ${JAR} DESTINATION ${DIRECTORY})
endif()
if(INSTALLED)
    set(ENV{PKG_CONFIG_PATH} ${INSTALLED_LIBRARIES}/pkgconfig)
    set(ENV{CMAKE_PREFIX_PATH} ${INSTALLED})
    set(ENV{LD_LIBRARY_PATH} ${INSTALLED_LIBRARIES})
endif()

# Sets `result` to a regular expression for the text, in which "..." is anything within a line.
function(expression result text)
    string(REGEX REPLACE "([][+.*()^$?\\|{}])" "\\\\\\1" text "${text}")
    string(REPLACE "\\.\\.\\." "[^\n]*" text "${text}")
    set(${result} "^${text}$" PARENT_SCOPE)
endfunction()

guide_read_page(${PAGE})
if(BLOCK_COUNT EQUAL 0)
    message(FATAL_ERROR "${PAGE} has nothing to run")
endif()
set(printed)
set(ran FALSE)
math(EXPR last "${BLOCK_COUNT} - 1")
foreach(i RANGE ${last})
    set(name "${BLOCK_${i}_NAME}")
    set(text "${BLOCK_${i}_TEXT}")
    if(BLOCK_${i}_KIND MATCHES "program|file")
        file(WRITE ${DIRECTORY}/${name} "${text}")
    elseif(BLOCK_${i}_KIND STREQUAL "run")
        set(ran FALSE)
        if(name AND NOT name IN_LIST AVAILABLE)
            message(STATUS "Left out, there is no ${name} here:\n${text}")
            continue()
        endif()
        execute_process(COMMAND sh -ec "${text}" WORKING_DIRECTORY ${DIRECTORY}
            RESULT_VARIABLE status OUTPUT_VARIABLE printed ERROR_VARIABLE errors)
        if(NOT status EQUAL 0)
            message(FATAL_ERROR "${text}\nended with ${status}:\n${printed}${errors}")
        endif()
        set(ran TRUE)
    elseif(BLOCK_${i}_KIND STREQUAL "output" AND ran)
        expression(expected "${text}")
        if(NOT printed MATCHES "${expected}")
            message(FATAL_ERROR "The page says\n${text}\nand the commands printed\n${printed}")
        endif()
    endif()
endforeach()
