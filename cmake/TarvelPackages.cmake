# Debian packages, one for each component of TarvelInstall.cmake: `cpack -G DEB` in a build folder.
set(CPACK_PACKAGE_VENDOR "TarvelLua developers")
set(CPACK_PACKAGE_CONTACT "TarvelLua developers <noreply@tarvellua.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # it would come before each package's own
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

find_program(TARVELLUA_SHLIBDEPS dpkg-shlibdeps)  # finds what the packages depend on
if(TARVELLUA_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
endif()

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME tarvellua)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION interpreters)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "interpreter for a small dialect of Lua
 Runs scripts and typed lines, and packs checked scripts into files.")

set(libraryPackage libtarvel-lua${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${libraryPackage})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "embeddable interpreter for a small dialect of Lua: shared library
 Needed by C++ programs that run scripts with it.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtarvel-lua-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "embeddable interpreter for a small dialect of Lua: development files
 Headers, the static library, and files for CMake and pkg-config.")
if(BUILD_SHARED_LIBS)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
      "${libraryPackage} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
endif()
include(CPack)
