# SPDX-License-Identifier: MIT
# Flags every target of this project is built with, as one interface target.
add_library(zephlane_flags INTERFACE)
target_compile_options(zephlane_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wundef -Wpointer-arith -Wcast-align
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual>
  $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes -Wmissing-prototypes>)
if(ZEPHLANE_WERROR)
  target_compile_options(zephlane_flags INTERFACE -Werror)
endif()
if(ZEPHLANE_SANITIZE)
  target_compile_options(zephlane_flags INTERFACE
    -fsanitize=${ZEPHLANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(zephlane_flags INTERFACE -fsanitize=${ZEPHLANE_SANITIZE})
endif()
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
