# `cpack -G DEB` in the build folder: a Debian package of the library, the
# program, the Python module and the bundled switches, installed under /usr.
# Its dependencies come from the binaries (dpkg-shlibdeps); the Python module
# is built for the interpreter of the build (Debian 12: Python 3.11).
set(CPACK_PACKAGE_NAME velqua)
set(CPACK_PACKAGE_VENDOR "Velqua")
set(CPACK_PACKAGE_CONTACT "Velqua developers <velqua@invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "call records of telephone switches (SMDR) into call data")
string(CONCAT CPACK_PACKAGE_DESCRIPTION
  "Velqua turns the call records a telephone switch (PBX) prints on its SMDR port into call "
  "data. The package holds the velqua program, the library with its C interface and C++ API "
  "(shared and static, pkg-config and CMake files), the Python module and the bundled "
  "switch configurations.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
if(VELQUA_BUILD_PYTHON)
  string(REGEX MATCH "^([0-9]+)\\.([0-9]+)$" _ "${VELQUA_PYTHON_VERSION}")
  math(EXPR velqua_python_next "${CMAKE_MATCH_2} + 1")
  set(CPACK_DEBIAN_PACKAGE_SUGGESTS
      "python3 (>= ${VELQUA_PYTHON_VERSION}~), python3 (<< ${CMAKE_MATCH_1}.${velqua_python_next})")
endif()
include(CPack)
