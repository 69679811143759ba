#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# tour.sh TOOL SCHEMAS: what ./demo shows. The tool reads its configuration, schema files and the
# server's password at fixed places below /tmp, so this runs where the launcher has made them
# private, or found them free and removes them afterwards.
set -euo pipefail
tool=$1
schemas=$2
service_root=00000000-0000-0000-0001-ffffffffffff

if [[ -z ${ZEPHLANE_PRIVATE_REDIS_RUNNING:-} ]]; then
  printf 'tour.sh: run ./demo, which gives this a Redis server of its own\n' >&2
  exit 2
fi

heading() { printf '\n== %s ==\n' "$1"; }

mkdir -p /tmp/FOSS_schema /tmp/etc
cp -- "$schemas"/*.json /tmp/FOSS_schema/
mv /tmp/FOSS_schema/SchemaURIConf.json /tmp/etc/

heading 'The schema files go into the store'
"$tool" interpret /tmp/FOSS_schema/ServiceRoot.v1_0_0.json

heading 'The service root as the store now holds it, two levels deep'
"$tool" tree "$service_root" --depth 2
