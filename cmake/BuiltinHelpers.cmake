# The project's two CMake helpers: one adds a library, one adds a test.
include_guard(GLOBAL)

set(BUILTIN_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow
                     -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual)
# GCC 12 at -O3 reports -Wrestrict on ordinary std::string concatenation inside libstdc++
# (GCC bug 105329); the warning says nothing about our code there.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  list(APPEND BUILTIN_WARNINGS -Wno-restrict)
endif()

function(builtin_warnings target)
  target_compile_options(${target} PRIVATE ${BUILTIN_WARNINGS})
  if(BUILTIN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# Adds the subfolders of DIR listed in ARGN that have a CMakeLists.txt, so that each
# subsystem keeps its own list of sources.
function(builtin_add_subdirectories dir)
  foreach(sub IN LISTS ARGN)
    if(EXISTS ${dir}/${sub}/CMakeLists.txt)
      add_subdirectory(${dir}/${sub})
    endif()
  endforeach()
endfunction()

# builtin_add_library(NAME <target> ALIAS <ns::name> [SHARED|INTERFACE]
#                     SOURCES ... [PUBLIC_LIBS ...] [PRIVATE_LIBS ...])
# A library with its public headers in include/ beside the calling CMakeLists.txt.
function(builtin_add_library)
  cmake_parse_arguments(arg "SHARED;INTERFACE;STATIC" "NAME;ALIAS" "SOURCES;PUBLIC_LIBS;PRIVATE_LIBS" ${ARGN})
  if(arg_INTERFACE)
    add_library(${arg_NAME} INTERFACE)
    target_include_directories(${arg_NAME} INTERFACE
      $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
    target_link_libraries(${arg_NAME} INTERFACE ${arg_PUBLIC_LIBS})
  else()
    set(kind SHARED)
    if(arg_STATIC)
      set(kind STATIC)
    endif()
    add_library(${arg_NAME} ${kind} ${arg_SOURCES})
    target_include_directories(${arg_NAME} PUBLIC
      $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
    target_link_libraries(${arg_NAME} PUBLIC ${arg_PUBLIC_LIBS} PRIVATE ${arg_PRIVATE_LIBS})
    builtin_warnings(${arg_NAME})
  endif()
  if(arg_ALIAS)
    add_library(${arg_ALIAS} ALIAS ${arg_NAME})
  endif()
endfunction()

# builtin_add_test(<name> SOURCES ... [LIBS ...] [PER_PROCESS] [NO_MAIN] [LABELS ...])
# LABELS threads marks a test that starts threads: the thread_tests target builds it.
# One GoogleTest executable. Its cases are registered with CTest one by one, each in its own
# process, unless PER_PROCESS asks for the whole executable to run as one test, which is what
# tests of process-wide state (service holders, once-only starts) need.
function(builtin_add_test name)
  cmake_parse_arguments(arg "PER_PROCESS;NO_MAIN" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  set(main GTest::gmock_main)
  if(arg_NO_MAIN)
    set(main GTest::gmock)
  endif()
  target_link_libraries(${name} PRIVATE ${arg_LIBS} GTest::gtest ${main} builtin_test_support)
  builtin_warnings(${name})
  if(arg_PER_PROCESS)
    add_test(NAME ${name} COMMAND ${name})
    if(arg_LABELS)
      set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}")
    endif()
  else()
    include(GoogleTest)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                         PROPERTIES LABELS "${arg_LABELS}")
  endif()
  # Tests that start threads also run under ThreadSanitizer, whose preset builds only them.
  if("threads" IN_LIST arg_LABELS)
    add_dependencies(thread_tests ${name})
  endif()
endfunction()

# builtin_add_bench(<name> SOURCES ... [LIBS ...]): a Google Benchmark program, built but
# never run by the tests.
function(builtin_add_bench name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBS} benchmark::benchmark bench_support)
  builtin_warnings(${name})
endfunction()
