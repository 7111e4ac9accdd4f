# Misuse of the interface for C++ doesn't compile, and the compiler says why in the words of misuse.cpp.
#
#   COMPILER, SOURCE, INCLUDE   the compiler, misuse.cpp, the folder of the headers
file(READ ${SOURCE} text)
string(REGEX MATCHALL "CASE == [0-9]+[^/]*// [^\n]+" cases "${text}")
foreach(case IN LISTS cases)
    string(REGEX MATCH "CASE == ([0-9]+).*// ([^\n]+)" case "${case}")
    set(number ${CMAKE_MATCH_1})
    set(words "${CMAKE_MATCH_2}")
    execute_process(COMMAND ${COMPILER} -std=c++17 -fsyntax-only -D CASE=${number} -I ${INCLUDE} ${SOURCE}
        RESULT_VARIABLE status ERROR_VARIABLE errors)
    if(number EQUAL 0)
        if(NOT status EQUAL 0)
            message(FATAL_ERROR "what is right doesn't compile:\n${errors}")
        endif()
    elseif(status EQUAL 0 OR NOT errors MATCHES "${words}")
        message(FATAL_ERROR "case ${number} ended with ${status} and without \"${words}\":\n${errors}")
    endif()
endforeach()
list(LENGTH cases count)
if(count LESS 10)
    message(FATAL_ERROR "only ${count} cases were found")
endif()
