# Tests of velqua_web: the API over a real server on a loopback port, on
# SQLite and on a throwaway PostgreSQL server (store/tests), and the page in
# a real browser (web/tests/browser).
enable_testing()  # this directory is added before the top level enables testing
find_package(GTest REQUIRED)
find_package(OpenSSL REQUIRED)  # the TLS test makes its certificate

add_executable(velqua_web_tests
  ${CMAKE_CURRENT_LIST_DIR}/api_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/calls_search_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/calls_sort_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/config_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/editor_api_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/live_feed_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/directory_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/pages_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tls_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/web_test_support.cpp)
target_link_libraries(velqua_web_tests PRIVATE velqua_web velqua_store_testing
                      PkgConfig::VELQUA_HTTPLIB nlohmann_json::nlohmann_json GTest::gtest_main
                      OpenSSL::SSL OpenSSL::Crypto)
target_include_directories(velqua_web_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/src
                           ${PROJECT_SOURCE_DIR}/store/tests)
target_compile_definitions(velqua_web_tests PRIVATE VELQUA_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
velqua_warnings(velqua_web_tests)
# The Capture view reads a service's status with the capture layer (added
# after this folder, hence the option rather than the target), as the
# program wires it.
if(VELQUA_BUILD_CAPTURE)
  target_sources(velqua_web_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR}/capture_test.cpp)
  target_link_libraries(velqua_web_tests PRIVATE velqua_capture)
endif()
if(TARGET velqua_reports)
  target_sources(velqua_web_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR}/reports_test.cpp)
endif()
# The web parsers' fuzz corpora, replayed by the targets (fuzz/targets.cmake,
# defined after this folder).
target_sources(velqua_web_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR}/fuzz_replay_test.cpp)
target_link_libraries(velqua_web_tests PRIVATE velqua_fuzz_web)
add_test(NAME web.sqlite COMMAND velqua_web_tests --gtest_filter=-*Postgres*)
add_test(NAME web.postgresql COMMAND velqua_web_tests --gtest_filter=*Postgres*)
# The editor draws the cable with Cairo, whose fontconfig keeps a few
# allocations past exit; the sanitizer build's leak check is told so.
set_tests_properties(web.sqlite web.postgresql PROPERTIES ENVIRONMENT
  "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/surfaces/cairo/tests/lsan.supp:print_suppressions=0")

# The page in a real browser: Debian's chromium through playwright-core
# (npm ci in web/tests/browser, as scripts/setup.sh does).
find_program(VELQUA_NODE node)
find_program(VELQUA_CHROMIUM chromium)
# The layout editor's state rules (undo, the draft, edges), in Node alone.
if(VELQUA_NODE)
  add_test(NAME web.page_editor COMMAND ${VELQUA_NODE} --test ${PROJECT_SOURCE_DIR}/web/page/tests/)
endif()
set(VELQUA_BROWSER_DIR ${CMAKE_CURRENT_LIST_DIR}/browser)
if(VELQUA_NODE AND VELQUA_CHROMIUM AND EXISTS ${VELQUA_BROWSER_DIR}/node_modules/playwright-core)
  add_test(NAME web.browser
           COMMAND ${VELQUA_NODE} ${VELQUA_BROWSER_DIR}/run.mjs --velqua $<TARGET_FILE:velqua_cli>
                   --source ${PROJECT_SOURCE_DIR} --out ${CMAKE_BINARY_DIR}/web-screenshots)
  set_tests_properties(web.browser PROPERTIES ENVIRONMENT CHROMIUM=${VELQUA_CHROMIUM} TIMEOUT 600)
else()
  message(WARNING "velqua_web: node, chromium or playwright-core (npm ci in web/tests/browser) "
                  "missing: the browser tests are not run; scripts/setup.sh installs them")
endif()
