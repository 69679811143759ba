#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# readme.sh ROOT: the README's C example is tests/consumer/consumer.c, which the consumer test
# compiles and runs; and what its tables and links name exists.
set -euo pipefail
cd -- "$1"

diff <(sed -n '/^```c$/,/^```$/ { /^```/d; p }' README.md) tests/consumer/consumer.c
status=0
while IFS= read -r name; do
  if [[ ! -e $name ]]; then
    printf 'README.md names %s, which does not exist\n' "$name"
    status=1
  fi
done < <(grep -oE '^\| `[^`]+`|\]\([^)#:]+\)' README.md | sed -E 's/^\| `//; s/`$//; s/^\]\(//; s/\)$//')
exit $status
