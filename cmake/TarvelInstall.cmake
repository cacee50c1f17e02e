# Installs, in three components, the program with its documents (`program`), a shared library (`library`), and what
# compiling hosts takes (`development`): headers, the static library, and the files that find_package(tarvel_lua) and
# pkg-config read.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/tarvel_lua)

install(TARGETS ${tarvelLibraries} EXPORT tarvelTargets
        ARCHIVE COMPONENT development
        LIBRARY COMPONENT library NAMELINK_COMPONENT development
        PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarvel/lua COMPONENT development
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARVELLUA_BUILD_PROGRAM)
  install(TARGETS tarvellua RUNTIME COMPONENT program)
  install(FILES docs/tarvellua.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
  file(GLOB documents CONFIGURE_DEPENDS docs/*.md)
  install(FILES ${documents} DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT program)
endif()

install(EXPORT tarvelTargets NAMESPACE tarvel:: DESTINATION ${packageDir} COMPONENT development)
configure_package_config_file(cmake/tarvel_luaConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/tarvel_luaConfig.cmake
                              INSTALL_DESTINATION ${packageDir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tarvel_luaConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tarvel_luaConfig.cmake
              ${PROJECT_BINARY_DIR}/tarvel_luaConfigVersion.cmake
        DESTINATION ${packageDir} COMPONENT development)

file(RELATIVE_PATH includeDirFromPc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(cmake/tarvel_lua.pc.in tarvel_lua.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tarvel_lua.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
