# The Debian packages that `cpack` makes of an installation: the command line, and the library with its
# headers. `./dev package` makes them beside the archive for Windows.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ambrelio)
set(CPACK_PACKAGE_CONTACT "The Ambrelio maintainers <maintainers@ambrelio.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL program development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME ambrelio)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION database)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION
    "${PROJECT_DESCRIPTION}\n The command line: journals, questions, statements, and the sensor gateway of an olive-oil mill.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libambrelio-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS libsqlite3-dev)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "${PROJECT_DESCRIPTION}\n The library with its headers, for programs in C++20.")

include(CPack)
