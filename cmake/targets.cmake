# SPDX-License-Identifier: GPL-3.0-or-later
# Functions that define this project's targets: one call per folder, with all sources of the folder.

# The warnings that the project enables.
add_library(orven_warnings INTERFACE)
target_compile_options(orven_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

# orven_library(name [LINK targets…] [SYSTEM libraries…])
# A static library of the .cpp files in the calling folder, on top of src/base.
function(orven_library name)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  if(NOT name STREQUAL orven_base)
    list(APPEND ARG_LINK orven_base)
  endif()
  target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE orven_warnings)
endfunction()

# Factor for the time limits of tests in builds that run slower, as under a sanitizer.
set(ORVEN_TIME_FACTOR 1 CACHE STRING "factor for the time limits of all tests")

# Builds the tests that run under ThreadSanitizer: all but those with the label qt.
add_custom_target(orven_tests_without_qt)

# orven_discover_tests(name TIMEOUT seconds LABEL qt|tsan [ALONE])
# Each case of the GoogleTest program becomes a CTest test; ALONE: no other test runs beside it.
function(orven_discover_tests name)
  cmake_parse_arguments(ARG "ALONE" "TIMEOUT;LABEL" "" ${ARGN})
  if(ARG_LABEL STREQUAL tsan)
    add_dependencies(orven_tests_without_qt ${name})
  endif()
  math(EXPR limit "${ARG_TIMEOUT} * ${ORVEN_TIME_FACTOR}")
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 30 NO_PRETTY_VALUES NO_PRETTY_TYPES
    PROPERTIES TIMEOUT ${limit} LABELS ${ARG_LABEL} RUN_SERIAL ${ARG_ALONE} ENVIRONMENT ORVEN_TIME_FACTOR=${ORVEN_TIME_FACTOR})
endfunction()

# orven_test(name TIMEOUT seconds LINK targets… [LABELS qt] [ALONE])
# One GoogleTest program of the .cpp files in the calling folder; each case is a CTest test. The label is tsan
# unless it is qt.
function(orven_test name)
  cmake_parse_arguments(ARG "ALONE" "TIMEOUT;LABELS" "LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_executable(${name} ${sources})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE ORVEN_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gtest_main orven_warnings)
  if(NOT ARG_LABELS)
    set(ARG_LABELS tsan)
  endif()
  if(ARG_ALONE)
    set(alone ALONE)
  endif()
  orven_discover_tests(${name} TIMEOUT ${ARG_TIMEOUT} LABEL ${ARG_LABELS} ${alone})
endfunction()

# orven_scale_limits()
# To be called last in a folder that uses add_test itself: scales the tests' limits and passes them the factor.
# Slow whole programs that must keep pace with a caller run alone.
function(orven_scale_limits)
  get_property(names DIRECTORY PROPERTY TESTS)
  foreach(name ${names})
    get_property(limit TEST ${name} PROPERTY TIMEOUT)
    get_property(label TEST ${name} PROPERTY LABELS)
    if(ORVEN_TIME_FACTOR GREATER 1 AND "qt" IN_LIST label)
      set_property(TEST ${name} PROPERTY RUN_SERIAL TRUE)
    endif()
    math(EXPR limit "${limit} * ${ORVEN_TIME_FACTOR}")
    set_property(TEST ${name} PROPERTY TIMEOUT ${limit})
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT ORVEN_TIME_FACTOR=${ORVEN_TIME_FACTOR})
  endforeach()
endfunction()
