# inspect gives an outline of every file in the folders.
cmake_minimum_required(VERSION 3.25)

list(TRANSFORM FOLDERS APPEND /* OUTPUT_VARIABLE patterns)
file(GLOB files ${patterns})
set(refused)
foreach(file IN LISTS files)
    execute_process(COMMAND ${INSPECT} ${file} RESULT_VARIABLE result OUTPUT_VARIABLE outline ERROR_VARIABLE error)
    if(NOT result EQUAL 0 OR outline STREQUAL "")
        message("${file}: ${result} ${error}")
        list(APPEND refused ${file})
    endif()
endforeach()

list(LENGTH files count)
message("${count} files")
if(refused OR count EQUAL 0)
    message(FATAL_ERROR "not every file gave an outline")
endif()
