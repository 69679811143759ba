#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# compareOutput.sh EXPECTED PROGRAM [ARGUMENT...]: runs the program, which must succeed and print on
# standard output what the file EXPECTED holds.
set -euo pipefail
expected=$1
shift

printed=$(mktemp)
trap 'rm -f "$printed"' EXIT
"$@" >"$printed"
diff --unified "$expected" "$printed"
