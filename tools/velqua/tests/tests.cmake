# Tests of the velqua program, included from tools/velqua/CMakeLists.txt.
# This directory is added before the top level enables testing.
enable_testing()
find_package(GTest REQUIRED)
include(GoogleTest)

# Unit tests of the program's own parts (the capture commands' output); the
# output forms are the records layer's, tested there.
if(TARGET velqua_capture)
  add_executable(test_cli_units ${CMAKE_CURRENT_LIST_DIR}/cmd_capture_test.cpp)
  target_link_libraries(test_cli_units PRIVATE velqua_cli_core GTest::gtest_main)
  target_compile_definitions(test_cli_units PRIVATE
    VELQUA_CLI_TEST_TMP="${CMAKE_CURRENT_BINARY_DIR}/tmp"
    VELQUA_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  velqua_warnings(test_cli_units)
  gtest_discover_tests(test_cli_units TEST_PREFIX "cli." DISCOVERY_TIMEOUT 60)
endif()

# An import killed midway and run again, on both engines (a real child process).
if(TARGET velqua_store_testing)
  find_package(SQLite3 REQUIRED)
  add_executable(test_cli_import_kill ${CMAKE_CURRENT_LIST_DIR}/import_kill_test.cpp)
  target_link_libraries(test_cli_import_kill PRIVATE velqua_store_testing SQLite::SQLite3
                        GTest::gtest_main)
  target_compile_definitions(test_cli_import_kill PRIVATE
    VELQUA_PROGRAM="$<TARGET_FILE:velqua_cli>" VELQUA_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  velqua_warnings(test_cli_import_kill)
  add_dependencies(test_cli_import_kill velqua_cli)
  add_test(NAME cli.import_killed_and_resumed COMMAND test_cli_import_kill)
endif()

# What an administrator runs on a site: the capture service's health and
# metrics against a running service, purge, file modes,
# --mask-digits, reports and the web page for a role that may only read
# (real child processes, an emulated switch, PostgreSQL); a followed file as
# a user runs it.
if(TARGET velqua_store_testing AND TARGET velqua_capture)
  add_executable(test_cli_operations ${CMAKE_CURRENT_LIST_DIR}/operations_test.cpp
                 ${CMAKE_CURRENT_LIST_DIR}/read_only_role_test.cpp
                 ${CMAKE_CURRENT_LIST_DIR}/follow_test.cpp
                 ${CMAKE_CURRENT_LIST_DIR}/program_run.cpp
                 ${PROJECT_SOURCE_DIR}/capture/tests/capture_test.cpp)
  target_link_libraries(test_cli_operations PRIVATE velqua_store_testing PkgConfig::VELQUA_HTTPLIB
                        SQLite::SQLite3 GTest::gtest_main)
  target_include_directories(test_cli_operations PRIVATE ${PROJECT_SOURCE_DIR}/capture/tests)
  target_compile_definitions(test_cli_operations PRIVATE
    VELQUA_PROGRAM="$<TARGET_FILE:velqua_cli>" VELQUA_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    VELQUA_CAPTURE_TEST_TMP="${CMAKE_CURRENT_BINARY_DIR}/tmp"
    VELQUA_EMULATOR="$<TARGET_FILE:velqua_emulator>")
  velqua_warnings(test_cli_operations)
  add_dependencies(test_cli_operations velqua_cli velqua_emulator)
  gtest_discover_tests(test_cli_operations TEST_PREFIX "cli." DISCOVERY_TIMEOUT 60)
endif()

# End-to-end: the built program on examples/ and tests/e2e/data/, against
# tests/e2e/golden/. Every run fixes the clock (--now) because the library
# falls back to the current date and time for what a switch does not print.
set(VELQUA_E2E_TMP ${CMAKE_CURRENT_BINARY_DIR}/e2e)
file(MAKE_DIRECTORY ${VELQUA_E2E_TMP} ${VELQUA_E2E_TMP}/folder.cfg)

# velqua_e2e(NAME EXIT_STATUS ARGS... [INPUT file] [PRODUCED file GOLDEN file]
#            [SAME_AS other_case])
function(velqua_e2e name rc)
  cmake_parse_arguments(E "" "INPUT;PRODUCED;GOLDEN;SAME_AS" "" ${ARGN})
  string(REPLACE ";" "|" args "${E_UNPARSED_ARGUMENTS}")
  add_test(NAME cli.e2e.${name}
    COMMAND ${CMAKE_COMMAND} -DVELQUA=$<TARGET_FILE:velqua_cli>
            -DSOURCE_DIR=${PROJECT_SOURCE_DIR} -DNAME=${name} -DEXPECT_RC=${rc}
            "-DARGS=${args}" -DINPUT=${E_INPUT} -DPRODUCED=${E_PRODUCED}
            -DPRODUCED_GOLDEN=${E_GOLDEN} -DTMP_DIR=${VELQUA_E2E_TMP} -DSAME_AS=${E_SAME_AS}
            -P ${PROJECT_SOURCE_DIR}/tests/e2e/run_case.cmake)
endfunction()

set(KX --now "2026-01-20 09:00:00" translate -c examples/kx-tda/kx-tda.json
       --extensions examples/kx-tda/extensions.txt)
set(KX_RECORDS examples/kx-tda/records.txt)

# translate: the four examples, every output form, every configuration form
velqua_e2e(kx_tda_table 0 ${KX} --format table ${KX_RECORDS})
velqua_e2e(kx_tda_csv 0 ${KX} --format csv ${KX_RECORDS})
velqua_e2e(kx_tda_jsonl 0 ${KX} --format jsonl ${KX_RECORDS})
velqua_e2e(kx_tda_from_cfg 0 --now "2026-01-20 09:00:00" translate -c examples/kx-tda/kx-tda.cfg
           --extensions examples/kx-tda/extensions.txt --format csv ${KX_RECORDS})
velqua_e2e(kx_tda_default_is_csv_off_terminal 0 ${KX} ${KX_RECORDS})
velqua_e2e(kx_tda_output_file 0 ${KX} --format csv -o ${VELQUA_E2E_TMP}/rows.csv ${KX_RECORDS}
           PRODUCED ${VELQUA_E2E_TMP}/rows.csv GOLDEN tests/e2e/golden/kx_tda_output_file.csv)
velqua_e2e(error_output_unwritable 1 ${KX} -o ${VELQUA_E2E_TMP}/none/rows.csv ${KX_RECORDS})
velqua_e2e(error_follow_with_inputs 2 ${KX} --follow ${KX_RECORDS} ${KX_RECORDS})
velqua_e2e(kx_tda_errors_log 0 ${KX} --format csv --errors ${VELQUA_E2E_TMP}/kx-errors.log
           ${KX_RECORDS} PRODUCED ${VELQUA_E2E_TMP}/kx-errors.log
           GOLDEN tests/e2e/golden/kx_tda_errors_log.log)
velqua_e2e(kx_tda_no_extension_list 0 --now "2026-01-20 09:00:00" translate
           -c examples/kx-tda/kx-tda.json --format csv ${KX_RECORDS})
velqua_e2e(norstar_table 0 --now "2026-02-04 09:00:00" translate -c examples/norstar/norstar.json
           --year 2026 --format table examples/norstar/records.txt)
velqua_e2e(norstar_stdin_jsonl 0 --now "2026-02-04 09:00:00" translate
           -c examples/norstar/norstar.cfg --format jsonl INPUT examples/norstar/records.txt)
velqua_e2e(hicom_ini_table 0 --now "2026-03-10 09:00:00" translate -c examples/hicom/hicom.ini
           --format table examples/hicom/records.txt)
velqua_e2e(definity_table 0 --now "2026-03-10 18:00:00" translate --year 2026
           -c examples/definity/definity.json --format table examples/definity/records.txt)
# Same input, same output, whatever the clock: what a switch does not print
# (seconds, year, date) is never taken from the clock.
velqua_e2e(kx_tda_other_clock 0 --now "2031-07-15 17:42:59" translate
           -c examples/kx-tda/kx-tda.json --extensions examples/kx-tda/extensions.txt
           --format csv ${KX_RECORDS} SAME_AS kx_tda_csv)
velqua_e2e(norstar_other_clock 0 --now "2030-11-30 23:59:58" translate
           -c examples/norstar/norstar.json --year 2026 --format table examples/norstar/records.txt
           SAME_AS norstar_table)
velqua_e2e(definity_other_clock 0 --now "2029-01-01 01:01:01" translate --year 2026
           -c examples/definity/definity.json --format table examples/definity/records.txt
           SAME_AS definity_table)
# A record the library fails on is reported, kept as a row with its error,
# and the run goes on (exit 3).
velqua_e2e(norstar_failed_record_goes_on 3 --now "2026-02-04 09:00:00" translate
           -c examples/norstar/norstar.json --year 2026 --format csv
           tests/e2e/data/norstar-long-line.txt)
velqua_e2e(two_files_in_order 0 ${KX} --format csv tests/e2e/data/endings-lf.txt
           tests/e2e/data/endings-cr.txt)
# line ends: LF, lone CR (no final line end), a mix with empty lines
velqua_e2e(endings_lf 0 ${KX} --format csv tests/e2e/data/endings-lf.txt)
velqua_e2e(endings_cr 0 ${KX} --format csv tests/e2e/data/endings-cr.txt)
velqua_e2e(endings_mixed 0 ${KX} --format csv tests/e2e/data/endings-mixed.txt)
# A failed record's error in JSON: English message, the library's number,
# source and description.
velqua_e2e(norstar_failed_record_jsonl 3 --now "2026-02-04 09:00:00" translate -c norstar
           --year 2026 --format jsonl tests/e2e/data/norstar-long-line.txt)
velqua_e2e(norstar_failed_record_verbose 3 --now "2026-02-04 09:00:00" --verbose translate
           -c norstar --year 2026 --format csv tests/e2e/data/norstar-long-line.txt)
# The --errors log is the program's, in English: unrecognised and failed records.
velqua_e2e(hicom_errors_log 0 --now "2026-03-10 09:00:00" translate -c hicom --format csv
           --errors ${VELQUA_E2E_TMP}/hicom-errors.log examples/hicom/records.txt
           PRODUCED ${VELQUA_E2E_TMP}/hicom-errors.log GOLDEN tests/e2e/golden/hicom_errors_log.log)
velqua_e2e(norstar_errors_log 3 --now "2026-02-04 09:00:00" translate -c norstar --year 2026
           --format csv --errors ${VELQUA_E2E_TMP}/norstar-errors.log
           tests/e2e/data/norstar-long-line.txt PRODUCED ${VELQUA_E2E_TMP}/norstar-errors.log
           GOLDEN tests/e2e/golden/norstar_errors_log.log)
# "1 record"; control characters from a switch shown as escapes in a table
# and as pictures under config check's ruler, never sent to the terminal.
velqua_e2e(one_record 0 --now "2026-03-10 09:00:00" translate -c hicom --format csv
           tests/e2e/data/hicom-one.txt)
velqua_e2e(escapes_in_table 0 --now "2026-03-10 09:00:00" translate -c hicom --format table
           tests/e2e/data/hicom-escape.txt)
velqua_e2e(escapes_in_check 0 --now "2026-03-10 09:00:00" config check hicom
           tests/e2e/data/hicom-escape.txt)
# encodings: the same record in Windows-1252 and in UTF-8
velqua_e2e(encoding_windows_1252 0 --now "2026-03-10 09:00:00" translate
           -c examples/hicom/hicom.json --format jsonl tests/e2e/data/hicom-latin1.txt)
velqua_e2e(encoding_utf8 0 --now "2026-03-10 09:00:00" translate -c examples/hicom/hicom.json
           --format jsonl --encoding utf-8 tests/e2e/data/hicom-utf8.txt)
# latin1 (and its spellings) reads as Windows-1252; bytes that are not UTF-8
# are warned of once, at the first line that has them.
velqua_e2e(encoding_latin1_alias 0 --now "2026-03-10 09:00:00" translate
           -c examples/hicom/hicom.json --format jsonl --encoding Latin1
           tests/e2e/data/hicom-latin1.txt SAME_AS encoding_windows_1252)
velqua_e2e(encoding_utf8_invalid_warned_once 0 --now "2026-03-10 09:00:00" translate -c hicom
           --format csv --encoding utf-8 tests/e2e/data/hicom-bad-utf8.txt)

# The call store (SQLite): import, import again, list, translate again. TZ is
# fixed: times received are stored in UTC.
set(STORE ${VELQUA_E2E_TMP}/e2e-store.db)
set(HICOM_IMPORT import --db ${STORE} --switch hicom -c examples/hicom/hicom.json --year 2026
                 --time-zone Europe/Berlin --source hicom.txt examples/hicom/records.txt)
velqua_e2e(store_import 0 ${HICOM_IMPORT} PRODUCED ${STORE})
velqua_e2e(store_import_again 0 ${HICOM_IMPORT})
velqua_e2e(store_calls_csv 0 calls --db ${STORE} --format csv)
velqua_e2e(store_calls_cdr_csv 0 calls --db ${STORE} --format cdr-csv --type incoming)
velqua_e2e(store_calls_one_extension 0 calls --db ${STORE} --format table --extension 21
           --from 2026-03-09 --to 2026-03-09)
velqua_e2e(store_retranslate 0 retranslate --db ${STORE} --switch hicom -c examples/hicom/hicom.ini)
# Records by their form: page headings kept as such, comma-separated records
# shaped; the store keeps each as the switch sent it.
set(FORMS_STORE ${VELQUA_E2E_TMP}/forms.db)
velqua_e2e(store_import_headings 0 --now "2026-01-20 09:00:00" import --db ${FORMS_STORE}
           --switch kx -c kx-tda --extensions examples/kx-tda/extensions.txt ${KX_RECORDS}
           PRODUCED ${FORMS_STORE})
velqua_e2e(store_import_delimited 0 --now "2026-03-11 09:00:00" import --db ${FORMS_STORE}
           --switch ipo -c ip-office --year 2026 --source ipo.txt examples/ip-office/records.txt)
velqua_e2e(store_calls_delimited 0 calls --db ${FORMS_STORE} --switch ipo --format jsonl)
velqua_e2e(store_calls_unanswered 0 calls --db ${FORMS_STORE} --switch ipo --format csv
           --type unanswered)
set_tests_properties(cli.e2e.store_calls_unanswered PROPERTIES FIXTURES_REQUIRED
                     "e2e_forms_1;e2e_forms_2" ENVIRONMENT TZ=UTC)
set_tests_properties(cli.e2e.store_import_headings PROPERTIES FIXTURES_SETUP e2e_forms_1
                     ENVIRONMENT TZ=UTC)
set_tests_properties(cli.e2e.store_import_delimited PROPERTIES FIXTURES_REQUIRED e2e_forms_1
                     FIXTURES_SETUP e2e_forms_2 ENVIRONMENT TZ=UTC)
set_tests_properties(cli.e2e.store_calls_delimited PROPERTIES FIXTURES_REQUIRED
                     "e2e_forms_1;e2e_forms_2" ENVIRONMENT TZ=UTC)
# Rating: a plan kept in the store prices the imported calls; what cannot be
# priced is listed with its reason; a bad tariff is refused naming its line.
set(RATED_STORE ${VELQUA_E2E_TMP}/rated.db)
velqua_e2e(rate_import 0 import --db ${RATED_STORE} --switch hicom -c examples/hicom/hicom.json
           --year 2026 --source hicom.txt examples/hicom/records.txt PRODUCED ${RATED_STORE})
velqua_e2e(rate_plan 0 rate --db ${RATED_STORE} --plan examples/rating/hicom-plan.toml)
velqua_e2e(rate_directory_import 0 directory import --db ${RATED_STORE}
           examples/rating/people.csv examples/rating/accounts.csv)
velqua_e2e(rate_directory_list 0 directory list --db ${RATED_STORE} --format table)
velqua_e2e(rate_calls_table 0 calls --db ${RATED_STORE} --format table)
velqua_e2e(tariff_check 0 tariff check examples/rating/business-es.toml)
velqua_e2e(tariff_import_cgrates 0 tariff import-cgrates rating/tests/data/cgrates
           -o ${VELQUA_E2E_TMP}/cgrates.toml PRODUCED ${VELQUA_E2E_TMP}/cgrates.toml
           GOLDEN tests/e2e/golden/tariff_import_cgrates.toml)
velqua_e2e(error_directory_bad_date 1 directory import --db ${RATED_STORE}
           tests/e2e/data/rating/people-bad-date.csv)
velqua_e2e(rate_calls_cdr_csv 0 calls --db ${RATED_STORE} --format cdr-csv --type incoming
           SAME_AS store_calls_cdr_csv)
velqua_e2e(rate_unpriced 0 rate --db ${RATED_STORE} --unpriced --format csv)
velqua_e2e(rate_again 0 rate --db ${RATED_STORE} --from 2026-03-09 --to 2026-03-09 --switch hicom)
velqua_e2e(error_rate_negative_price 1 rate --db ${RATED_STORE}
           --plan tests/e2e/data/rating/plan.toml)
set_tests_properties(cli.e2e.rate_import PROPERTIES FIXTURES_SETUP e2e_rated_1 ENVIRONMENT TZ=UTC)
set_tests_properties(cli.e2e.rate_plan PROPERTIES FIXTURES_REQUIRED e2e_rated_1
                     FIXTURES_SETUP e2e_rated_2 ENVIRONMENT TZ=UTC)
set_tests_properties(cli.e2e.rate_directory_import PROPERTIES FIXTURES_REQUIRED
  "e2e_rated_1;e2e_rated_2" FIXTURES_SETUP e2e_rated_3 ENVIRONMENT TZ=UTC)
set_tests_properties(cli.e2e.rate_calls_table cli.e2e.rate_calls_cdr_csv cli.e2e.rate_unpriced
  cli.e2e.rate_again cli.e2e.error_rate_negative_price cli.e2e.rate_directory_list
  cli.e2e.error_directory_bad_date
  PROPERTIES FIXTURES_REQUIRED "e2e_rated_1;e2e_rated_2;e2e_rated_3" ENVIRONMENT TZ=UTC)
velqua_e2e(error_store_missing 1 calls --db ${VELQUA_E2E_TMP}/none/calls.db)
velqua_e2e(error_store_unreachable 1 calls --db postgresql://velqua@127.0.0.1:1/calls)
velqua_e2e(error_store_bad_date 2 calls --db ${STORE} --from 2026-02-30)
velqua_e2e(error_store_unknown_type 2 calls --db ${STORE} --type fax)
# Unanswered calls are those of the attribute (an incoming call not answered),
# whatever their type; --min-duration leaves out the short calls and those
# without a duration.
velqua_e2e(store_calls_min_duration 0 calls --db ${STORE} --format csv --min-duration 600)
velqua_e2e(error_store_negative_limit 2 calls --db ${STORE} --limit -1)
velqua_e2e(error_store_negative_min_duration 2 calls --db ${STORE} --min-duration -5)
velqua_e2e(error_store_unknown_switch 1 retranslate --db ${STORE} --switch nowhere
           -c examples/hicom/hicom.json)
set_tests_properties(cli.e2e.store_import PROPERTIES FIXTURES_SETUP e2e_store ENVIRONMENT TZ=UTC)
set_tests_properties(cli.e2e.store_import_again cli.e2e.store_calls_csv
  cli.e2e.store_calls_cdr_csv cli.e2e.store_calls_one_extension cli.e2e.store_retranslate
  cli.e2e.error_store_bad_date cli.e2e.error_store_unknown_type cli.e2e.error_store_unknown_switch
  cli.e2e.store_calls_min_duration cli.e2e.error_store_negative_limit
  cli.e2e.error_store_negative_min_duration
  PROPERTIES FIXTURES_REQUIRED e2e_store ENVIRONMENT TZ=UTC)
# The profile form holds no record form, so translating again with it moves
# the starts Hicom's end times gave: the listings read the store before.
set_tests_properties(cli.e2e.store_retranslate PROPERTIES DEPENDS
  "cli.e2e.store_import_again;cli.e2e.store_calls_csv;cli.e2e.store_calls_cdr_csv;cli.e2e.store_calls_one_extension;cli.e2e.store_calls_min_duration")

# Reports of a store of the Hicom sample (SQLite), every kind, and their
# refusals of bad input.
if(TARGET velqua_reports)
  set(REPORT_STORE ${VELQUA_E2E_TMP}/e2e-report.db)
  set(MARCH --from 2026-03-01 --to 2026-03-31)
  velqua_e2e(report_store_import 0 import --db ${REPORT_STORE} --switch hicom
             -c examples/hicom/hicom.json --year 2026 --source hicom.txt
             examples/hicom/records.txt PRODUCED ${REPORT_STORE})
  velqua_e2e(report_extensions_table 0 report extensions --db ${REPORT_STORE} ${MARCH}
             --format table)
  velqua_e2e(report_itemised_table 0 report extensions --itemised 21 --db ${REPORT_STORE}
             ${MARCH} --format table)
  velqua_e2e(report_trunks_csv 0 report trunks --lines 2 --db ${REPORT_STORE} ${MARCH}
             --format csv)
  velqua_e2e(report_missed_json 0 report missed --db ${REPORT_STORE} ${MARCH} --format json)
  velqua_e2e(report_traffic_csv 0 report traffic --db ${REPORT_STORE} --switch hicom
             --from 2026-03-09 --to 2026-03-10 --format csv)
  velqua_e2e(report_compare_table 0 report compare --of trunks --db ${REPORT_STORE} ${MARCH}
             --format table)
  velqua_e2e(error_report_unknown_kind 1 report costs --db ${REPORT_STORE} ${MARCH})
  velqua_e2e(error_report_period 1 report trunks --db ${REPORT_STORE} --from 2026-03-31
             --to 2026-03-01)
  velqua_e2e(error_report_unknown_switch 1 report trunks --db ${REPORT_STORE} ${MARCH}
             --switch nowhere)
  velqua_e2e(error_report_unknown_department 1 report extensions --db ${REPORT_STORE} ${MARCH}
             --department sales)
  velqua_e2e(error_report_unwritable 1 report trunks --db ${REPORT_STORE} ${MARCH}
             -o ${VELQUA_E2E_TMP}/none/trunks.pdf)
  velqua_e2e(error_report_no_chart 1 report compare --db ${REPORT_STORE} ${MARCH} --format svg)
  set_tests_properties(cli.e2e.report_store_import PROPERTIES FIXTURES_SETUP e2e_report
                       ENVIRONMENT TZ=UTC)
  set_tests_properties(cli.e2e.report_extensions_table cli.e2e.report_itemised_table
    cli.e2e.report_trunks_csv cli.e2e.report_missed_json cli.e2e.report_traffic_csv
    cli.e2e.report_compare_table cli.e2e.error_report_unknown_kind cli.e2e.error_report_period
    cli.e2e.error_report_unknown_switch cli.e2e.error_report_unknown_department
    cli.e2e.error_report_unwritable cli.e2e.error_report_no_chart
    PROPERTIES FIXTURES_REQUIRED e2e_report ENVIRONMENT TZ=UTC)

  # The same records priced by the example plan, with the example directory:
  # the reports of money.
  set(PRICED_STORE ${VELQUA_E2E_TMP}/e2e-report-priced.db)
  velqua_e2e(report_priced_import 0 import --db ${PRICED_STORE} --switch hicom
             -c examples/hicom/hicom.json --year 2026 --source hicom.txt
             examples/hicom/records.txt PRODUCED ${PRICED_STORE})
  velqua_e2e(report_priced_rate 0 rate --db ${PRICED_STORE}
             --plan examples/rating/hicom-plan.toml)
  velqua_e2e(report_priced_directory 0 directory import --db ${PRICED_STORE}
             examples/rating/people.csv examples/rating/accounts.csv)
  velqua_e2e(report_departments_table 0 report departments --db ${PRICED_STORE} ${MARCH}
             --format table)
  velqua_e2e(report_accounts_csv 0 report accounts --db ${PRICED_STORE} ${MARCH} --format csv)
  velqua_e2e(report_destinations_table 0 report destinations --top 3 --db ${PRICED_STORE}
             ${MARCH} --format table)
  velqua_e2e(report_extensions_of_sales 0 report extensions --department Sales
             --db ${PRICED_STORE} ${MARCH} --format table)
  velqua_e2e(report_itemised_priced 0 report extensions --itemised 23 --db ${PRICED_STORE}
             ${MARCH} --format csv)
  velqua_e2e(report_compare_departments 0 report compare --of departments --db ${PRICED_STORE}
             --from 2026-03-09 --to 2026-03-10 --format table)
  velqua_e2e(error_report_department_not_listed 1 report departments --db ${PRICED_STORE}
             ${MARCH} --department Legal)
  velqua_e2e(error_report_destinations_by 1 report destinations --db ${PRICED_STORE} ${MARCH}
             --by price)
  set_tests_properties(cli.e2e.report_priced_import cli.e2e.report_priced_rate
    cli.e2e.report_priced_directory PROPERTIES FIXTURES_SETUP e2e_report_priced
    ENVIRONMENT TZ=UTC)
  set_tests_properties(cli.e2e.report_priced_rate PROPERTIES DEPENDS cli.e2e.report_priced_import)
  set_tests_properties(cli.e2e.report_priced_directory PROPERTIES DEPENDS
                       cli.e2e.report_priced_rate)
  set_tests_properties(cli.e2e.report_departments_table cli.e2e.report_accounts_csv
    cli.e2e.report_destinations_table cli.e2e.report_extensions_of_sales
    cli.e2e.report_itemised_priced cli.e2e.report_compare_departments
    cli.e2e.error_report_department_not_listed cli.e2e.error_report_destinations_by
    PROPERTIES FIXTURES_REQUIRED e2e_report_priced ENVIRONMENT TZ=UTC)
endif()

# config show / convert / check
velqua_e2e(show_kx_tda 0 config show examples/kx-tda/kx-tda.cfg)
velqua_e2e(show_norstar 0 config show examples/norstar/norstar.json)
velqua_e2e(show_hicom_ini 0 config show examples/hicom/hicom.ini)
velqua_e2e(show_definity 0 config show examples/definity/definity.json)
velqua_e2e(convert_json_to_cfg 0 config convert examples/kx-tda/kx-tda.json
           ${VELQUA_E2E_TMP}/kx.cfg PRODUCED ${VELQUA_E2E_TMP}/kx.cfg
           GOLDEN examples/kx-tda/kx-tda.cfg)
velqua_e2e(convert_cfg_to_json 0 config convert examples/norstar/norstar.cfg
           ${VELQUA_E2E_TMP}/norstar.json PRODUCED ${VELQUA_E2E_TMP}/norstar.json
           GOLDEN tests/e2e/golden/norstar_from_cfg.json)
velqua_e2e(convert_json_to_ini 0 config convert examples/hicom/hicom.json
           ${VELQUA_E2E_TMP}/hicom.ini PRODUCED ${VELQUA_E2E_TMP}/hicom.ini
           GOLDEN examples/hicom/hicom.ini)
velqua_e2e(convert_ini_to_json 0 config convert examples/hicom/hicom.ini
           ${VELQUA_E2E_TMP}/hicom.json PRODUCED ${VELQUA_E2E_TMP}/hicom.json
           GOLDEN tests/e2e/golden/hicom_from_ini.json)
velqua_e2e(check_kx_tda 0 --now "2026-01-20 09:00:00" config check examples/kx-tda/kx-tda.json
           tests/e2e/data/kx-tda-check.txt)
velqua_e2e(check_utf8 0 config check --encoding utf-8 examples/hicom/hicom.json
           tests/e2e/data/hicom-utf8.txt)
# a byte-order mark opening the file is no part of the first record, as in translate
velqua_e2e(check_utf8_bom 0 config check --encoding utf-8 examples/hicom/hicom.json
           tests/e2e/data/hicom-utf8-bom.txt SAME_AS check_utf8)
# why a record is unrecognised: no mark, a duration that cannot be read, no digit
velqua_e2e(check_reasons 0 config check examples/hicom/hicom.json
           tests/e2e/data/hicom-check-reasons.txt)
velqua_e2e(error_check_empty 1 config check examples/hicom/hicom.json tests/e2e/data/empty.txt)
velqua_e2e(config_keys 0 config keys)

# errors: one line on stderr naming what is wrong, non-zero exit
velqua_e2e(error_missing_config 1 translate -c examples/none.json ${KX_RECORDS})
velqua_e2e(error_config_extension 1 translate -c examples/kx-tda/records.txt ${KX_RECORDS})
velqua_e2e(error_missing_input 1 ${KX} examples/kx-tda/nothing.txt)
velqua_e2e(error_missing_extension_list 1 translate -c examples/kx-tda/kx-tda.json
           --extensions examples/kx-tda/none.txt ${KX_RECORDS})
velqua_e2e(error_json_syntax 1 config show tests/e2e/data/bad-syntax.json)
velqua_e2e(error_json_unknown_key 1 config show tests/e2e/data/bad-key.json)
velqua_e2e(error_json_range 1 config show tests/e2e/data/bad-range.json)
velqua_e2e(error_json_wiring 1 config show tests/e2e/data/bad-wiring.json)
velqua_e2e(error_json_member 1 config show tests/e2e/data/bad-member.json)
velqua_e2e(error_cfg_unreadable 1 config show tests/e2e/data/garbage.cfg)
# A library error is English by default; --verbose (before or after the
# command) adds its number, source and the library's own description.
velqua_e2e(error_cfg_unreadable_verbose 1 --verbose config show tests/e2e/data/garbage.cfg)
velqua_e2e(error_cfg_unreadable_verbose_after 1 config show --verbose tests/e2e/data/garbage.cfg
           SAME_AS error_cfg_unreadable_verbose)
velqua_e2e(show_norstar_verbose 0 config show --verbose norstar)
velqua_e2e(error_ini_case 1 config show tests/e2e/data/case2.ini)
velqua_e2e(error_convert_missing_folder 1 config convert examples/kx-tda/kx-tda.json
           ${VELQUA_E2E_TMP}/none/kx.cfg)
velqua_e2e(error_convert_onto_folder 1 config convert examples/kx-tda/kx-tda.json
           ${VELQUA_E2E_TMP}/folder.cfg)
velqua_e2e(error_convert_form_cannot_hold 1 config convert examples/kx-tda/kx-tda.json
           ${VELQUA_E2E_TMP}/kx-refused.ini)
velqua_e2e(convert_forced 0 config convert --force examples/kx-tda/kx-tda.json
           ${VELQUA_E2E_TMP}/kx-forced.ini PRODUCED ${VELQUA_E2E_TMP}/kx-forced.ini)
velqua_e2e(error_errors_log_unwritable 1 ${KX} --errors ${VELQUA_E2E_TMP}/none/err.log
           ${KX_RECORDS})
velqua_e2e(error_json_overflowing_field 1 config show tests/e2e/data/bad-overflow.json)
velqua_e2e(error_json_unknown_case 1 config show tests/e2e/data/bad-case.json)
velqua_e2e(error_convert_output_extension 1 config convert examples/kx-tda/kx-tda.json
           nowhere/out.txt)
velqua_e2e(error_bad_format 2 translate -c examples/kx-tda/kx-tda.json --format xml)
velqua_e2e(error_bad_encoding 2 translate -c examples/kx-tda/kx-tda.json --encoding latin9)
velqua_e2e(error_config_required 2 translate ${KX_RECORDS})
velqua_e2e(error_unknown_command 2 transmogrify)
velqua_e2e(error_no_command 2)
velqua_e2e(error_bad_now 2 --now yesterday config show examples/kx-tda/kx-tda.json)

if(VELQUA_CLI_HAS_DRAW)
  velqua_e2e(draw_cable_png 0 draw cable -c examples/kx-tda/kx-tda.json --port db9
             -o ${VELQUA_E2E_TMP}/cable.png PRODUCED ${VELQUA_E2E_TMP}/cable.png)
  velqua_e2e(draw_cable_svg 0 draw cable -c examples/definity/definity.cfg --port db25
             -o ${VELQUA_E2E_TMP}/cable.svg PRODUCED ${VELQUA_E2E_TMP}/cable.svg)
  velqua_e2e(draw_table_pdf 0 draw table -o ${VELQUA_E2E_TMP}/table.pdf
             PRODUCED ${VELQUA_E2E_TMP}/table.pdf)
  # English texts and signal names; a bundled switch's name as the configuration
  velqua_e2e(draw_cable_english_bundled 0 draw cable -c hicom --english --port db9
             -o ${VELQUA_E2E_TMP}/cable-en.svg PRODUCED ${VELQUA_E2E_TMP}/cable-en.svg)
  velqua_e2e(draw_table_english 0 draw table --english -o ${VELQUA_E2E_TMP}/table-en.png
             PRODUCED ${VELQUA_E2E_TMP}/table-en.png)
  velqua_e2e(error_draw_extension 1 draw table -o nowhere/table.bmp)
  velqua_e2e(error_draw_port 2 draw cable -c examples/kx-tda/kx-tda.json --port usb
             -o ${VELQUA_E2E_TMP}/x.png)
  set_tests_properties(cli.e2e.draw_cable_png cli.e2e.draw_cable_svg cli.e2e.draw_table_pdf
    cli.e2e.draw_cable_english_bundled cli.e2e.draw_table_english PROPERTIES ENVIRONMENT
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/e2e/lsan.supp:print_suppressions=0")
endif()

# The bundled switches, their record forms, `switches` and `config guess`.
include(${CMAKE_CURRENT_LIST_DIR}/switches.cmake)

# What a biller relies on: damaged records, sources, extensions, unrecognised records.
include(${CMAKE_CURRENT_LIST_DIR}/billing.cmake)
