# What `cmake --install` puts in the prefix: the headers, libvelqua.so and
# libvelqua.a, the velqua program, the bundled switches (share/velqua/examples,
# where the program looks for a switch given by name), the small hosts
# (share/doc/velqua/examples), velqua.pc for pkg-config and velquaConfig.cmake
# for find_package(velqua). The Python package installs itself
# (bindings/python).
include(CMakePackageConfigHelpers)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/velqua
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h")

install(TARGETS velqua_shared velqua_static EXPORT velquaTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET velqua_cli)
  install(TARGETS velqua_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# The switches: every folder of examples/ but the hosts written in C, C++ and
# Python, which go with the documentation.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/
        DESTINATION ${CMAKE_INSTALL_DATADIR}/velqua/examples
        REGEX "/examples/(c|cpp|python)(/|$)" EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/c ${PROJECT_SOURCE_DIR}/examples/cpp
                  ${PROJECT_SOURCE_DIR}/examples/python
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/doc/bindings.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR})

# pkg-config finds the prefix from the file's own place, so the package
# installs anywhere (a .deb under /usr, a user's prefix).
set(velqua_pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH VELQUA_PC_PREFIX /prefix/${velqua_pc_dir} /prefix)
string(REGEX REPLACE "/$" "" VELQUA_PC_PREFIX "${VELQUA_PC_PREFIX}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/velqua.pc.in ${PROJECT_BINARY_DIR}/velqua.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/velqua.pc DESTINATION ${velqua_pc_dir})

set(velqua_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/velqua)
install(EXPORT velquaTargets NAMESPACE velqua:: DESTINATION ${velqua_cmake_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/velquaConfig.cmake.in
  ${PROJECT_BINARY_DIR}/velquaConfig.cmake INSTALL_DESTINATION ${velqua_cmake_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/velquaConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/velquaConfig.cmake
              ${PROJECT_BINARY_DIR}/velquaConfigVersion.cmake
        DESTINATION ${velqua_cmake_dir})
