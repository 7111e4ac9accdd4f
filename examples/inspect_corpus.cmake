# inspect, without being told the kind, gives an outline with the title to every file in the folder.
cmake_minimum_required(VERSION 3.25)

file(GLOB files ${FOLDER}/*)
set(refused)
foreach(file IN LISTS files)
    execute_process(COMMAND ${INSPECT} ${file} RESULT_VARIABLE result OUTPUT_VARIABLE outline ERROR_VARIABLE error)
    string(FIND "${outline}" "${TITLE}\n" place)
    if(NOT result EQUAL 0 OR NOT place EQUAL 0)
        message("${file}: ${result} ${error}")
        list(APPEND refused ${file})
    endif()
endforeach()

list(LENGTH files count)
message("${count} files")
if(refused OR count EQUAL 0)
    message(FATAL_ERROR "not every file gave an outline of a ${TITLE}")
endif()
