# The fuzz targets compiled into one library per layer they read, linked by
# the libFuzzer programs (fuzz/CMakeLists.txt, with entry.cpp) and by the
# tests that replay the corpora on every run. Included by the top level
# whenever tests or fuzzers are built.
function(velqua_fuzz_targets name layer)
  if(TARGET ${layer})
    list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_LIST_DIR}/fuzz_)
    list(TRANSFORM ARGN APPEND .cpp)
    add_library(${name} STATIC EXCLUDE_FROM_ALL ${ARGN})
    target_link_libraries(${name} PUBLIC ${layer})
    target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_LIST_DIR})
    velqua_warnings(${name})
  endif()
endfunction()

velqua_fuzz_targets(velqua_fuzz_core velqua abrir importar traductor)
velqua_fuzz_targets(velqua_fuzz_records velqua_records lector record_form guess framer)
velqua_fuzz_targets(velqua_fuzz_capture velqua_capture login capture_config)
velqua_fuzz_targets(velqua_fuzz_rating velqua_rating tariff directory)
velqua_fuzz_targets(velqua_fuzz_web velqua_web web_cookie web_event_id web_serve_config web_query)
# The web targets read the layer's own parsers, declared in its src/.
if(TARGET velqua_fuzz_web)
  find_package(nlohmann_json REQUIRED)
  target_include_directories(velqua_fuzz_web PRIVATE ${PROJECT_SOURCE_DIR}/web/src)
  target_link_libraries(velqua_fuzz_web PRIVATE PkgConfig::VELQUA_HTTPLIB nlohmann_json::nlohmann_json)
endif()
