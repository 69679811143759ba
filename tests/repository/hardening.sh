#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# hardening.sh READELF [--optimised | --unoptimised | FILE]...: each file is position-independent,
# resolves its symbols before it runs and then has them read-only, and uses the stack protector; none
# has an executable stack. The C library's checked functions are in optimised files only, those named
# behind --optimised.
set -euo pipefail
readelf=$1
shift
optimised=no
status=0

has() { # FILE WHAT PATTERN OPTION
  if ! "$readelf" --wide "$4" "$1" | grep -E "$3" >/dev/null; then
    printf '%s: no %s\n' "$1" "$2"
    status=1
  fi
}

for file in "$@"; do
  case $file in
    --optimised) optimised=yes; continue ;;
    --unoptimised) optimised=no; continue ;;
  esac
  has "$file" 'position-independent code' 'Type: +DYN' --file-header
  has "$file" 'read-only relocations' 'GNU_RELRO' --program-headers
  has "$file" 'binding before the start' 'BIND_NOW|FLAGS_1.*NOW' --dynamic
  has "$file" 'stack without execution' 'GNU_STACK.* RW ' --program-headers
  has "$file" 'stack protector' '__stack_chk_(fail|guard)' --symbols
  if [[ $optimised == yes ]]; then
    has "$file" 'checked buffer sizes' ' UND __[a-z]+_chk(@|$)' --symbols
  fi
done
exit $status
