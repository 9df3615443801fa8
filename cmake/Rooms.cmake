# Takes the sources of other systems out of a list: those named *_posix.cpp and *_posix_test.cpp, or
# *_windows.cpp and *_windows_test.cpp.
function(ambrelio_keep_this_system list)
  if(WIN32)
    set(other posix)
  else()
    set(other windows)
  endif()
  list(FILTER ${list} EXCLUDE REGEX "_${other}(_test)?\\.cpp$")
  set(${list} ${${list}} PARENT_SCOPE)
endfunction()

# A room is one folder of src/ambrelio with what it may know. Each is a library of its own, so that
# a use that runs against the arrows of docs/architecture.md does not link; together they are
# `ambrelio`. A room for Windows alone is empty on other systems.
#
#   ambrelio_room(<folder> [WINDOWS] [KNOWS <folder>...] [LINKS <library>...] [OPTIONS <option>...])
function(ambrelio_room folder)
  cmake_parse_arguments(ROOM "WINDOWS" "" "KNOWS;LINKS;OPTIONS" ${ARGN})
  string(REPLACE "/" "_" name "${folder}")
  if(ROOM_WINDOWS AND NOT WIN32)
    add_library(room_${name} INTERFACE)
    return()
  endif()
  file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/ambrelio/${folder}/*.cpp")
  ambrelio_keep_this_system(sources)
  add_library(room_${name} STATIC ${sources})
  target_include_directories(room_${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  target_compile_options(room_${name} PRIVATE ${AMBRELIO_FUZZED} ${ROOM_OPTIONS})
  target_link_libraries(room_${name} PRIVATE $<BUILD_INTERFACE:ambrelio_warnings>
                        PUBLIC ${ROOM_LINKS})
  foreach(known IN LISTS ROOM_KNOWS)
    string(REPLACE "/" "_" known_name "${known}")
    target_link_libraries(room_${name} PUBLIC room_${known_name})
  endforeach()
  set_property(GLOBAL APPEND PROPERTY AMBRELIO_ROOMS room_${name})
endfunction()

# How tests are compiled: the presets for Windows optimise what they make to be used, but a test runs
# once; and what it does itself is no undefined behaviour of the library's.
if(WIN32)
  set(AMBRELIO_TEST_OPTIONS -O0)
elseif(AMBRELIO_SANITIZE)
  set(AMBRELIO_TEST_OPTIONS -fno-sanitize=undefined)
endif()

# The test framework costs more to read than most tests: it is read once.
function(ambrelio_read_test_framework)
  file(WRITE "${CMAKE_CURRENT_BINARY_DIR}/test_framework.cpp" "")
  add_executable(test_framework EXCLUDE_FROM_ALL "${CMAKE_CURRENT_BINARY_DIR}/test_framework.cpp")
  target_link_libraries(test_framework PRIVATE ambrelio_warnings GTest::gmock_main)
  target_compile_options(test_framework PRIVATE ${AMBRELIO_TEST_OPTIONS})
  target_precompile_headers(test_framework PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
endfunction()

# The tests of one room: every tests/<folder>/*_test.cpp, in one program named <room>_tests.
#
#   ambrelio_room_tests(<folder> [LINKS <library>...])
function(ambrelio_room_tests folder)
  cmake_parse_arguments(TESTS "" "" "LINKS" ${ARGN})
  string(REPLACE "/" "_" name "${folder}")
  file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/${folder}/*.cpp")
  ambrelio_keep_this_system(sources)
  add_executable(${name}_tests ${sources})
  target_include_directories(${name}_tests PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${name}_tests PRIVATE ambrelio_warnings ${TESTS_LINKS} GTest::gmock_main)
  target_compile_definitions(${name}_tests PRIVATE AMBRELIO_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  target_compile_options(${name}_tests PRIVATE ${AMBRELIO_TEST_OPTIONS})
  target_precompile_headers(${name}_tests REUSE_FROM test_framework)
  if(CMAKE_CROSSCOMPILING OR NOT AMBRELIO_TESTS_ONE_BY_ONE)
    # Each start under Wine or the sanitizers costs more than most tests.
    add_test(NAME ${folder} COMMAND ${name}_tests --gtest_brief=1)
    set_tests_properties(${folder} PROPERTIES TIMEOUT 1500)
  else()
    gtest_discover_tests(${name}_tests TEST_PREFIX "${folder}: " DISCOVERY_TIMEOUT 60
                         PROPERTIES TIMEOUT 300)
  endif()
endfunction()

# The tests of a room once more, over Jet files (tests/support/test_files.h), as one test of CTest's.
#
#   ambrelio_room_tests_over_jet(<folder> [<filter of GoogleTest>])
function(ambrelio_room_tests_over_jet folder)
  string(REPLACE "/" "_" name "${folder}")
  add_test(NAME "${folder} over jet" COMMAND ${name}_tests --gtest_brief=1 --gtest_filter=${ARGN})
  set_tests_properties("${folder} over jet" PROPERTIES TIMEOUT 900
                       ENVIRONMENT AMBRELIO_TEST_FILES=jet)
endfunction()
