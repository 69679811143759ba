#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# armhfSysroot.sh DIRECTORY: unpacks Debian's armhf packages that the cross build links against into
# DIRECTORY, unless it holds them already. The package manager works on lists of its own below
# DIRECTORY: nothing is installed, the machine gets no foreign architecture, and no root is needed.
set -euo pipefail
packages=(libhiredis0.14 libhiredis-dev libjansson4 libjansson-dev libgtest-dev libgmock-dev
  libcli11-dev libfmt9 libfmt-dev)

mkdir -p "$1"
sysroot=$(cd -- "$1" && pwd)
done_mark=$sysroot/packages
if [[ -e $done_mark && $(<"$done_mark") == "${packages[*]}" ]]; then exit; fi

printf 'Fetching armhf packages into %s ...\n' "$1"
rm -rf "${sysroot:?}"/*
apt=$sysroot/apt
mkdir -p "$apt/state/lists/partial" "$apt/cache/archives/partial" "$apt/packages"
cat >"$apt/apt.conf" <<END
APT::Architecture "armhf";
APT::Architectures { "armhf"; };
APT::Sandbox::User "";
Acquire::Languages "none";
Acquire::Retries "3";
Dir::State "$apt/state";
Dir::State::status "/dev/null";
Dir::Cache "$apt/cache";
END
export APT_CONFIG=$apt/apt.conf
# A list that cannot be had may be of no importance: what is downloaded decides.
apt-get -qq update </dev/null || true
(cd "$apt/packages" && apt-get -qq download "${packages[@]}" </dev/null)
for package in "$apt"/packages/*.deb; do dpkg-deb --extract "$package" "$sysroot"; done
rm -rf "$apt"
printf '%s\n' "${packages[*]}" >"$done_mark"
