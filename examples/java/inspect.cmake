# Inspect prints the same outlines as inspect of the files that match FILES, as documents of KIND or, if it is empty, of
# any. Both refuse the same ones, with the same statuses.
cmake_minimum_required(VERSION 3.25)

file(GLOB files ${FILES})
set(kind)
if(KIND)
    set(kind --kind ${KIND})
endif()
execute_process(COMMAND ${JAVA_INSPECT} ${kind} ${files}
    RESULT_VARIABLE java_result OUTPUT_VARIABLE java_outline ERROR_VARIABLE java_errors)
execute_process(COMMAND ${INSPECT} ${kind} ${files}
    RESULT_VARIABLE result OUTPUT_VARIABLE outline ERROR_VARIABLE errors)
string(REGEX MATCHALL "status [0-9]+" errors "${errors}")
string(REGEX MATCHALL "status [0-9]+" java_errors "${java_errors}")

list(LENGTH files count)
message("${count} files")
if(NOT outline)
    message(FATAL_ERROR "there is no outline to compare")
endif()
foreach(said outline errors result)
    if(NOT "${${said}}" STREQUAL "${java_${said}}")
        file(WRITE ${DIRECTORY}/${said} "${${said}}")
        file(WRITE ${DIRECTORY}/java_${said} "${java_${said}}")
        execute_process(COMMAND diff ${said} java_${said} WORKING_DIRECTORY ${DIRECTORY})
        message(FATAL_ERROR "the two programs differ: ${DIRECTORY}/${said} and java_${said}")
    endif()
endforeach()
