#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# setup.sh ROOT: how ./demo and ./test get their Debian packages, with the system's commands replaced
# by functions that only write down what they are asked.
set -euo pipefail
cd -- "$1"
. packaging/setup.sh

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
service_policy=$scratch/policy-rc.d
calls=$scratch/calls
user=0
installed=()
apt_status=0

id() { echo "$user"; }
dpkg-query() { if [[ " ${installed[*]} " == *" ${!#} "* ]]; then echo "${package_states-installed} "; else return 1; fi; }
apt-get() {
  printf 'apt-get %s (policy: %s)\n' "$*" "$(tail -n 1 "$service_policy")" >>"$calls"
  return "$apt_status"
}
update-rc.d() { printf 'update-rc.d %s\n' "$*" >>"$calls"; }
service() { printf 'service %s\n' "$*" >>"$calls"; }

# A run of need_packages as the scripts make it; its output and status, and the commands it used.
run() {
  : >"$calls"
  set +e
  output=$(set -e; need_packages "$@" 2>&1)
  status=$?
  set -e
}

check() { # WHAT CONDITION...
  local what=$1
  shift
  if ! "$@"; then
    printf 'failed: %s\noutput: %s\ncalls: %s\n' "$what" "$output" "$(cat "$calls")"
    exit 1
  fi
}
is() { [[ $1 == "$2" ]]; }
contains() { [[ $1 == *"$2"* ]]; }

installed=(first second)
for user in 1000 0; do
  run first second
  check 'with all installed nothing is said' is "$status:$output" '0:'
  check 'with all installed nothing is called' is "$(cat "$calls")" ''
done

package_states='half-configured config-files'
run first
check 'a package that is not whole is installed again' contains "$(cat "$calls")" 'install'
package_states='installed installed'
run first
check 'a package may be there for two architectures' is "$(cat "$calls")" ''
unset package_states

user=1000
installed=(second)
run first second third
check 'a user is told by a failure' is "$status" 1
check 'a user is told which are missing' contains "$output" 'are missing: first third'
check 'a user is told the command' contains "$output" \
  'apt-get install --yes --no-install-recommends first third'
check 'nothing is called for a user' is "$(cat "$calls")" ''

user=0
installed=()
run first redis-server
check 'root gets them' is "$status" 0
check 'they are installed' contains "$(cat "$calls")" \
  'install --yes --no-install-recommends first redis-server (policy: exit 101)'
check 'the Redis service is not enabled' contains "$(cat "$calls")" 'update-rc.d redis-server disable'
check 'the Redis service is not left running' contains "$(cat "$calls")" 'service redis-server stop'
check 'the policy is taken back' [ ! -e "$service_policy" ]

run first
check 'a Redis service that was there before is left alone' is \
  "$(grep -cv '^apt-get' "$calls")" 0

apt_status=100
run first
check 'a failed installation is a failure' is "$status" 100
check 'the policy is taken back after a failure' [ ! -e "$service_policy" ]

apt_status=0
printf '#!/bin/sh\nexit 0\n' >"$service_policy"
run redis-server
check 'the policy of the machine stays' is "$(tail -n 1 "$service_policy")" 'exit 0'
