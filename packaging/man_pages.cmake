# Writes the manual pages of the velqua program from its --help (help2man):
# velqua.1.gz, and velqua-COMMAND.1.gz for every command `velqua --help`
# lists, so that a command added to the program gets its page. Compressed as
# Debian keeps manual pages (gzip -9n: no name, no time stamp).
#   cmake -DVELQUA=program -DVERSION=x.y.z -DOUTPUT_DIR=dir -P man_pages.cmake
find_program(HELP2MAN help2man REQUIRED)
find_program(GZIP gzip REQUIRED)
file(MAKE_DIRECTORY ${OUTPUT_DIR})

# help2man titles a page by its program's first word; a command's page is
# titled by its own name (VELQUA-IMPORT), as `man velqua-import` finds it.
function(man_page program title summary output)
  execute_process(
    COMMAND ${HELP2MAN} --no-info --section=1 --version-string=${VERSION} --name=${summary}
            --source=Velqua --manual=Velqua ${program}
    OUTPUT_VARIABLE page RESULT_VARIABLE rc ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "help2man ${program}: ${err}")
  endif()
  string(REGEX REPLACE "\n\\.TH [A-Z]+ " "\n.TH ${title} " page "${page}")
  string(TOLOWER "${title}" name)  # and named so in NAME, for whatis and apropos
  string(REGEX REPLACE "\n\\.SH NAME\n[^\n]* \\\\- " "\n.SH NAME\n${name} \\\\- " page "${page}")
  file(WRITE ${output} "${page}")
  execute_process(COMMAND ${GZIP} -9nf ${output} RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "gzip ${output} failed")
  endif()
endfunction()

execute_process(COMMAND ${VELQUA} --help OUTPUT_VARIABLE help RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${VELQUA} --help failed")
endif()
string(REGEX MATCH "^[^\n]*" summary "${help}")
string(REGEX REPLACE "^velqua: " "" summary "${summary}")
man_page("${VELQUA}" VELQUA "${summary}" ${OUTPUT_DIR}/velqua.1)

# The commands: the lines "  name   what it does" under SUBCOMMANDS:.
string(REGEX REPLACE ".*\n(SUBCOMMANDS|Subcommands):\n" "" commands "${help}")
string(REPLACE ";" "," commands "${commands}")  # a CMake list is ;-separated
string(REPLACE "\n" ";" commands "${commands}")
set(count 0)
foreach(line IN LISTS commands)
  if(NOT line MATCHES "^  ([a-z][a-z0-9-]*) +(.+)$")
    break()
  endif()
  set(name ${CMAKE_MATCH_1})
  set(what ${CMAKE_MATCH_2})
  string(TOUPPER "VELQUA-${name}" title)
  man_page("${VELQUA} ${name}" ${title} "${what}" ${OUTPUT_DIR}/velqua-${name}.1)
  math(EXPR count "${count} + 1")
endforeach()
if(count EQUAL 0)
  message(FATAL_ERROR "no commands found in the output of ${VELQUA} --help")
endif()
