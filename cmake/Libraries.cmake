# The libraries the project is built on. On the system itself they come from its packages. A cross
# build for Windows finds none there: SQLite's source comes from a pinned package, the header-only
# ones are the system's own, and GoogleTest is built from the system's sources.
if(NOT WIN32)
  find_package(SQLite3 REQUIRED)
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  find_package(fmt REQUIRED)
  if(AMBRELIO_TESTS)
    find_package(GTest REQUIRED)
  endif()
  return()
endif()

enable_language(C)

set(sqlite_source ${PROJECT_BINARY_DIR}/_sqlite)
if(NOT EXISTS ${sqlite_source}/sqlite3.c)
  execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/sqlite-source ${sqlite_source}
                  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endif()
add_library(sqlite3 STATIC ${sqlite_source}/sqlite3.c)
target_include_directories(sqlite3 SYSTEM PUBLIC ${sqlite_source})
target_compile_options(sqlite3 PRIVATE -w)
target_compile_definitions(sqlite3 PRIVATE SQLITE_THREADSAFE=1 SQLITE_OMIT_LOAD_EXTENSION
                           SQLITE_DQS=0 SQLITE_DEFAULT_MEMSTATUS=0)
add_library(SQLite::SQLite3 ALIAS sqlite3)

# Links to single libraries: with the whole of /usr/include on the path, the system's own C headers
# would come before those of Windows.
set(header_only ${PROJECT_BINARY_DIR}/_headers)
file(MAKE_DIRECTORY ${header_only})
foreach(library fmt CLI nlohmann)
  if(NOT EXISTS /usr/include/${library})
    message(FATAL_ERROR "/usr/include/${library} is missing")
  endif()
  file(CREATE_LINK /usr/include/${library} ${header_only}/${library} SYMBOLIC)
endforeach()
foreach(target CLI11::CLI11 nlohmann_json::nlohmann_json fmt::fmt)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${header_only})
endforeach()
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)

if(AMBRELIO_TESTS)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/_googletest EXCLUDE_FROM_ALL SYSTEM)
  foreach(target gmock_main gmock gtest)
    if(NOT TARGET GTest::${target})
      add_library(GTest::${target} ALIAS ${target})
    endif()
  endforeach()
endif()
