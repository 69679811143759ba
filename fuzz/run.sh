#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# run.sh SECONDS [TARGET...]: runs each fuzzer of build/fuzz for so long, all of them or the named
# ones, and prints what it did. What it learns is kept in build/fuzz/learned, what it finds in
# build/fuzz/findings. With FUZZ_JOBS=2 two run at a time.
set -euo pipefail
cd -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/.."

seconds=$1
shift
targets=("$@")
if ((${#targets[@]} == 0)); then
  for folder in fuzz/corpus/*/; do targets+=("$(basename -- "$folder")"); done
fi

# A reply that announces a billion elements makes hiredis ask for room for all of them: it gets none.
export ASAN_OPTIONS=allocator_may_return_null=1:max_allocation_size_mb=64

fuzz() { # TARGET
  local target=$1 options=() log=build/fuzz/$1.log
  mkdir -p "build/fuzz/learned/$target" "build/fuzz/findings/$target"
  if [[ -e fuzz/$target.dict ]]; then options+=("-dict=fuzz/$target.dict"); fi
  # The library's own output goes nowhere; the fuzzer's is kept.
  if ! build/fuzz/tests/support/zephlane-private-redis "build/fuzz/fuzz/fuzz_$target" \
    -max_total_time="$seconds" -max_len=4096 -timeout=20 -rss_limit_mb=2048 -close_fd_mask=3 \
    -print_final_stats=1 -artifact_prefix="build/fuzz/findings/$target/" "${options[@]}" \
    "build/fuzz/learned/$target" "fuzz/corpus/$target" >"$log" 2>&1; then
    printf '%s: FOUND SOMETHING, see %s\n' "$target" "$log"
    tail -n 40 "$log"
    return 1
  fi
  printf '%s: %s executions\n' "$target" \
    "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")"
}

status=0
running=()
for target in "${targets[@]}"; do
  fuzz "$target" &
  running+=($!)
  if ((${#running[@]} == ${FUZZ_JOBS:-1})); then
    wait "${running[0]}" || status=1
    running=("${running[@]:1}")
  fi
done
for job in "${running[@]}"; do wait "$job" || status=1; done
exit $status
