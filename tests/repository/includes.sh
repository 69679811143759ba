#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# includes.sh ROOT: dependencies point down only. Tools and examples stand on the public headers,
# the interpreter on the public headers and src/support, src/api on src/redis, src/redis on
# src/support, and src/support on no Redis at all.
set -euo pipefail
cd -- "$1"
status=0

# The include lines of a folder's sources as FILE:LINE:#include ..., blanks around '#' removed.
includes_in() {
  if [[ -d $1 ]]; then
    { grep -rnE --include='*.h' --include='*.cpp' --include='*.c' '^[ 	]*#[ 	]*include' "$1" || true; } |
      sed -E 's/^([^:]*:[0-9]+:)[ 	]*#[ 	]*include[ 	]*/\1#include /'
  fi
}

report() { # RULE, offending lines on standard input
  local lines
  lines=$(cat)
  if [[ -n $lines ]]; then
    printf '%s:\n%s\n' "$1" "$lines"
    status=1
  fi
}

forbid() { # FOLDER PATTERN RULE
  report "$3" < <(includes_in "$1" | grep -E ":#include $2" || true)
}

allow_only() { # FOLDER PATTERN RULE
  report "$3" < <(includes_in "$1" | grep -vE ":#include $2" || true)
}

# A quoted include of a program names a file of its own folder.
own_files_only() { # FOLDER
  report "$1 includes only public headers and its own" < <(
    includes_in "$1" | grep '#include "' | while IFS= read -r line; do
      name=${line#*\"}
      name=${name%%\"*}
      folder=${line%%:*}
      folder=${folder%/*}
      [[ -e $folder/$name || -e $1/$name ]] || printf '%s\n' "$line"
    done || true
  )
}

allow_only include \
  '<(hiredis/hiredis\.h|jansson\.h|zephlaneAPI/[A-Za-z]+\.h|(sys/)?[a-z]+\.h)>' \
  'public headers include only hiredis, Jansson, system headers and each other'
forbid src '"(\.\.?/|[^/"]*")' 'sources name a header from src/, not from where they stand'
forbid src/support '("(redis|api|interpreter)/|<hiredis|<zephlaneAPI\.h>)' \
  'src/support knows nothing of Redis and of the layers above'
allow_only src/support '("support/|<([a-z_]+(\.h)?|sys/[a-z]+\.h|zephlaneAPI/types\.h)>)' \
  'src/support includes only the shared records of the public headers'
forbid src/redis '("(api|interpreter)/|<zephlaneAPI\.h>|<zephlaneAPI/interpreter\.h>)' \
  'src/redis stands below src/api and src/interpreter'
forbid src/api '("interpreter/|<zephlaneAPI\.h>|<zephlaneAPI/interpreter\.h>)' \
  'src/api never calls the interpreter'
forbid src/interpreter '"(api|redis)/' \
  'src/interpreter reaches the layers below through the public headers'
own_files_only tools
own_files_only examples
exit $status
