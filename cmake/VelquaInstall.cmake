# What `cmake --install` puts in the prefix: the headers, libvelqua.so and
# libvelqua.a, the velqua program, the bundled switches (share/velqua/examples,
# where the program looks for a switch given by name), the small hosts
# (share/doc/velqua/examples), velqua.pc for pkg-config and velquaConfig.cmake
# for find_package(velqua), the documentation (README.md and every page of doc/,
# so that the README's links work where it is installed), the manual pages of
# the program and each of its commands, and the capture service (its systemd
# unit and its configuration, /etc/velqua/capture.toml under the /usr prefix).
# The Python package installs itself (bindings/python).
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
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${PROJECT_SOURCE_DIR}/examples/README.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/doc/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/doc)

# The capture service: the unit where systemd looks for a package's units,
# and the configuration in /etc under the /usr prefix (a .deb), else in the
# prefix's etc/ (a user's prefix never writes /etc).
if(TARGET velqua_cli AND TARGET velqua_capture)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/velqua-capture.service
          DESTINATION lib/systemd/system)
  install(CODE "
    if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\")
      set(velqua_etc /etc/velqua)
    else()
      set(velqua_etc \"\${CMAKE_INSTALL_PREFIX}/etc/velqua\")
    endif()
    file(INSTALL \"${PROJECT_SOURCE_DIR}/packaging/capture.toml\" DESTINATION \"\${velqua_etc}\"
         PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ)
  ")
endif()

# Manual pages, written from the program's --help by help2man when it is
# installed: velqua(1) and velqua-COMMAND(1) for every command it lists.
find_program(VELQUA_HELP2MAN help2man)
if(TARGET velqua_cli AND VELQUA_HELP2MAN)
  set(velqua_man_dir ${PROJECT_BINARY_DIR}/man)
  add_custom_command(OUTPUT ${velqua_man_dir}/velqua.1.gz
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${velqua_man_dir}
    COMMAND ${CMAKE_COMMAND} -DVELQUA=$<TARGET_FILE:velqua_cli> -DVERSION=${PROJECT_VERSION}
            -DOUTPUT_DIR=${velqua_man_dir} -P ${PROJECT_SOURCE_DIR}/packaging/man_pages.cmake
    DEPENDS velqua_cli ${PROJECT_SOURCE_DIR}/packaging/man_pages.cmake
    COMMENT "Manual pages of velqua and its commands (help2man)")
  add_custom_target(velqua_man ALL DEPENDS ${velqua_man_dir}/velqua.1.gz)
  install(DIRECTORY ${velqua_man_dir}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
          FILES_MATCHING PATTERN "*.1.gz")
elseif(TARGET velqua_cli)
  message(STATUS "velqua: help2man not found; no manual pages")
endif()

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
