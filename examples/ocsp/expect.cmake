# What the last run said has to contain a text.
function(expect text)
    string(FIND "${said}" "${text}" place)
    if(place EQUAL -1)
        message(FATAL_ERROR "\"${text}\" is missing in\n${said}")
    endif()
endfunction()
