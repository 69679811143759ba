#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# headers.sh INCLUDE_DIR C_COMPILER CXX_COMPILER: each public header compiles alone, and all
# together in two orders, as C11 and as C++20; with clang too where there is one.
set -euo pipefail
include_dir=$1
c_compilers=("$2")
cxx_compilers=("$3")
if command -v clang >/dev/null; then c_compilers+=(clang); fi
if command -v clang++ >/dev/null; then cxx_compilers+=(clang++); fi

read -ra dependency_flags < <(pkg-config --cflags hiredis jansson)
flags=(-Wall -Wextra -pedantic -Werror -fsyntax-only -I"$include_dir" "${dependency_flags[@]}")
mapfile -t headers < <(cd "$include_dir" && find . -name '*.h' -printf '%P\n' | LC_ALL=C sort)

includes_of() { printf '#include <%s>\n' "$@"; }

compile() { # WHAT HEADER...
  local what=$1 compiler
  shift
  for compiler in "${c_compilers[@]}"; do
    includes_of "$@" | "$compiler" -std=c11 "${flags[@]}" -x c - ||
      { printf '%s does not compile as C11 with %s\n' "$what" "$compiler" && exit 1; }
  done
  for compiler in "${cxx_compilers[@]}"; do
    includes_of "$@" | "$compiler" -std=c++20 "${flags[@]}" -x c++ - ||
      { printf '%s does not compile as C++20 with %s\n' "$what" "$compiler" && exit 1; }
  done
}

for header in "${headers[@]}"; do compile "$header alone" "$header"; done
compile 'all in order' "${headers[@]}"
mapfile -t backwards < <(printf '%s\n' "${headers[@]}" | tac)
compile 'all in reverse order' "${backwards[@]}"
printf '%d headers, %s\n' "${#headers[@]}" "${c_compilers[*]} ${cxx_compilers[*]}"
