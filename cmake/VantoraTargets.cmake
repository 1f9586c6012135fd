# vantora_headers(NAME [TESTS] HEADERS ... [LINKS ...])
# Headers of others that many sources include, compiled once for the libraries, or the tests, that
# take them: that is a third of the compiler's time and more. None of ours is among them, since an
# include across a wall would not be seen. With CMAKE_DISABLE_PRECOMPILE_HEADERS each source is
# compiled from its own includes alone, as scripts/test has clang-tidy do it.
function(vantora_headers name)
  cmake_parse_arguments(ARG "TESTS" "" "HEADERS;LINKS" ${ARGN})
  set(source "${CMAKE_BINARY_DIR}/${name}.cpp")
  file(CONFIGURE OUTPUT "${source}" CONTENT "")
  add_library(vantora_${name} OBJECT "${source}")
  target_link_libraries(vantora_${name} PRIVATE vantora::options ${ARG_LINKS})
  target_precompile_headers(vantora_${name} PRIVATE ${ARG_HEADERS})
  if(ARG_TESTS)
    vantora_set_test_options(vantora_${name})
  else()
    vantora_set_library_options(vantora_${name})
  endif()
endfunction()

# vantora_take_headers(TARGET NAME): those of the standard library when NAME is empty. Not on a
# Mac, whose sources are of two languages. The target is compiled as a library is: Clang refuses
# headers that were compiled otherwise.
function(vantora_take_headers target name)
  vantora_set_library_options(${target})
  if(NOT name)
    set(name standard_headers)
  endif()
  if(NOT APPLE)
    target_precompile_headers(${target} REUSE_FROM vantora_${name})
  endif()
endfunction()

set(VANTORA_STANDARD_HEADERS
  <algorithm> <array> <chrono> <filesystem> <functional> <map> <memory> <optional> <span> <string>
  <string_view> <utility> <variant> <vector>)
set(VANTORA_TEST_HEADERS ${VANTORA_STANDARD_HEADERS} <gmock/gmock.h> <gtest/gtest.h>)

# vantora_library(NAME [SOURCES ...] [LINKS ...] [PRIVATE_LINKS ...] [HEADERS NAME])
# One folder of src/ as the static library vantora::NAME; without sources, its headers
# alone. HEADERS are those of vantora_headers() that it takes. A folder may include what its
# library links, and nothing else: scripts/check-walls holds that against vantora_write_walls().
function(vantora_library name)
  cmake_parse_arguments(ARG "" "HEADERS" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  if(ARG_SOURCES)
    add_library(vantora_${name} STATIC ${ARG_SOURCES})
    target_link_libraries(vantora_${name} PUBLIC vantora::options ${ARG_LINKS}
                                          PRIVATE ${ARG_PRIVATE_LINKS})
    vantora_take_headers(vantora_${name} "${ARG_HEADERS}")
    set_property(GLOBAL APPEND PROPERTY VANTORA_LIBRARIES vantora_${name})
  else()
    add_library(vantora_${name} INTERFACE)
    target_link_libraries(vantora_${name} INTERFACE vantora::options ${ARG_LINKS})
  endif()
  add_library(vantora::${name} ALIAS vantora_${name})
  vantora_note_wall(library ${name})
endfunction()

# The fuzzers follow what they reach; tests that link it take no notice.
function(vantora_set_library_options target)
  if(VANTORA_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# vantora_program(NAME [MACOSX_BUNDLE] SOURCES ... LINKS ... [HEADERS NAME])
# A program whose main file is in a folder of src/. HEADERS as of a library.
function(vantora_program name)
  cmake_parse_arguments(ARG "MACOSX_BUNDLE" "HEADERS" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES MACOSX_BUNDLE ${ARG_MACOSX_BUNDLE})
  target_link_libraries(${name} PRIVATE vantora::options ${ARG_LINKS})
  vantora_take_headers(${name} "${ARG_HEADERS}")
  vantora_note_wall(program ${name})
endfunction()

# Keeps one line of the walls: kind, name, folder, and the folders' libraries that it links
# publicly and privately, and its sources.
macro(vantora_note_wall kind name)
  file(RELATIVE_PATH folder "${CMAKE_SOURCE_DIR}/src" "${CMAKE_CURRENT_SOURCE_DIR}")
  set(public ${ARG_LINKS})
  set(private ${ARG_PRIVATE_LINKS})
  list(FILTER public INCLUDE REGEX "^vantora::")
  list(FILTER private INCLUDE REGEX "^vantora::")
  list(JOIN public "," public)
  list(JOIN private "," private)
  list(JOIN ARG_SOURCES "," sources)
  set_property(GLOBAL APPEND PROPERTY VANTORA_WALLS
    "${kind}|${name}|${folder}|${public}|${private}|${sources}")
endmacro()

# Writes the walls for scripts/check-walls, a line for each library and program.
function(vantora_write_walls)
  get_property(walls GLOBAL PROPERTY VANTORA_WALLS)
  string(REPLACE ";" "\n" lines "${walls}")
  file(WRITE "${CMAKE_BINARY_DIR}/walls.txt" "${lines}\n")
endfunction()

# Instrumented tests take Clang twice as long to optimise as to compile, and run once.
function(vantora_set_test_options target)
  if(VANTORA_SANITIZE)
    target_compile_options(${target} PRIVATE -O0)
  endif()
endfunction()

# vantora_compile_together(TARGET MOST)
# Compiles the target's sources in batches of about one size, each of at most MOST (6 when that is
# empty). GCC spends 0.8 s of each test's object on what the headers of the test library leave to
# instantiate. A change of one source compiles its batch.
function(vantora_compile_together target most)
  if(NOT most)
    set(most 6)
  endif()
  get_target_property(sources ${target} SOURCES)
  list(LENGTH sources count)
  math(EXPR batches "(${count} + ${most} - 1) / ${most}")
  math(EXPR size "(${count} + ${batches} - 1) / ${batches}")
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${size})
  # Collecting garbage is a tenth of GCC's time for a batch, and frees 100 MB of 650.
  target_compile_options(${target} PRIVATE
    $<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-heapsize=1000000>)
endfunction()

# vantora_tests(NAME SOURCES ... [LINKS ...] [HEADERS NAME] [BATCH MOST])
# The tests of one folder as one executable vantora_NAME_tests, each case a test
# of CTest's. HEADERS are those of vantora_headers() that it takes instead of test_headers. With
# VANTORA_UNITY_TESTS its sources are compiled together, fewer at a time (BATCH) where they are
# long. The presets with sanitizers compile each alone: there a test that lacks an include fails.
function(vantora_tests name)
  cmake_parse_arguments(ARG "" "HEADERS;BATCH" "SOURCES;LINKS" ${ARGN})
  add_executable(vantora_${name}_tests ${ARG_SOURCES})
  target_include_directories(vantora_${name}_tests PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_compile_definitions(vantora_${name}_tests PRIVATE
    VANTORA_TEST_DATA="${CMAKE_SOURCE_DIR}/tests")
  target_link_libraries(vantora_${name}_tests PRIVATE
    ${ARG_LINKS} vantora::test_support GTest::gmock GTest::gtest_main)
  vantora_set_test_options(vantora_${name}_tests)
  if(VANTORA_UNITY_TESTS)
    vantora_compile_together(vantora_${name}_tests "${ARG_BATCH}")
  endif()
  if(NOT ARG_HEADERS)
    set(ARG_HEADERS test_headers)
    if(NOT TARGET vantora_test_headers)
      vantora_headers(test_headers TESTS
        HEADERS ${VANTORA_TEST_HEADERS} LINKS GTest::gmock GTest::gtest)
    endif()
  endif()
  target_precompile_headers(vantora_${name}_tests REUSE_FROM vantora_${ARG_HEADERS})
  gtest_discover_tests(vantora_${name}_tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
  foreach(source IN LISTS ARG_SOURCES)
    get_filename_component(absolute "${source}" ABSOLUTE)
    set_property(GLOBAL APPEND PROPERTY VANTORA_TEST_SOURCES "${absolute}")
  endforeach()
endfunction()

# vantora_missing_test(NAME REASON): says why the tests NAME are not built or registered; an
# error with VANTORA_REQUIRE_TESTS.
function(vantora_missing_test name reason)
  if(VANTORA_REQUIRE_TESTS)
    message(FATAL_ERROR "${name} cannot run, and VANTORA_REQUIRE_TESTS is set: ${reason}")
  endif()
  message(STATUS "${name} is not run: ${reason}")
endfunction()

# vantora_python_module(OUTVAR STATEMENT): whether the system's Python can run STATEMENT. The
# modules of Debian's packages are found by that Python alone.
function(vantora_python_module out statement)
  execute_process(COMMAND /usr/bin/python3 -c "${statement}"
                  RESULT_VARIABLE status OUTPUT_QUIET ERROR_QUIET)
  if(status EQUAL 0)
    set(${out} TRUE PARENT_SCOPE)
  else()
    set(${out} FALSE PARENT_SCOPE)
  endif()
endfunction()

# vantora_python_test(NAME SCRIPT [ARGUMENT ...]): a test in Python, without third parties.
function(vantora_python_test name script)
  if(NOT EXISTS /usr/bin/python3)
    vantora_missing_test("${name}" "it needs /usr/bin/python3")
    return()
  endif()
  add_test(NAME ${name} COMMAND /usr/bin/python3 -B "${script}" ${ARGN})
  set_tests_properties(${name} PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 180)
endfunction()

# Fails the configuration when a *_test.cpp below tests/ is in no target: a test
# that nothing builds passes for ever.
function(vantora_check_every_test_is_built)
  # The other system's tests are built there. What no Mac builds, Linux does.
  if(APPLE)
    return()
  endif()
  file(GLOB_RECURSE present CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tests/*_test.cpp")
  list(FILTER present EXCLUDE REGEX "/tests/(platform/macos|macos/run)/")
  get_property(built GLOBAL PROPERTY VANTORA_TEST_SOURCES)
  foreach(source IN LISTS present)
    if(NOT source IN_LIST built)
      message(FATAL_ERROR "No target builds the test ${source}: list it in a vantora_tests()")
    endif()
  endforeach()
endfunction()

# vantora_fuzz(NAME LINKS ... [HEADERS NAME])
# fuzz/NAME.cpp with the kept corpus fuzz/corpus/NAME, which a test replays. With
# VANTORA_FUZZ a libFuzzer program. HEADERS as of a library.
function(vantora_fuzz name)
  cmake_parse_arguments(ARG "" "HEADERS" "LINKS" ${ARGN})
  if(VANTORA_FUZZ)
    add_executable(fuzz_${name} ${name}.cpp)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    set(replay fuzz_${name} -runs=0)
  else()
    if(NOT TARGET vantora_corpus_replay)
      add_library(vantora_corpus_replay STATIC replay_main.cpp)
      target_link_libraries(vantora_corpus_replay PRIVATE vantora::options)
      vantora_take_headers(vantora_corpus_replay "")
    endif()
    add_executable(fuzz_${name} ${name}.cpp)
    target_link_libraries(fuzz_${name} PRIVATE vantora_corpus_replay)
    set(replay fuzz_${name})
  endif()
  if(VANTORA_TESTS)
    add_test(NAME fuzz_corpus.${name}
             COMMAND ${replay} "${CMAKE_SOURCE_DIR}/fuzz/corpus/${name}")
  endif()
  target_link_libraries(fuzz_${name} PRIVATE vantora::options ${ARG_LINKS})
  vantora_take_headers(fuzz_${name} "${ARG_HEADERS}")
endfunction()
