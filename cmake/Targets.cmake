# One line per folder.
include(GoogleTest)

# Headers of the standard library that most files include, read once for all of them.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/headers.cpp CONTENT "")  # left alone while it is the same
add_library(ostrel_headers STATIC EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/headers.cpp)
target_link_libraries(ostrel_headers PRIVATE ostrel_compile)
target_precompile_headers(ostrel_headers PRIVATE <algorithm> <chrono> <cstdint> <filesystem> <functional> <memory> <optional>
  <string> <string_view> <vector>)

# ostrel_library(NAME SOURCES ... [WINDOWS ...] [POSIX ...] [LINKS ...]): a static library of one folder. WINDOWS and
# POSIX name the files that exist once per platform.
function(ostrel_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;WINDOWS;POSIX;LINKS" ${ARGN})
  if(WIN32)
    list(APPEND ARG_SOURCES ${ARG_WINDOWS})
  else()
    list(APPEND ARG_SOURCES ${ARG_POSIX})
  endif()
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC ostrel_compile ${ARG_LINKS})
  target_precompile_headers(${name} REUSE_FROM ostrel_headers)
endfunction()

# ostrel_test(NAME [PREFIX TEXT] [LOCK NAME] SOURCES ... [LINKS ...]): a GoogleTest program; each of its tests is one CTest
# test, whose name PREFIX precedes. Tests with the same LOCK never run side by side.
function(ostrel_test name)
  cmake_parse_arguments(ARG "" "PREFIX;LOCK" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ostrel_compile ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  target_precompile_headers(${name} REUSE_FROM ostrel_test_headers)
  target_compile_options(${name} PRIVATE ${OSTREL_TEST_OPTIONS})
  target_compile_definitions(${name} PRIVATE OSTREL_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
    OSTREL_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
  set(lock "")
  if(ARG_LOCK)
    set(lock RESOURCE_LOCK ${ARG_LOCK})
  endif()
  # Wine on a busy machine takes long to start.
  gtest_discover_tests(${name} TEST_PREFIX "${ARG_PREFIX}" DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120 PROPERTIES TIMEOUT 120 ${lock})
endfunction()

# ostrel_libraries_beside(TEST LIBRARY...): host libraries that the module looks for beside the program.
function(ostrel_libraries_beside test)
  foreach(library IN LISTS ARGN)
    add_dependencies(${test} ${library})
    add_custom_command(TARGET ${test} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:${library}> $<TARGET_FILE_DIR:${test}>)
  endforeach()
endfunction()
