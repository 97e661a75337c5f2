# The few ways in which this project makes targets. Include paths are rooted at the repository,
# so that every #include names its folder.

add_library(tavmap_flags INTERFACE)
target_include_directories(tavmap_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(tavmap_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wcast-align
  -Wdouble-promotion -Wnon-virtual-dtor -ffp-contract=off
  $<$<BOOL:${TAVMAP_WERROR}>:-Werror>)
# g++ 12 takes the pieces of a text put together with + for ones that overlap, and what std::optional and
# std::variant hold for values that were never set once a sanitizer's checks stand in between.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_options(tavmap_flags INTERFACE -Wno-restrict)
  endif()
  if(TAVMAP_SANITIZE)
    target_compile_options(tavmap_flags INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
if(TAVMAP_SANITIZE)
  target_compile_options(tavmap_flags INTERFACE
    -fsanitize=${TAVMAP_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(tavmap_flags INTERFACE -fsanitize=${TAVMAP_SANITIZE})
endif()
if(TAVMAP_FUZZ)  # the libraries too: the fuzzer looks for inputs that take new branches there
  target_compile_options(tavmap_flags INTERFACE -fsanitize=fuzzer-no-link)
  file(REMOVE ${CMAKE_BINARY_DIR}/fuzzers.txt)
endif()

# ccache stores what was made from precompiled headers when it is told that it may.
if(CMAKE_CXX_COMPILER_LAUNCHER STREQUAL "ccache")
  set(CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_SLOPPINESS=pch_defines,time_macros ccache)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(tavmap_flags INTERFACE $<$<BOOL:${TAVMAP_PRECOMPILE}>:-fpch-preprocess>)
endif()

# tavmap_together(<target>): with TAVMAP_TOGETHER the compiler reads several of the target's files at a time, which
# saves it most of their headers. Files with options of their own stay alone; so does what sets
# SKIP_UNITY_BUILD_INCLUSION.
function(tavmap_together target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${TAVMAP_TOGETHER} UNITY_BUILD_BATCH_SIZE 24)
  if(TAVMAP_TOGETHER AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")  # a file is not a header because it is included
    target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
  endif()
endfunction()

# tavmap_library(<folder> SOURCES ... [LINKS ...]): the static library tavmap_<folder>.
# LINKS are the layer's arrows and nothing else.
function(tavmap_library folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(tavmap_${folder} STATIC ${ARG_SOURCES})
  tavmap_together(tavmap_${folder})
  target_link_libraries(tavmap_${folder} PUBLIC tavmap_flags ${ARG_LINKS})
endfunction()

# tavmap_test(<name> SOURCES ... LINKS ... LABELS ... [APART ...]): one GoogleTest program; each test case
# becomes a ctest test "<name>.<Suite>.<claim>" with the given labels. APART: those of its files with names that
# others of them have too, which the compiler must not see together.
function(tavmap_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINKS;LABELS;APART" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tavmap_flags ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  target_compile_options(${name} PRIVATE ${TAVMAP_TEST_OPTIONS})
  tavmap_together(${name})
  set_source_files_properties(${ARG_APART} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  if(TAVMAP_PRECOMPILE)
    target_precompile_headers(${name} REUSE_FROM tavmap_test_headers)
  endif()
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT ${ARG_TIMEOUT})
  # As a property of the discovery, a list of labels would lose all but its first.
  set(labels_file ${CMAKE_CURRENT_BINARY_DIR}/${name}_labels.cmake)
  file(CONFIGURE OUTPUT ${labels_file} @ONLY CONTENT [=[
if(@name@_TESTS)
  set_tests_properties(${@name@_TESTS} PROPERTIES LABELS "@ARG_LABELS@")
endif()
]=])
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${labels_file})
endfunction()

# tavmap_fuzzer(<name> SOURCES ... LINKS ... [CORPUS <folder>]): with TAVMAP_FUZZ a libFuzzer program,
# otherwise a program that replays fuzz/corpus/<folder>/ (<name> unless given) and runs as a test.
function(tavmap_fuzzer name)
  cmake_parse_arguments(ARG "" "CORPUS" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_CORPUS)
    set(ARG_CORPUS ${name})
  endif()
  set(corpus ${CMAKE_SOURCE_DIR}/fuzz/corpus/${ARG_CORPUS})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tavmap_flags ${ARG_LINKS})
  add_dependencies(fuzzers ${name})
  if(TAVMAP_FUZZ)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    file(APPEND ${CMAKE_BINARY_DIR}/fuzzers.txt "${name} ${corpus}\n")
  else()
    target_sources(${name} PRIVATE ${CMAKE_SOURCE_DIR}/fuzz/replay_main.cpp)
    add_test(NAME ${name}.corpus COMMAND ${name} ${corpus})
    set_tests_properties(${name}.corpus PROPERTIES LABELS "fuzz" TIMEOUT 120)
  endif()
endfunction()

# tavmap_bench(<name> SOURCES ... LINKS ...): one Google Benchmark program.
function(tavmap_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tavmap_flags ${ARG_LINKS} benchmark::benchmark_main)
endfunction()
