# SPDX-License-Identifier: MIT
# Flags every target of this project is built with, as one interface target.
include(CheckPIESupported)

add_library(zephlane_flags INTERFACE)
target_compile_options(zephlane_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wundef -Wpointer-arith -Wcast-align
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual>
  $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes -Wmissing-prototypes>)
# GCC 12 takes "text" + std::string for a copy that overlaps itself once it optimises, and on 32-bit
# machines for one that is larger than memory.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(zephlane_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_options(zephlane_flags INTERFACE
      "$<$<COMPILE_LANGUAGE:CXX>:-Wno-stringop-overflow;-Wno-array-bounds>")
  endif()
endif()
if(ZEPHLANE_WERROR)
  target_compile_options(zephlane_flags INTERFACE -Werror)
endif()
if(ZEPHLANE_SANITIZE)
  target_compile_options(zephlane_flags INTERFACE
    -fsanitize=${ZEPHLANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(zephlane_flags INTERFACE -fsanitize=${ZEPHLANE_SANITIZE})
  # For tests and the tool, which are most of what there is to compile. Only what the library's own
  # objects do has to run at speed.
  set(zephlane_quick_flags -O0 -g1)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")  # its guesses go wrong in instrumented code
    target_compile_options(zephlane_flags INTERFACE -Wno-maybe-uninitialized)
  endif()
else()
  # Hardening; the sanitizers check more of their own. The C library checks buffer sizes only in
  # optimised builds.
  target_compile_options(zephlane_flags INTERFACE
    -fstack-protector-strong
    "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  target_link_options(zephlane_flags INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)
endif()
add_library(zephlane_program_options INTERFACE)
target_compile_options(zephlane_program_options INTERFACE ${ZEPHLANE_PROGRAM_OPTIONS})
check_pie_supported()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
