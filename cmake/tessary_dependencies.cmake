# Libraries from Debian's packages. The header-only ones are linked into one folder of the build tree: adding
# /usr/include itself to a cross-build would shadow the target's own headers.

set(thirdparty ${CMAKE_BINARY_DIR}/thirdparty/include)
file(MAKE_DIRECTORY ${thirdparty})
foreach(package CLI nlohmann spdlog fmt)
  if(NOT EXISTS /usr/include/${package})
    message(FATAL_ERROR "/usr/include/${package} is missing: run scripts/setup.sh")
  endif()
  file(CREATE_LINK /usr/include/${package} ${thirdparty}/${package} SYMBOLIC)
endforeach()
add_library(tessary_thirdparty INTERFACE)
target_include_directories(tessary_thirdparty SYSTEM INTERFACE ${thirdparty})

# Expat parses XML: natively the packaged library, for Windows what scripts/expat.sh makes of its packaged sources.
add_library(tessary_expat INTERFACE)
if(WIN32)
  set(expat ${CMAKE_SOURCE_DIR}/build/expat)
  if(NOT EXISTS ${expat}/stamp)
    message(FATAL_ERROR "${expat} is missing: run scripts/setup.sh")
  endif()
  target_include_directories(tessary_expat SYSTEM INTERFACE ${expat}/include)
  target_compile_definitions(tessary_expat INTERFACE XML_STATIC)
  target_link_libraries(tessary_expat INTERFACE ${expat}/lib/libexpat.a)
else()
  target_link_libraries(tessary_expat INTERFACE expat)
endif()

# GoogleTest is built from the packaged sources with our toolchain.
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
foreach(library gtest gtest_main gmock)
  target_compile_options(${library} PRIVATE ${TESSARY_TEST_OPTIONS})
endforeach()
