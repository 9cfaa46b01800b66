# The Python tests (pytest) against the module of this build. Under the
# sanitizers the interpreter is not instrumented: the sanitizer runtime is
# preloaded for the module, and leaks are not reported, since the interpreter
# keeps its own objects until exit by design.
set(velqua_pytest_env
  "PYTHONPATH=${CMAKE_CURRENT_BINARY_DIR}"
  "VELQUA_SOURCE_DIR=${PROJECT_SOURCE_DIR}"
  "PYTHONDONTWRITEBYTECODE=1")
if(TARGET velqua_cli)
  list(APPEND velqua_pytest_env "VELQUA_PROGRAM=$<TARGET_FILE:velqua_cli>")
endif()
if(VELQUA_SANITIZE)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libclang_rt.asan-x86_64.so
    OUTPUT_VARIABLE asan_runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
  list(APPEND velqua_pytest_env "LD_PRELOAD=${asan_runtime}"
       "ASAN_OPTIONS=detect_leaks=0")
endif()
add_test(NAME python.tests
  COMMAND ${Python3_EXECUTABLE} -m pytest -q -p no:cacheprovider ${CMAKE_CURRENT_LIST_DIR})
set_tests_properties(python.tests PROPERTIES ENVIRONMENT "${velqua_pytest_env}")
