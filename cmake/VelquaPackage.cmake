# `cpack -G DEB` in the build folder: a Debian package of the library, the
# program, the Python module and the bundled switches, installed under /usr,
# with the capture service: its unit, its configuration (a conffile kept
# across upgrades) and the system user it runs as, made by the package
# (packaging/debian). Its dependencies come from the binaries
# (dpkg-shlibdeps); libpq5 is suggested, as the program loads it only for a
# PostgreSQL store. The Python module is built for the interpreter of the
# build (Debian 12: Python 3.11).
set(CPACK_PACKAGE_NAME velqua)
set(CPACK_PACKAGE_VENDOR "Velqua")
set(CPACK_PACKAGE_CONTACT "Velqua developers <velqua@invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "call records of telephone switches (SMDR) into call data")
string(CONCAT CPACK_PACKAGE_DESCRIPTION
  "Velqua turns the call records a telephone switch (PBX) prints on its SMDR port into call "
  "data. The package holds the velqua program, the library with its C interface and C++ API "
  "(shared and static, pkg-config and CMake files), the Python module and the bundled "
  "switch configurations, and the capture service (velqua-capture.service).")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
if(TARGET velqua_capture)
  # useradd (passwd) makes the service's user; the unit's reload sends its
  # signal with /bin/kill (procps), which a minimal system lacks.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "passwd, procps")
  set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
      ${PROJECT_SOURCE_DIR}/packaging/debian/conffiles
      ${PROJECT_SOURCE_DIR}/packaging/debian/postinst
      ${PROJECT_SOURCE_DIR}/packaging/debian/prerm
      ${PROJECT_SOURCE_DIR}/packaging/debian/postrm)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
endif()
# Debian's copyright file, where every package keeps it.
install(FILES ${PROJECT_SOURCE_DIR}/packaging/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})
set(velqua_suggests "libpq5")
if(VELQUA_BUILD_PYTHON)
  string(REGEX MATCH "^([0-9]+)\\.([0-9]+)$" _ "${VELQUA_PYTHON_VERSION}")
  math(EXPR velqua_python_next "${CMAKE_MATCH_2} + 1")
  string(APPEND velqua_suggests
         ", python3 (>= ${VELQUA_PYTHON_VERSION}~), python3 (<< ${CMAKE_MATCH_1}.${velqua_python_next})")
endif()
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "${velqua_suggests}")
include(CPack)

# The package checked as an installer meets it (scripts/check_package.sh);
# not for sanitizer builds, whose programs are not what a package ships.
if(VELQUA_BUILD_TESTS AND NOT VELQUA_SANITIZE AND TARGET velqua_capture)
  find_program(VELQUA_DPKG_DEB dpkg-deb)
  if(VELQUA_DPKG_DEB)
    add_test(NAME package.deb
             COMMAND ${PROJECT_SOURCE_DIR}/scripts/check_package.sh ${PROJECT_BINARY_DIR}
             WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
    set_tests_properties(package.deb PROPERTIES RUN_SERIAL ON TIMEOUT 600)
  endif()
endif()
