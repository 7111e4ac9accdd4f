# Misuse of the interface for C++ doesn't compile, and for each line the compiler says why in the words of misuse.cpp.
#
#   COMPILER, SOURCE, INCLUDE   the compiler, misuse.cpp, the folder of the headers
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${COMPILER} -std=c++17 -fsyntax-only -I ${INCLUDE} ${SOURCE} ERROR_VARIABLE errors)
file(STRINGS ${SOURCE} lines REGEX ";  +//")
list(LENGTH lines count)
if(count LESS 9)
    message(FATAL_ERROR "only ${count} lines were found")
endif()
foreach(line IN LISTS lines)
    string(REGEX REPLACE ".*//" "" words "${line}")
    string(STRIP "${words}" words)
    if(NOT errors MATCHES "(error|note)[^\n]*${words}")
        message(SEND_ERROR "nothing says \"${words}\"")
    endif()
endforeach()
