# Tests of the C interface, included from bindings/c/CMakeLists.txt: GoogleTest
# cases against the shared library itself, the C host of examples/c built as
# C99 and compared with the program, and the library's exported symbols.
find_package(GTest REQUIRED)
include(GoogleTest)
enable_testing()

add_executable(velqua_c_tests
  ${CMAKE_CURRENT_LIST_DIR}/c_interface_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/translation_test.cpp)
target_link_libraries(velqua_c_tests PRIVATE velqua_shared GTest::gtest_main)
target_compile_definitions(velqua_c_tests PRIVATE VELQUA_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
velqua_warnings(velqua_c_tests)
set(VELQUA_C_TEST_TMP ${CMAKE_CURRENT_BINARY_DIR}/tmp)
file(MAKE_DIRECTORY ${VELQUA_C_TEST_TMP})
gtest_discover_tests(velqua_c_tests TEST_PREFIX "c." DISCOVERY_TIMEOUT 60
  PROPERTIES ENVIRONMENT "VELQUA_TEST_TMP=${VELQUA_C_TEST_TMP}")

# The C host, as a C99 program with every warning an error.
add_executable(velqua_rows ${PROJECT_SOURCE_DIR}/examples/c/velqua_rows.c)
target_link_libraries(velqua_rows PRIVATE velqua_shared)
set_target_properties(velqua_rows PROPERTIES C_STANDARD 99 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
target_compile_options(velqua_rows PRIVATE -Wall -Wextra -pedantic -Werror)
if(VELQUA_SANITIZE)  # the library's C++ checks need the sanitizer's C++ runtime
  set_target_properties(velqua_rows PROPERTIES LINKER_LANGUAGE CXX)
endif()

if(TARGET velqua_cli)
  add_test(NAME c.host_prints_the_programs_rows
    COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:velqua_cli> -DHOST=$<TARGET_FILE:velqua_rows>
            -DSOURCE_DIR=${PROJECT_SOURCE_DIR} -P ${CMAKE_CURRENT_LIST_DIR}/same_rows.cmake)
endif()

if(NOT VELQUA_SANITIZE)
  add_test(NAME c.library_exports_only_its_interface
    COMMAND ${CMAKE_COMMAND} -DLIBRARY=$<TARGET_FILE:velqua_shared>
            -P ${CMAKE_CURRENT_LIST_DIR}/exports.cmake)
endif()
