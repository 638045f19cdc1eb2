# What every target of this project has in common.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_AUTOUIC_SEARCH_PATHS ${CMAKE_SOURCE_DIR}/forms)

set(SYSSET_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")

find_program(SYSSET_CCACHE ccache)
if(SYSSET_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${SYSSET_CCACHE})
endif()

add_library(sysset_options INTERFACE)
target_include_directories(sysset_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(sysset_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
    # clang's -Wconversion minds the sign of an array's index; gcc's does not.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>
    # What is called once a tick lies close together: an idle panel pays for every page it touches.
    $<$<CONFIG:Release>:-fno-plt> $<$<CONFIG:Release>:-ffunction-sections>
    $<$<CONFIG:Release>:-fdata-sections>)
target_link_options(sysset_options INTERFACE
    $<$<CONFIG:Release>:-Wl,--gc-sections> $<$<CONFIG:Release>:-Wl,-O1>
    # A tenth of a megabyte of relocations, all read at the start, in two kilobytes (glibc 2.36).
    $<$<CONFIG:Release>:-Wl,-z,pack-relative-relocs>)
target_compile_definitions(sysset_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
    QT_DEPRECATED_WARNINGS)
# The sanitizers' builds: docs/decisions/0017-time-of-the-checks.md.
if(SYSSET_SANITIZE)
  target_compile_options(sysset_options INTERFACE
      -fsanitize=${SYSSET_SANITIZE} -fno-omit-frame-pointer -g1 -O1)
  target_link_options(sysset_options INTERFACE -fsanitize=${SYSSET_SANITIZE})
  if(SYSSET_SANITIZE MATCHES "undefined")
    target_compile_options(sysset_options INTERFACE -fno-sanitize-recover=undefined)
  endif()
endif()

# One static library a folder: sysset_library(NAME SOURCES file... LINKS target...)
# With OBJECTS all of it goes into every program that links it: for what stands behind the
# platform's headers, which the other libraries call without naming it.
function(sysset_library name)
  cmake_parse_arguments(arg "OBJECTS" "" "SOURCES;LINKS" ${ARGN})
  if(arg_OBJECTS)
    add_library(${name} OBJECT ${arg_SOURCES})
  else()
    add_library(${name} STATIC ${arg_SOURCES})
  endif()
  target_link_libraries(${name} PUBLIC sysset_options ${arg_LINKS})
  if(SYSSET_SANITIZE)
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 10)
  endif()
endfunction()

# One program: sysset_program(NAME SOURCES file... LINKS target...)
function(sysset_program name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE sysset_options ${arg_LINKS})
endfunction()

# One Qt Test program, run by ctest without a display and without touching the host's settings:
# sysset_test(NAME SOURCES file... LINKS target...)
function(sysset_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  sysset_program(${name} SOURCES ${arg_SOURCES} LINKS ${arg_LINKS} Qt5::Test)
  set_target_properties(${name} PROPERTIES
      RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  if(SYSSET_SANITIZE)
    target_compile_options(${name} PRIVATE -O0)
  endif()
  add_test(NAME ${name} COMMAND ${name})
  sysset_test_environment(${name})
endfunction()

function(sysset_test_environment name)
  set_tests_properties(${name} PROPERTIES ENVIRONMENT
      "QT_QPA_PLATFORM=offscreen;FONTCONFIG_FILE=${CMAKE_BINARY_DIR}/fonts.conf;DBUS_SESSION_BUS_ADDRESS=disabled:;XDG_RUNTIME_DIR=${CMAKE_BINARY_DIR}/runtime;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0;UBSAN_OPTIONS=print_stacktrace=1;TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/tsan.supp:print_suppressions=0:ignore_noninstrumented_modules=1:halt_on_error=1")
endfunction()
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/runtime)
file(CHMOD ${CMAKE_BINARY_DIR}/runtime PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
