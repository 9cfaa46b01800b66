# Tests of velqua_reports, included from reports/CMakeLists.txt: the reports
# of a generated month on SQLite and on a throwaway PostgreSQL server, the
# forms read back by other programs (pdftoppm, pdftotext, openpyxl), and
# mailing through an SMTP server the test runs on loopback.
enable_testing()
find_package(GTest REQUIRED)
find_package(SQLite3 REQUIRED)

add_executable(velqua_reports_tests
  ${CMAKE_CURRENT_LIST_DIR}/cost_reports_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/day_summaries_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/forms_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/generated_month.cpp
  ${CMAKE_CURRENT_LIST_DIR}/long_lists_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/mail_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/month_report_test.cpp)
target_link_libraries(velqua_reports_tests PRIVATE velqua_reports velqua_store_testing
                      SQLite::SQLite3 GTest::gtest_main)
target_include_directories(velqua_reports_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/src)
target_compile_definitions(velqua_reports_tests PRIVATE VELQUA_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
velqua_warnings(velqua_reports_tests)
add_test(NAME reports COMMAND velqua_reports_tests)
# fontconfig (under Cairo's text) keeps a few allocations of its own past
# exit; the sanitizer build's leak check is told so, as for the Cairo surface.
set_tests_properties(reports PROPERTIES ENVIRONMENT
  "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/surfaces/cairo/tests/lsan.supp:print_suppressions=0")
