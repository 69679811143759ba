#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# consumer.sh BUILD_DIR CONSUMER_DIR WORK_DIR C_COMPILER LAUNCHER: installs the build to a place with
# a blank in its path, builds the consumer against that once by pkg-config and once by find_package,
# and runs both against a Redis server of their own.
set -euo pipefail
build=$1
consumer=$2
work=$3
c_compiler=$4
launcher=$5
prefix="$work/installed tree"

expect_output() { # PROGRAM
  local printed
  printed=$("$launcher" "$@")
  printf '%s\n' "$printed"
  [[ $printed == '10000000-0000-0000-0000-000000000001: Fan 1 turns at 2400 rpm' ]]
}

rm -rf "$work"
cmake --install "$build" --prefix "$prefix" >/dev/null
libdir=$(dirname "$(find "$prefix" -name libzephlaneAPI.so)")

printf 'By pkg-config: '
PKG_CONFIG_PATH="$libdir/pkgconfig${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}"
export PKG_CONFIG_PATH
flags=$(pkg-config --cflags --libs zephlaneAPI)
# What pkg-config prints is quoted for the shell.
eval "\"\$c_compiler\" -std=c11 -Wall -Wextra -pedantic -Werror -o \"\$work/consumer\" \
  \"\$consumer/consumer.c\" $flags"
LD_LIBRARY_PATH=$libdir expect_output "$work/consumer"

printf 'By find_package: '
cmake -S "$consumer" -B "$work/by find_package" -G Ninja -DCMAKE_C_COMPILER="$c_compiler" \
  -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/by find_package" >/dev/null
expect_output "$work/by find_package/consumer"

if [[ -e $prefix/bin/zephlane ]]; then
  printf 'The installed tool finds its library\n'
  "$prefix/bin/zephlane" --help >/dev/null
fi
