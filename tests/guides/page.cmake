# Takes the code blocks out of a page. The line before a block, a comment that readers don't see, says what it is:
#
#   <!-- program: name.c -->   a whole program in C, C++ or Java; the text before it names `name.c`
#   <!-- file: name -->        a file that the commands need; named in the text as well
#   <!-- run -->               commands, which have to succeed; <!-- run: WHAT --> only where WHAT is there
#   <!-- output -->            what the commands before it print; "..." stands for any text within a line
#   <!-- fragment -->          code that is no program
#
# Without one, a block is only shown; code in C, C++ and Java has to have one.

# Sets BLOCK_COUNT, and BLOCK_<i>_KIND, BLOCK_<i>_NAME and BLOCK_<i>_TEXT of each block that has such a line.
function(guide_read_page page)
    file(READ ${page} text)
    set(count 0)
    while(TRUE)
        string(FIND "${text}" "\n```" at)
        if(at EQUAL -1)
            break()
        endif()
        string(SUBSTRING "${text}" 0 ${at} before)
        string(SUBSTRING "${text}" ${at} -1 text)
        if(NOT text MATCHES "^\n```([a-z]*)\n")
            message(FATAL_ERROR "${page}: a block begins or ends in an unusual way")
        endif()
        set(language "${CMAKE_MATCH_1}")
        string(LENGTH "${CMAKE_MATCH_0}" length)
        string(SUBSTRING "${text}" ${length} -1 text)
        string(FIND "${text}" "\n```\n" at)
        if(at EQUAL -1)
            message(FATAL_ERROR "${page}: a block has no end")
        endif()
        string(SUBSTRING "${text}" 0 ${at} block)
        math(EXPR at "${at} + 4")
        string(SUBSTRING "${text}" ${at} -1 text)

        if(before MATCHES "\n<!-- (program|file|run|output|fragment)(: ([A-Za-z0-9_.]+))? -->$")
            set(BLOCK_${count}_KIND ${CMAKE_MATCH_1} PARENT_SCOPE)
            set(BLOCK_${count}_NAME "${CMAKE_MATCH_3}" PARENT_SCOPE)
            set(BLOCK_${count}_TEXT "${block}\n" PARENT_SCOPE)
            string(FIND "${before}" "`${CMAKE_MATCH_3}`" named)
            if(named EQUAL -1 AND CMAKE_MATCH_1 MATCHES "program|file")
                message(FATAL_ERROR "${page}: the text before this block doesn't name its file:\n${block}")
            endif()
            math(EXPR count "${count} + 1")
        elseif(language MATCHES "^(c|cpp|java)$" OR before MATCHES "-->$")
            message(FATAL_ERROR "${page}: this block has no line that says what it is:\n${block}")
        endif()
    endwhile()
    set(BLOCK_COUNT ${count} PARENT_SCOPE)
endfunction()
