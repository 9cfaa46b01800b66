# The C host and the program translate every bundled example: the rows (CSV)
# must be the same, byte for byte, but for the program's file and raw columns.
# cmake -DPROGRAM=velqua -DHOST=velqua_rows -DSOURCE_DIR=... -P same_rows.cmake
foreach(example kx-tda norstar hicom definity ip-office)
  set(dir ${SOURCE_DIR}/examples/${example})
  set(form ${dir}/${example}.cfg)
  if(NOT EXISTS ${form})
    set(form ${dir}/${example}.json)  # a form only the JSON form holds (delimited records)
  endif()
  set(extra)
  if(example STREQUAL "kx-tda")
    set(extra ${dir}/extensions.txt)
  endif()
  execute_process(COMMAND ${HOST} ${form} ${dir}/records.txt ${extra}
    OUTPUT_VARIABLE host RESULT_VARIABLE host_rc ERROR_QUIET)
  set(list_option)
  if(extra)
    set(list_option --extensions ${extra})
  endif()
  execute_process(COMMAND ${PROGRAM} translate -c ${form} ${list_option} --format csv
            ${dir}/records.txt
    OUTPUT_VARIABLE program RESULT_VARIABLE program_rc ERROR_QUIET)
  if(NOT host_rc EQUAL 0 OR NOT program_rc EQUAL 0)
    message(FATAL_ERROR "${example}: host exit ${host_rc}, program exit ${program_rc}")
  endif()
  # The host prints the call columns; the program adds, last, where a record
  # without call data came from and its text (file, raw): a call's are empty.
  string(REPLACE ",file,raw" "" program "${program}")
  string(REGEX REPLACE ",,(\r?\n)" "\\1" program "${program}")
  string(REPLACE ",${dir}/records.txt," "@@file@@" program "${program}")
  string(REGEX REPLACE "@@file@@[^\r\n]*" "" program "${program}")
  if(NOT host STREQUAL program)
    message(FATAL_ERROR "${example}: the C host's rows differ from the program's:\n${host}\n--- program:\n${program}")
  endif()
endforeach()
