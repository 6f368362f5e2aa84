# Flags that every target of ours shares, and the functions that declare our targets.

set(TESSARY_SANITIZE "" CACHE STRING "Sanitizers of a native build, as -fsanitize= takes them")
option(TESSARY_FUZZ "Build the fuzz programs, and nothing but them" OFF)

add_library(tessary_flags INTERFACE)
target_include_directories(tessary_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(tessary_flags INTERFACE
  -Wall -Wextra -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wnull-dereference
  -Werror)

# Debug builds watch the order in which locks are taken (lib/misc/lock_rank.h).
target_compile_definitions(tessary_flags INTERFACE $<$<CONFIG:Debug>:TESSARY_LOCK_RANKS>)

if(WIN32)
  target_compile_definitions(tessary_flags INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00 WINVER=0x0A00 NTDDI_VERSION=0x0A000000)
  target_compile_options(tessary_flags INTERFACE -fstack-protector-strong -ffunction-sections -fdata-sections)
  target_link_options(tessary_flags INTERFACE
    -static -fstack-protector-strong -Wl,--gc-sections -Wl,--dynamicbase,--nxcompat,--high-entropy-va)
  set(trap_checks undefined,float-cast-overflow)
  target_compile_definitions(tessary_flags INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
  target_compile_options(tessary_flags INTERFACE
    "$<$<CONFIG:Debug>:-fsanitize=${trap_checks};-fsanitize-undefined-trap-on-error>")
elseif(TESSARY_SANITIZE)
  add_compile_options(-fsanitize=${TESSARY_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TESSARY_SANITIZE})
  if(TESSARY_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
  endif()
endif()

# Line numbers only: describing every variable takes a third of a build's time.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1 -DNDEBUG")
set(CMAKE_CXX_FLAGS_DEBUG "-g1")

# tessary_version_info(target DESCRIPTION text TYPE DRIVER|DLL|APP)
# Gives a DLL or EXE its VERSIONINFO; the numbers come from packaging/version.h.
function(tessary_version_info target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "DESCRIPTION;TYPE" "")
  set(VERSION_DESCRIPTION "${arg_DESCRIPTION}")
  set(VERSION_IS_${arg_TYPE} 1)
  get_target_property(type ${target} TYPE)
  get_target_property(name ${target} OUTPUT_NAME)
  if(NOT name)
    set(name ${target})
  endif()
  set(VERSION_INTERNAL_NAME "${name}")
  set(suffix .exe)
  if(NOT type STREQUAL "EXECUTABLE")
    set(suffix .dll)
  endif()
  set(VERSION_FILE_NAME "${name}${suffix}")
  set(VERSION_KIND "VERSION_IS_${arg_TYPE}")
  set(output ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
  configure_file(${CMAKE_SOURCE_DIR}/packaging/version_info.rc.in ${output} @ONLY)
  set_source_files_properties(${output} PROPERTIES
    LANGUAGE RC COMPILE_OPTIONS "-I${CMAKE_SOURCE_DIR}" OBJECT_DEPENDS ${CMAKE_SOURCE_DIR}/packaging/version.h)
  target_sources(${target} PRIVATE ${output})
endfunction()

# Test programs themselves need no optimising, and their common headers are compiled once.
set(TESSARY_TEST_OPTIONS -O0)
function(tessary_declare_test_headers)
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/test_headers.cpp CONTENT "// Carries the precompiled headers.\n")
  add_library(tessary_test_headers STATIC ${CMAKE_BINARY_DIR}/test_headers.cpp)
  target_link_libraries(tessary_test_headers PRIVATE tessary_flags gtest gmock)
  target_compile_options(tessary_test_headers PRIVATE ${TESSARY_TEST_OPTIONS})
  target_precompile_headers(tessary_test_headers PRIVATE
    <gtest/gtest.h> <gmock/gmock.h> <algorithm> <filesystem> <fstream> <functional> <map> <memory> <optional> <set>
    <string> <thread> <vector> "$<$<BOOL:${WIN32}>:<windows.h$<ANGLE-R>>" "$<$<BOOL:${WIN32}>:<winspool.h$<ANGLE-R>>")
endfunction()

# tessary_test(name SOURCES ... LIBS ... [TIMEOUT seconds])
# One GoogleTest program and its CTest entry.
function(tessary_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT" "SOURCES;LIBS")
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE tessary_flags ${arg_LIBS} gtest_main gmock)
  target_compile_options(${name} PRIVATE ${TESSARY_TEST_OPTIONS})
  target_precompile_headers(${name} REUSE_FROM tessary_test_headers)
  if(WIN32)
    tessary_version_info(${name} DESCRIPTION "Tessary printing preferences test program" TYPE APP)
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} RUN_SERIAL ON)
endfunction()
