# Tests of velqua_store, included from store/CMakeLists.txt. The same suite
# runs against SQLite and against a throwaway PostgreSQL server that the
# tests start themselves (pg_test_server.h); one ctest entry per engine, so
# that a process starts one server for all its tests.
enable_testing()  # this directory is added before the top level enables testing
find_package(GTest REQUIRED)

add_library(velqua_store_testing STATIC ${CMAKE_CURRENT_LIST_DIR}/pg_test_server.cpp)
target_link_libraries(velqua_store_testing PUBLIC velqua_store PostgreSQL::PostgreSQL
                      GTest::gtest)
target_include_directories(velqua_store_testing PUBLIC ${CMAKE_CURRENT_LIST_DIR})
velqua_warnings(velqua_store_testing)

add_executable(velqua_store_tests
  ${CMAKE_CURRENT_LIST_DIR}/cost_labels_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/day_marks_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/import_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/month_partitions_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/purge_days_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/rating_roads_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/record_extras_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/report_reads_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/retranslate_pricing_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/store_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/stream_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/values_test.cpp)
target_link_libraries(velqua_store_tests PRIVATE velqua_store_testing SQLite::SQLite3
                      GTest::gtest_main)
target_include_directories(velqua_store_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/src)
target_link_libraries(velqua_store_tests PRIVATE date::date-tz)
target_compile_definitions(velqua_store_tests PRIVATE VELQUA_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
velqua_warnings(velqua_store_tests)
add_test(NAME store.sqlite COMMAND velqua_store_tests --gtest_filter=-*Postgres*)
add_test(NAME store.postgresql COMMAND velqua_store_tests --gtest_filter=*Postgres*)
