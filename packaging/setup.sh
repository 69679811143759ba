# SPDX-License-Identifier: MIT
# shellcheck shell=bash
#
# What ./demo, ./test, ./bench and .ci/run share: the Debian packages they need, getting them,
# configuring a preset, and how many tests may run at once. Sourced from the root of the repository,
# with `set -euo pipefail`.
# With every package there no package manager is called, so that all of it works offline and for
# ordinary users.

# shellcheck disable=SC2034  # used by the scripts that source this file
library_packages=(g++ cmake ninja-build pkg-config libhiredis-dev libjansson-dev redis-server
  libcli11-dev libfmt-dev)
# shellcheck disable=SC2034
test_packages=(libgtest-dev libgmock-dev libbenchmark-dev)

# The file that keeps the package manager from starting services, where it says so.
service_policy=/usr/sbin/policy-rc.d

# need_packages PACKAGE...: returns when all are installed; root installs what is missing, an
# ordinary user is told what to ask for.
need_packages() {
  if ! command -v dpkg-query >/dev/null; then
    printf '%s: not a Debian system; what Debian calls these is needed:\n  %s\n' "${0##*/}" "$*" >&2
    return
  fi
  local missing
  mapfile -t missing < <(missing_packages "$@")
  if ((${#missing[@]} == 0)); then return; fi
  if (($(id -u) == 0)); then
    install_packages "${missing[@]}"
  else
    {
      printf '%s: these Debian packages are missing: %s\n' "${0##*/}" "${missing[*]}"
      printf 'Install them as root (or with sudo in front), then try again:\n'
      printf '  apt-get install --yes --no-install-recommends %s\n' "${missing[*]}"
    } >&2
    exit 1
  fi
}

missing_packages() {
  local package states  # a package may be there for several architectures
  for package in "$@"; do
    states=$(dpkg-query --show --showformat='${db:Status-Status} ' "$package" 2>/dev/null) || true
    if [[ " $states" != *' installed '* ]]; then printf '%s\n' "$package"; fi
  done
}

# In a subshell, whose end takes back the policy whatever happens.
install_packages() (
  printf 'Installing Debian packages, which takes a minute or two: %s\n' "$*"
  if [[ ! -e $service_policy ]]; then
    trap 'rm -f "$service_policy"' EXIT
    printf '#!/bin/sh\nexit 101\n' >"$service_policy"
    chmod 755 "$service_policy"
  fi
  export DEBIAN_FRONTEND=noninteractive
  apt-get -qq -o DPkg::Lock::Timeout=300 update </dev/null
  apt-get -qq -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 \
    install --yes --no-install-recommends "$@" </dev/null >/dev/null
  if [[ " $* " == *" redis-server "* ]]; then keep_redis_service_off; fi
)

# Only the program is wanted. The package enables its service for the next boot, and starts it at
# once where the machine has a policy of its own that lets it.
keep_redis_service_off() {
  update-rc.d redis-server disable >/dev/null 2>&1 || true
  service redis-server stop >/dev/null 2>&1 || true
  printf 'The redis-server service is left off: only the program is needed.\n'
}

# configure PRESET [OPTION...]: into build/PRESET, anew when that was configured for a tree at another
# place.
configure() {
  local cache=build/$1/CMakeCache.txt
  if [[ -e $cache ]] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$cache"; then
    rm -rf "build/$1"
  fi
  cmake --preset "$@" --log-level=WARNING >/dev/null
}

# test_jobs PRESET: as many as there are processors where each test gets a private network; one
# where all share the machine's. Fails, with the launcher's words, where something is in the way.
test_jobs() {
  local network launcher=build/$1/tests/support/zephlane-private-redis
  if [[ -e $launcher-emulated ]]; then launcher+=-emulated; fi
  network=$("$launcher" --no-server \
    sh -c 'readlink /proc/self/ns/net') || return
  if [[ $network == "$(readlink /proc/self/ns/net)" ]]; then echo 1; else nproc; fi
}
