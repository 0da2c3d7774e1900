# The library, and one function for each kind of program that the project builds around it.
include(GoogleTest OPTIONAL)
include(CheckCXXSourceCompiles)

# What the library and everything that includes its headers must be compiled with. 32-bit x86 computes
# with more bits than a double has unless it is told not to.
check_cxx_source_compiles("#ifndef __i386__\n#error\n#endif\nint main() {}" VEQ_IS_I386)
set(VEQ_PUBLIC_OPTIONS "")
if(VEQ_IS_I386)
  set(VEQ_PUBLIC_OPTIONS -msse2 -mfpmath=sse)
endif()

# veq_units(TARGET SOURCE...): with VEQ_UNITY, compiles the sources of one folder as few units, which
# takes a quarter of the time. scripts/units keeps apart what cannot stand together.
function(veq_units target)
  if(NOT VEQ_UNITY)
    set_target_properties(${target} PROPERTIES UNITY_BUILD OFF)
    return()
  endif()
  execute_process(COMMAND "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../scripts/units" -n ${VEQ_UNIT_SIZE} ${ARGN} OUTPUT_VARIABLE units
                  WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" COMMAND_ERROR_IS_FATAL ANY)
  string(STRIP "${units}" units)
  string(REPLACE "\n" ";" units "${units}")
  foreach(line IN LISTS units)
    string(REGEX MATCH "^([^ ]+) (.*)$" line "${line}")
    set_source_files_properties("${CMAKE_MATCH_2}" PROPERTIES UNITY_GROUP "${CMAKE_MATCH_1}")
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ARGN})
  # In a unit a local constant may hide one of another source, and a type of a source's own looks to
  # GCC like one of a header.
  target_compile_options(${target} PRIVATE -Wno-shadow
                         $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endfunction()

# What GCC makes unique in the process is never unloaded, and the standard library has such things in every
# header. Clang makes nothing so.
set(VEQ_UNLOADABLE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)

# veq_library(NAME [STATIC] [EXCLUDE_FROM_ALL]): the library from VEQ_SOURCES, static or shared as
# BUILD_SHARED_LIBS says. What is PRIVATE here reaches no project that uses the library.
function(veq_library name)
  add_library(${name} ${ARGN} ${VEQ_SOURCES})
  target_include_directories(${name} PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
                                            "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_compile_options(${name} PUBLIC ${VEQ_PUBLIC_OPTIONS})
  target_link_libraries(${name} PUBLIC Threads::Threads)
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden
                                           VISIBILITY_INLINES_HIDDEN ON VERSION ${PROJECT_VERSION}
                                           SOVERSION ${VEQ_ABI_VERSION})
  veq_developer_options(${name})
  veq_units(${name} ${VEQ_SOURCES})
  # Not by default, since it hides an include that is missing.
  if(VEQ_PRECOMPILE)
    target_precompile_headers(${name} PRIVATE <algorithm> <charconv> <cmath> <filesystem> <functional>
                              <memory> <mutex> <random> <string> "${PROJECT_SOURCE_DIR}/veq/veq.hpp"
                              "${PROJECT_SOURCE_DIR}/veq/network/internal/network_core.hpp")
  endif()
  # A fused multiply-add would change the last bit of a walk or a strength between machines.
  target_compile_options(${name} PRIVATE -ffp-contract=off ${VEQ_UNLOADABLE})
endfunction()

# veq_need(FOUND NAME PACKAGE SWITCH): ends the configuration where something is missing, and says
# what to do.
function(veq_need found name package switch)
  if(NOT found)
    message(FATAL_ERROR "${name} was not found. Install it (on Debian and Ubuntu: apt-get install "
                        "${package}), or build without what needs it: -D${switch}=OFF")
  endif()
endfunction()

# veq_command(RESULT TARGET): what starts a program that was built here: its file, or where it is one of
# another processor, a script of one line that has the emulator run it.
function(veq_command result target)
  set(command "$<TARGET_FILE:${target}>")
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
    set(script "${PROJECT_BINARY_DIR}/emulated/$<TARGET_FILE_NAME:${target}>")
    file(GENERATE OUTPUT "${script}" CONTENT "#!/bin/sh\nexec ${emulator} '${command}' \"$@\"\n"
         FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    set(command "${script}")
  endif()
  set(${result} "${command}" PARENT_SCOPE)
endfunction()

# veq_test(NAME SOURCE...): a GoogleTest program, each of its tests known to ctest by name and, as its
# label, by the program's.
function(veq_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE veq_internals veq_test_support GTest::gmock GTest::gtest_main)
  target_precompile_headers(${name} REUSE_FROM veq_test_support)
  veq_developer_options(${name})
  target_compile_options(${name} PRIVATE ${VEQ_TEST_OPTIONS})
  veq_units(${name} ${ARGN})
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES LABELS ${name})
endfunction()

# veq_benchmark(NAME SOURCE...): a Google Benchmark program.
function(veq_benchmark name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE veq_internals benchmark::benchmark_main)
  veq_developer_options(${name})
endfunction()
