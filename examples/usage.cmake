# Every program in PROGRAMS answers --help and -h with its usage and status 0, and a command line that it can't take with
# its usage and status 2. PROGRAMS has the commands, whose words "|" separates; DIRECTORY stays empty all the while.
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE ${DIRECTORY})
file(MAKE_DIRECTORY ${DIRECTORY})

function(expect status stream)
    execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${DIRECTORY} INPUT_FILE /dev/null
        RESULT_VARIABLE actual OUTPUT_VARIABLE output ERROR_VARIABLE error)
    if(NOT actual EQUAL status OR NOT "${${stream}}" MATCHES "usage: ")
        message(SEND_ERROR "${ARGN} ended with ${actual} and said\n${output}${error}")
    endif()
endfunction()

foreach(program IN LISTS PROGRAMS)
    string(REPLACE "|" ";" command "${program}")
    expect(0 output ${command} --help)
    expect(0 output ${command} -h)
    expect(2 error ${command} --unknown)
    expect(2 error ${command} -x)
    expect(2 error ${command})
endforeach()
file(GLOB written ${DIRECTORY}/*)
if(written)
    message(FATAL_ERROR "asked for their usage, the programs wrote ${written}")
endif()
