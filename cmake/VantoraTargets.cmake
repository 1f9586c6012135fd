# vantora_library(NAME SOURCES ... [LINKS ...] [PRIVATE_LINKS ...])
# One folder of src/ as a static library vantora::NAME. The link graph holds the
# rule which folder may use which.
function(vantora_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(vantora_${name} STATIC ${ARG_SOURCES})
  add_library(vantora::${name} ALIAS vantora_${name})
  target_link_libraries(vantora_${name} PUBLIC vantora::options ${ARG_LINKS}
                                        PRIVATE ${ARG_PRIVATE_LINKS})
  if(VANTORA_FUZZ)
    # The fuzzers follow what they reach; tests that link it take no notice.
    target_compile_options(vantora_${name} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  set_property(GLOBAL APPEND PROPERTY VANTORA_LIBRARIES vantora_${name})
endfunction()

# vantora_tests(NAME SOURCES ... [LINKS ...])
# The tests of one folder as one executable vantora_NAME_tests, each case a test
# of CTest's.
function(vantora_tests name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(vantora_${name}_tests ${ARG_SOURCES})
  target_include_directories(vantora_${name}_tests PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_compile_definitions(vantora_${name}_tests PRIVATE
    VANTORA_TEST_DATA="${CMAKE_SOURCE_DIR}/tests")
  target_link_libraries(vantora_${name}_tests PRIVATE
    ${ARG_LINKS} vantora::test_support GTest::gmock GTest::gtest_main)
  if(VANTORA_SANITIZE)
    # Instrumented tests take Clang twice as long to optimise as to compile, and run once.
    target_compile_options(vantora_${name}_tests PRIVATE -O0)
  endif()
  gtest_discover_tests(vantora_${name}_tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
  foreach(source IN LISTS ARG_SOURCES)
    get_filename_component(absolute "${source}" ABSOLUTE)
    set_property(GLOBAL APPEND PROPERTY VANTORA_TEST_SOURCES "${absolute}")
  endforeach()
endfunction()

# Fails the configuration when a *_test.cpp below tests/ is in no target: a test
# that nothing builds passes for ever.
function(vantora_check_every_test_is_built)
  # The other system's tests are built there. What no Mac builds, Linux does.
  if(APPLE)
    return()
  endif()
  file(GLOB_RECURSE present CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tests/*_test.cpp")
  list(FILTER present EXCLUDE REGEX "/tests/platform/macos/")
  get_property(built GLOBAL PROPERTY VANTORA_TEST_SOURCES)
  foreach(source IN LISTS present)
    if(NOT source IN_LIST built)
      message(FATAL_ERROR "No target builds the test ${source}: list it in a vantora_tests()")
    endif()
  endforeach()
endfunction()

# vantora_fuzz(NAME LINKS ...)
# fuzz/NAME.cpp with the kept corpus fuzz/corpus/NAME, which a test replays. With
# VANTORA_FUZZ a libFuzzer program.
function(vantora_fuzz name)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  if(VANTORA_FUZZ)
    add_executable(fuzz_${name} ${name}.cpp)
    target_compile_options(fuzz_${name} PRIVATE -fsanitize=fuzzer-no-link)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    set(replay fuzz_${name} -runs=0)
  else()
    add_executable(fuzz_${name} ${name}.cpp replay_main.cpp)
    set(replay fuzz_${name})
  endif()
  if(VANTORA_TESTS)
    add_test(NAME fuzz_corpus.${name}
             COMMAND ${replay} "${CMAKE_SOURCE_DIR}/fuzz/corpus/${name}")
  endif()
  target_link_libraries(fuzz_${name} PRIVATE vantora::options ${ARG_LINKS})
endfunction()
