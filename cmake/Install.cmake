# What `cmake --install` puts in place: the library with its headers, a package configuration for
# CMake and pkg-config, and the command line with its manual page and what bash completes. The two
# components are the two Debian packages of Package.cmake.
include(CMakePackageConfigHelpers)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME program)
install(TARGETS ambrelio_app RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/docs/ambrelio.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${PROJECT_SOURCE_DIR}/completions/ambrelio.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ambrelio)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
install(TARGETS ambrelio EXPORT AmbrelioTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/ambrelio DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h" PATTERN "engine/embedded" EXCLUDE
        PATTERN "engine/dao_com" EXCLUDE)

set(config_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Ambrelio)
install(EXPORT AmbrelioTargets NAMESPACE Ambrelio:: DESTINATION ${config_folder})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/AmbrelioConfig.cmake.in
  ${PROJECT_BINARY_DIR}/AmbrelioConfig.cmake INSTALL_DESTINATION ${config_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/AmbrelioConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/AmbrelioConfig.cmake
              ${PROJECT_BINARY_DIR}/AmbrelioConfigVersion.cmake DESTINATION ${config_folder})

# The folders are named from where the file itself lies, so that the tree may be moved.
file(RELATIVE_PATH AMBRELIO_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/cmake/ambrelio.pc.in ${PROJECT_BINARY_DIR}/ambrelio.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ambrelio.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
