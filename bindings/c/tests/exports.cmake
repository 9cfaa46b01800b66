# The shared library exports its C interface (velqua_*) and the C++ API
# (namespace velqua) and nothing else: no standard-library templates, no
# internal layer, no sanitizer or compiler helpers.
# cmake -DLIBRARY=libvelqua.so -P exports.cmake
execute_process(COMMAND nm -D --defined-only -C ${LIBRARY}
  OUTPUT_VARIABLE symbols RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "nm failed on ${LIBRARY}")
endif()
string(REPLACE "\n" ";" lines "${symbols}")
set(c_functions 0)
foreach(line ${lines})
  string(REGEX REPLACE "^[0-9a-f]+ [A-Za-z] " "" name "${line}")
  if(name MATCHES "^velqua_[a-z0-9_]+@@VELQUA_0$")
    math(EXPR c_functions "${c_functions} + 1")
  elseif(NOT name MATCHES "^((typeinfo|typeinfo name|vtable) for )?velqua::"
         AND NOT name STREQUAL "VELQUA_0")
    message(FATAL_ERROR "exported but not part of the interface: ${line}")
  endif()
endforeach()
if(c_functions LESS 90)
  message(FATAL_ERROR "only ${c_functions} C functions exported")
endif()
