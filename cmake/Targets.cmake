# What every target of the project shares: warnings, sanitizers, and the rule by which tests and
# benchmarks that stand beside their unit become programs.

add_library(textwizard_options INTERFACE)
target_compile_options(textwizard_options INTERFACE -Wall -Wextra -Wshadow -Wconversion)
if(TEXTWIZARD_WERROR)
  target_compile_options(textwizard_options INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 warns of overlaps inside std::string's own operator+ (its bug 105329).
  target_compile_options(textwizard_options INTERFACE -Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
  target_compile_options(textwizard_options INTERFACE -Wthread-safety)
endif()
if(TEXTWIZARD_SANITIZE)
  add_compile_options(-fsanitize=${TEXTWIZARD_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TEXTWIZARD_SANITIZE})
endif()
if(TEXTWIZARD_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(TEXTWIZARD_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()

# The .cpp files of a folder and the folders below it: units, or those whose name ends with KIND
# (test, benchmark).
function(textwizard_sources OUT FOLDER KIND)
  file(GLOB_RECURSE found CONFIGURE_DEPENDS ${FOLDER}/*.cpp)
  if(KIND STREQUAL "unit")
    list(FILTER found EXCLUDE REGEX "_(test|benchmark)\\.cpp$")
  else()
    list(FILTER found INCLUDE REGEX "_${KIND}\\.cpp$")
  endif()
  set(${OUT} ${found} PARENT_SCOPE)
endfunction()

configure_file(${PROJECT_SOURCE_DIR}/tests/support/TreePaths.h.in
  ${CMAKE_BINARY_DIR}/generated/TreePaths.h @ONLY)

# One test program NAME of all X_test.cpp of FOLDER, linked with the libraries that follow; every
# test of it is an entry of ctest.
function(textwizard_tests NAME FOLDER)
  if(NOT TEXTWIZARD_TESTS)
    return()
  endif()
  textwizard_sources(sources ${FOLDER} test)
  if(NOT sources)
    return()
  endif()
  add_executable(${NAME} ${sources})
  target_link_libraries(${NAME} PRIVATE textwizard_options GTest::gmock GTest::gtest_main ${ARGN})
  target_include_directories(${NAME} PRIVATE ${PROJECT_SOURCE_DIR} ${CMAKE_BINARY_DIR}/generated)
  # Outputs wait until the disk has them: where memory can be had for a disk, nobody has to.
  set(environment "")
  if(IS_DIRECTORY /dev/shm)
    set(environment ENVIRONMENT TMPDIR=/dev/shm)
  endif()
  gtest_discover_tests(${NAME} DISCOVERY_MODE PRE_TEST TEST_PREFIX ${NAME}:
    PROPERTIES TIMEOUT 600 ${environment})
endfunction()

# One benchmark program NAME of all X_benchmark.cpp of FOLDER.
function(textwizard_benchmarks NAME FOLDER)
  if(NOT TEXTWIZARD_BENCHMARKS)
    return()
  endif()
  textwizard_sources(sources ${FOLDER} benchmark)
  if(NOT sources)
    return()
  endif()
  add_executable(${NAME} ${sources})
  target_link_libraries(${NAME} PRIVATE textwizard_options benchmark::benchmark_main ${ARGN})
  target_include_directories(${NAME} PRIVATE ${PROJECT_SOURCE_DIR})
endfunction()
