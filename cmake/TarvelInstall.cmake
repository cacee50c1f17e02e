# Installs the program, the library, its one public header and the package that find_package(tarvel_lua) reads.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/tarvel_lua)

install(TARGETS tarvel_lua EXPORT tarvelTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarvel/lua
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARVELLUA_BUILD_PROGRAM)
  install(TARGETS tarvellua RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT tarvelTargets NAMESPACE tarvel:: DESTINATION ${packageDir})
configure_package_config_file(cmake/tarvel_luaConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/tarvel_luaConfig.cmake
                              INSTALL_DESTINATION ${packageDir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tarvel_luaConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tarvel_luaConfig.cmake
              ${PROJECT_BINARY_DIR}/tarvel_luaConfigVersion.cmake
        DESTINATION ${packageDir})
