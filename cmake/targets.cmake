# SPDX-License-Identifier: GPL-3.0-or-later
# How this project's targets are made: one call per folder, sources found by the folder.

# Every warning that the project keeps itself clean of.
add_library(orven_warnings INTERFACE)
target_compile_options(orven_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

# orven_library(name [LINK targets…] [SYSTEM libraries…])
# A static library of the .cpp files in the calling folder.
function(orven_library name)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE orven_warnings)
endfunction()

# orven_test(name TIMEOUT seconds LINK targets… [LABELS labels…])
# One GoogleTest program of the .cpp files in the calling folder, run as one CTest test a case.
function(orven_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "LINK;LABELS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_executable(${name} ${sources})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE ORVEN_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gtest_main orven_warnings)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
    PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
endfunction()
