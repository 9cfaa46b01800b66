#!/usr/bin/env bash
# A smoke run of every libFuzzer target of a fuzz build (-DVELQUA_FUZZ=ON with
# clang): each starts from a copy of its committed corpus (fuzz/corpus/<t>,
# left unchanged) with its dictionary, and runs for a few seconds. A finding
# (a crash, a sanitizer report, a broken invariant) stops the script with the
# target's name and its output; the input is left in the work folder named.
# The long runs and their figures are in doc/reliability.md.
# Usage: scripts/fuzz_smoke.sh [BUILD_DIR] [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build-fuzz}"
seconds="${2:-5}"

targets=()
for t in "$build"/fuzz/fuzz_*; do
  [[ -x "$t" && "$t" != *_replay ]] && targets+=("$t")
done
if [ ${#targets[@]} -eq 0 ]; then
  echo "no fuzz targets in $build/fuzz: configure with CC=clang CXX=clang++ -DVELQUA_FUZZ=ON" >&2
  exit 1
fi

work=$(mktemp -d /tmp/velqua-fuzz-XXXXXX)
for target in "${targets[@]}"; do
  name=${target##*/fuzz_}
  mkdir -p "$work/$name"
  cp fuzz/corpus/"$name"/* "$work/$name"/
  options=(-max_total_time="$seconds" -timeout=5 -rss_limit_mb=2048 -print_final_stats=1
           -artifact_prefix="$work/$name/")
  [ -f "fuzz/$name.dict" ] && options+=(-dict="fuzz/$name.dict")
  if ! "$target" "${options[@]}" "$work/$name" >"$work/$name.log" 2>&1; then
    echo "fuzz_$name found a fault (input and log in $work):" >&2
    tail -40 "$work/$name.log" >&2
    exit 1
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$work/$name.log")
  echo "fuzz_$name: ${runs:-?} runs in ${seconds} s, nothing found"
done
rm -rf "$work"
