# SPDX-License-Identifier: MIT
#
# Release builds are hard to misuse: position-independent programs, symbols bound at start and read-only after,
# and checks on the stack and on the C library's calls. Builds with sanitizers have better checks.

option(TAVELO_HARDENING "Harden release builds" ON)

if(TAVELO_HARDENING AND NOT TAVELO_SANITIZE)
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  set(release "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
  target_compile_options(
    tavelo_options
    INTERFACE $<${release}:-fstack-protector-strong>
              $<${release}:-fstack-clash-protection>
              $<$<AND:${release},$<STREQUAL:${CMAKE_SYSTEM_PROCESSOR},x86_64>>:-fcf-protection>
              # Compilers that define it themselves must forget their value first.
              "$<${release}:SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>")
  target_link_options(tavelo_options INTERFACE $<${release}:LINKER:-z,relro,-z,now>)
endif()
