#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# soname.sh LIBRARY READELF: programs linked against the library ask for libzephlaneAPI.so, without
# a version, and the built file is no link to another.
set -euo pipefail
library=$1
readelf=$2

soname=$("$readelf" --dynamic --wide "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\].*/\1/p')
printf 'soname: %s\n' "$soname"
[[ $soname == libzephlaneAPI.so && ${library##*/} == libzephlaneAPI.so && ! -L $library ]]
