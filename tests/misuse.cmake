# Misuse that doesn't compile: for each line of the source with a comment, the compiler has to say the words of the comment.
#
#   COMPILER, STANDARD, INCLUDE, SOURCE   the compiler, its -std, folders of headers, the source
#   COUNT                                 of lines with a comment, at least
cmake_minimum_required(VERSION 3.25)
list(TRANSFORM INCLUDE PREPEND -I)
execute_process(COMMAND ${COMPILER} -std=${STANDARD} -fsyntax-only ${INCLUDE} ${SOURCE} ERROR_VARIABLE errors)
file(STRINGS ${SOURCE} lines REGEX ";  +//")
list(LENGTH lines count)
if(count LESS COUNT)
    message(FATAL_ERROR "only ${count} lines were found")
endif()
foreach(line IN LISTS lines)
    string(REGEX REPLACE ".*//" "" words "${line}")
    string(STRIP "${words}" words)
    if(NOT errors MATCHES "(error|note)[^\n]*${words}")
        message(SEND_ERROR "nothing says \"${words}\"")
    endif()
endforeach()
