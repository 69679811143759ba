#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# exports.sh LIBRARY EXPORT_LIST INCLUDE_DIR C_COMPILER NM: the library exports exactly what the
# export list names, and that is exactly what the public headers declare.
set -euo pipefail
library=$1
export_list=$2
include_dir=$3
c_compiler=$4
nm=$5

exported() {
  "$nm" --dynamic --defined-only --format=posix "$library" | cut -d ' ' -f 1
}

listed() {
  sed -n '/global:/,/local:/ s/^ *\([A-Za-z_0-9]*\);.*/\1/p' "$export_list"
}

# A function's name stands before the first parenthesis, a variable's before the bracket or the end.
declared() {
  find "$include_dir" -name '*.h' -exec "$c_compiler" -fpreprocessed -dD -E -P {} \; |
    grep -v '^ *#' | tr '\n' ' ' | grep -o 'ZEPHLANE_EXPORT [^;]*' |
    sed 's/[[(].*//; s/ *$//; s/.*[ *]//'
}

same() { # TITLE_A LIST_A TITLE_B LIST_B
  local difference
  difference=$(LC_ALL=C diff <(LC_ALL=C sort <<<"$2") <(LC_ALL=C sort <<<"$4")) && return
  printf 'only %s:\n' "$1" && sed -n 's/^</ /p' <<<"$difference"
  printf 'only %s:\n' "$3" && sed -n 's/^>/ /p' <<<"$difference"
  return 1
}

declarations=$(declared)
status=0
same 'in the export list' "$(listed)" 'in the public headers' "$declarations" || status=1
same 'in the library' "$(exported)" 'in the public headers' "$declarations" || status=1
printf '%d names\n' "$(wc -l <<<"$declarations")"
exit $status
