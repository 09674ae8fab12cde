# SPDX-License-Identifier: MIT
#
# What every target of the project shares: warnings, sanitizers, and headers that are checked.

add_library(tavelo_options INTERFACE)
target_compile_options(
  tavelo_options
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wshadow
            -Wconversion
            -Wsign-conversion
            -Wnon-virtual-dtor
            -Woverloaded-virtual
            -Wnull-dereference
            -Wformat=2
            -Wimplicit-fallthrough
            # GCC 12 sees overlaps in std::string that are not there (GCC bug 105651).
            $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(TAVELO_WARNINGS_AS_ERRORS)
  target_compile_options(tavelo_options INTERFACE -Werror)
endif()

if(TAVELO_SANITIZE)
  target_compile_options(tavelo_options INTERFACE -fsanitize=${TAVELO_SANITIZE} -fno-omit-frame-pointer
                                                  -fno-sanitize-recover=all)
  target_link_options(tavelo_options INTERFACE -fsanitize=${TAVELO_SANITIZE})
  # The sanitizers' own checks confuse the compiler's flow analysis into false reports.
  target_compile_options(tavelo_options INTERFACE -Wno-null-dereference
                                                     $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()

if(TAVELO_BUILD_FUZZERS)
  # The fuzzer learns from what runs in the libraries.
  target_compile_options(tavelo_options INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(tavelo_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# The headers of a library, checked to compile alone.
function(tavelo_public_headers target)
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${CMAKE_SOURCE_DIR}/Sources FILES ${ARGN})
  set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()
