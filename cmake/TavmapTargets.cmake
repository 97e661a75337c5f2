# The few ways in which this project makes targets. Include paths are rooted at the repository,
# so that every #include names its folder.

add_library(tavmap_flags INTERFACE)
target_include_directories(tavmap_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(tavmap_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wcast-align
  -Wdouble-promotion -Wnon-virtual-dtor -ffp-contract=off
  $<$<BOOL:${TAVMAP_WERROR}>:-Werror>)
if(TAVMAP_SANITIZE)
  target_compile_options(tavmap_flags INTERFACE
    -fsanitize=${TAVMAP_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(tavmap_flags INTERFACE -fsanitize=${TAVMAP_SANITIZE})
endif()
if(TAVMAP_FUZZ)  # the libraries too: the fuzzer looks for inputs that take new branches there
  target_compile_options(tavmap_flags INTERFACE -fsanitize=fuzzer-no-link)
  file(REMOVE ${CMAKE_BINARY_DIR}/fuzzers.txt)
endif()

# tavmap_library(<folder> SOURCES ... [LINKS ...]): the static library tavmap_<folder>.
# LINKS are the layer's arrows and nothing else.
function(tavmap_library folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(tavmap_${folder} STATIC ${ARG_SOURCES})
  target_link_libraries(tavmap_${folder} PUBLIC tavmap_flags ${ARG_LINKS})
endfunction()

# tavmap_test(<name> SOURCES ... LINKS ... LABELS ...): one GoogleTest program; each test case
# becomes a ctest test "<name>.<Suite>.<claim>" with the given labels.
function(tavmap_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINKS;LABELS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tavmap_flags ${ARG_LINKS} GTest::gmock GTest::gtest_main)
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
