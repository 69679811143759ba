#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# forbiddenCalls.sh ROOT: no unbounded or unterminated copies and no goto in the library, the tool
# and the examples. Each kind of copy is a helper of src/support/text.h.
set -euo pipefail
cd -- "$1"

folders=()
for folder in src tools examples; do
  if [[ -d $folder ]]; then folders+=("$folder"); fi
done
if grep -rnE --include='*.h' --include='*.cpp' --include='*.c' \
  '\<(strcpy|strcat|strncpy|strncat|sprintf|vsprintf|gets)[ \t]*\(|\<goto [A-Za-z_]+;' \
  "${folders[@]}"; then
  exit 1
fi
