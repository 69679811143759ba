#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# tour.sh TOOL SCHEMAS: what ./demo shows. The tool reads its configuration, schema files and the
# server's password at fixed places below /tmp, so this runs where the launcher has made them
# private, or found them free and removes them afterwards.
set -euo pipefail
tool=$1
schemas=$2
shown_titles=6

if [[ -z ${ZEPHLANE_PRIVATE_REDIS_RUNNING:-} ]]; then
  printf 'tour.sh: run ./demo, which gives this a Redis server of its own\n' >&2
  exit 2
fi

heading() { printf '\n== %s ==\n' "$1"; }

mkdir -p /tmp/FOSS_schema /tmp/etc
cp -- "$schemas"/*.json /tmp/FOSS_schema/
mv /tmp/FOSS_schema/SchemaURIConf.json /tmp/etc/

heading 'Interpreting the sample schemas (the library itself prints the root hash, line by line)'
"$tool" interpret /tmp/FOSS_schema/ServiceRoot.v1_0_0.json

listing=$("$tool" get ZephlaneSchemaTitleUuidHash)
mapfile -t titles <<<"$listing"
heading "Schemas in the store by title: $shown_titles of ${#titles[@]}"
printf '%s\n' "${titles[@]:0:shown_titles}"

heading 'One of them, the service root, as a tree (→ leads to another schema)'
"$tool" tree ServiceRoot.1.0.0 --depth 3

printf '\nThis server and all it held are gone again. README.md tells how to use one of your own.\n'
