# Inspect prints the same outlines as inspect of the files that match FILES, as documents of KIND or, if it is empty, of
# any. Both refuse the same ones.
cmake_minimum_required(VERSION 3.25)

file(GLOB files ${FILES})
set(kind)
if(KIND)
    set(kind --kind ${KIND})
endif()
execute_process(COMMAND ${JAVA_INSPECT} ${kind} ${files}
    RESULT_VARIABLE java_result OUTPUT_VARIABLE java_outline ERROR_VARIABLE java_errors)
set(result 0)
foreach(file IN LISTS files)
    execute_process(COMMAND ${INSPECT} ${kind} ${file}
        RESULT_VARIABLE one OUTPUT_VARIABLE outline_of_one ERROR_VARIABLE errors_of_one)
    string(APPEND outline "${outline_of_one}")
    string(APPEND errors "${errors_of_one}")
    if(NOT one EQUAL 0)
        set(result ${one})
    endif()
endforeach()
# In Java it isn't known where a failure was detected.
string(REGEX REPLACE ", detected in [^\n]*" "" errors "${errors}")

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
