# Runs the velqua program once and compares what it prints with golden files
# (tests/e2e/golden/NAME.out and NAME.err, byte for byte) and its exit status
# with EXPECT_RC. Called by the tests of tools/velqua/tests/tests.cmake:
#   cmake -DVELQUA=... -DSOURCE_DIR=... -DNAME=... -DEXPECT_RC=...
#         -DARGS=a|b|c [-DINPUT=file] [-DPRODUCED=file -DPRODUCED_GOLDEN=file]
#         [-DTMP_DIR=dir (shown as <tmp> in the output)] [-DSAME_AS=OTHER]
#         -P run_case.cmake
# ARGS separates the arguments with "|" (they may contain blanks). With the
# environment variable VELQUA_E2E_BLESS=1 the goldens are (re)written instead:
# read them before committing, never bless blindly. SAME_AS compares with
# another case's goldens (never blessed): the same output from other arguments.
string(REPLACE "|" ";" arguments "${ARGS}")
set(golden_dir "${SOURCE_DIR}/tests/e2e/golden")
set(golden_name "${NAME}")
if(SAME_AS)
  set(golden_name "${SAME_AS}")
endif()
if(PRODUCED)
  file(REMOVE "${PRODUCED}")
endif()
set(input_option)
if(INPUT)
  set(input_option INPUT_FILE "${SOURCE_DIR}/${INPUT}")
endif()
execute_process(
  COMMAND "${VELQUA}" ${arguments}
  WORKING_DIRECTORY "${SOURCE_DIR}"
  ${input_option}
  OUTPUT_VARIABLE out
  ERROR_VARIABLE err
  RESULT_VARIABLE rc)

# Paths under the build's scratch folder differ from build to build.
if(TMP_DIR)
  string(REPLACE "${TMP_DIR}" "<tmp>" out "${out}")
  string(REPLACE "${TMP_DIR}" "<tmp>" err "${err}")
endif()

if("$ENV{VELQUA_E2E_BLESS}" STREQUAL "1" AND NOT SAME_AS)
  file(WRITE "${golden_dir}/${NAME}.out" "${out}")
  file(WRITE "${golden_dir}/${NAME}.err" "${err}")
  if(PRODUCED AND PRODUCED_GOLDEN AND EXISTS "${PRODUCED}")
    file(COPY_FILE "${PRODUCED}" "${SOURCE_DIR}/${PRODUCED_GOLDEN}")
  endif()
  message(STATUS "blessed ${NAME} (exit ${rc})")
  return()
endif()

set(failed FALSE)
if(NOT rc STREQUAL EXPECT_RC)
  message(SEND_ERROR "${NAME}: exit status ${rc}, expected ${EXPECT_RC}")
  set(failed TRUE)
endif()
foreach(stream out err)
  file(READ "${golden_dir}/${golden_name}.${stream}" expected)
  if(NOT "${${stream}}" STREQUAL "${expected}")
    file(WRITE "${CMAKE_CURRENT_BINARY_DIR}/${NAME}.${stream}.actual" "${${stream}}")
    message(SEND_ERROR "${NAME}: std${stream} differs from golden/${golden_name}.${stream}; "
                       "got ${CMAKE_CURRENT_BINARY_DIR}/${NAME}.${stream}.actual:\n${${stream}}")
    set(failed TRUE)
  endif()
endforeach()
if(PRODUCED)
  if(NOT EXISTS "${PRODUCED}")
    message(SEND_ERROR "${NAME}: ${PRODUCED} was not written")
  elseif(PRODUCED_GOLDEN)
    execute_process(COMMAND "${CMAKE_COMMAND}" -E compare_files "${PRODUCED}"
                            "${SOURCE_DIR}/${PRODUCED_GOLDEN}" RESULT_VARIABLE differ)
    if(differ)
      message(SEND_ERROR "${NAME}: ${PRODUCED} differs from ${PRODUCED_GOLDEN}")
    endif()
  endif()
endif()
