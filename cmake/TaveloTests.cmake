# SPDX-License-Identifier: MIT

find_package(GTest REQUIRED)
include(GoogleTest)

# The sanitizers look at what is tested; in the tests themselves they would cost two thirds of the time that the
# whole build takes. Addresses are checked in both: one process has one way to allocate.
add_library(tavelo_test_options INTERFACE)
target_compile_options(tavelo_test_options INTERFACE -O0)
if(TAVELO_SANITIZE MATCHES undefined)
  target_compile_options(tavelo_test_options INTERFACE -fno-sanitize=undefined)
endif()

# What every test runs with, whatever the user's own settings. Without the interception of thread-local storage,
# which dies of plugins that were unloaded.
set(TAVELO_TEST_ENVIRONMENT
    "LC_ALL=C.UTF-8"
    "TZ=Europe/Berlin"
    "QT_QPA_PLATFORM=offscreen"
    "ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1:intercept_tls_get_addr=0"
    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/Tests/Support/leaks.supp:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1"
    "TSAN_OPTIONS=halt_on_error=1")

# A test program from a list of files, one CTest test for each of its cases.
#   tavelo_add_tests(NAME file.cpp... LIBRARIES library... [PROGRAMS target...] [TIMEOUT seconds] [LABELS label])
# The programs are built first; each one's path is in the environment as TAVELO_TEST_<NAME>.
function(tavelo_add_tests name)
  cmake_parse_arguments(ARG "" "TIMEOUT;LABELS" "LIBRARIES;PROGRAMS" ${ARGN})
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE tavelo_options tavelo_test_options GTest::gmock ${ARG_LIBRARIES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/Tests)
  set(environment ${TAVELO_TEST_ENVIRONMENT})
  foreach(program IN LISTS ARG_PROGRAMS)
    add_dependencies(${name} ${program})
    string(TOUPPER ${program} variable)
    string(REPLACE "-" "_" variable ${variable})
    list(APPEND environment "TAVELO_TEST_${variable}=$<TARGET_FILE:${program}>")
  endforeach()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  # By the names that the tests give their values: the values themselves may hold addresses.
  gtest_discover_tests(${name} NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT
                       ${ARG_TIMEOUT})
  # Discovery would take a property that is a list apart, so these are set by a script that runs after it.
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${name}Properties.cmake)
  file(GENERATE OUTPUT ${script} CONTENT
"foreach(test IN LISTS ${name}_TESTS)
  set_tests_properties(\"\${test}\" PROPERTIES ENVIRONMENT \"${environment}\" LABELS \"${ARG_LABELS}\")
endforeach()
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${script})
endfunction()
