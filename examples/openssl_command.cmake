# The openssl command, for scripts that set DIRECTORY, which is emptied and is where everything runs.
# OPENSSL is false when there is no such command; GOST says whether it has the engine.
file(REMOVE_RECURSE ${DIRECTORY})
file(MAKE_DIRECTORY ${DIRECTORY})

find_program(OPENSSL openssl)
set(GOST FALSE)
if(OPENSSL)
    execute_process(COMMAND ${OPENSSL} engine gost RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
    if(result EQUAL 0)
        set(GOST TRUE)
    endif()
    # The engine comes by configuration, as not every subcommand uses one that it is given.
    set(engines)
    if(GOST)
        set(engines "engines = engines\n[engines]\ngost = gost\n[gost]\ndefault_algorithms = ALL\n")
    endif()
    file(WRITE ${DIRECTORY}/openssl.cnf
        "openssl_conf = start\n[req]\ndistinguished_name = name\n[name]\n[start]\n${engines}")
    set(OPENSSL ${CMAKE_COMMAND} -E env OPENSSL_CONF=${DIRECTORY}/openssl.cnf ${OPENSSL})
endif()

# Runs a program, which must succeed. `said` becomes what it says.
function(run)
    execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${DIRECTORY} RESULT_VARIABLE result OUTPUT_VARIABLE output
        ERROR_VARIABLE errors)
    if(NOT result EQUAL 0)
        string(JOIN " " command ${ARGN})
        message(FATAL_ERROR "${output}${errors}${command}: ${result}")
    endif()
    set(said "${output}" PARENT_SCOPE)
endfunction()

# Runs a program, which must fail and say something that matches the pattern.
function(run_refused pattern)
    execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${DIRECTORY} RESULT_VARIABLE result OUTPUT_VARIABLE output
        ERROR_VARIABLE errors)
    if(result EQUAL 0 OR NOT "${output}${errors}" MATCHES "${pattern}")
        string(JOIN " " command ${ARGN})
        message(FATAL_ERROR "${output}${errors}${command}: ${result}, without \"${pattern}\"")
    endif()
endfunction()

function(expect_same file other)
    file(SHA256 ${DIRECTORY}/${file} sum)
    file(SHA256 ${DIRECTORY}/${other} otherSum)
    if(NOT sum STREQUAL otherSum)
        message(FATAL_ERROR "${file} isn't the same as ${other}")
    endif()
endfunction()
