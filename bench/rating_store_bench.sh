#!/usr/bin/env bash
# Pricing in the store, side by side in the same minutes: import without a
# rating plan, import with one (each call priced as it is stored), and
# velqua rate of every stored call, for one or two builds of velqua run in
# turn (say the one before a change and the one after), so that the load of
# a shared machine weighs on both alike. Prints, per run, the CPU time
# (user + sys, GNU time) and the wall time.
#
# Usage: bench/rating_store_bench.sh [--records N] [--runs K] VELQUA [VELQUA...]
#   N records (default 1,000,000) made by bench/make_records.py (Hicom long
#   format), the plan prices them with examples/rating/office-de.toml.
# Needs GNU time (Debian package time) and python3.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
records=1000000
runs=2
while [ $# -gt 0 ]; do
  case "$1" in
    --records) records="$2"; shift 2 ;;
    --runs) runs="$2"; shift 2 ;;
    *) break ;;
  esac
done
[ $# -gt 0 ] || { echo "usage: $0 [--records N] [--runs K] VELQUA [VELQUA...]" >&2; exit 2; }
cache=/tmp/velqua-rating-bench
mkdir -p "$cache"
input="$cache/records-$records.txt"
[ -s "$input" ] || python3 bench/make_records.py "$records" > "$input"
work=$(mktemp -d /tmp/velqua-rating-bench-run-XXXXXX)
trap 'rm -rf "$work"' EXIT
plan="$work/plan.toml"
printf '[[tariff]]\nswitch = "bench"\nfile = "%s/examples/rating/office-de.toml"\nrewrite = { "00" = "+", "0" = "+49" }\n' \
  "$root" > "$plan"
config="$root/examples/hicom/hicom.json"

# measure LABEL VELQUA ARGS...: one line "LABEL cpu wall".
measure() {
  local label="$1"
  shift
  /usr/bin/time -f "%U %S %e" -o "$work/time" "$@" > /dev/null 2> "$work/err" ||
    { cat "$work/err" >&2; exit 1; }
  read -r user sys wall < "$work/time"
  printf '%-34s cpu %6.2f s  wall %6.2f s\n' "$label" "$(echo "$user + $sys" | bc)" "$wall"
}

for run in $(seq "$runs"); do
  n=0
  for velqua in "$@"; do
    n=$((n + 1))
    v=$(realpath "$velqua")
    rm -f "$work"/*.db*
    "$v" rate --db "$work/rated.db" --plan "$plan" > /dev/null 2>&1
    measure "run $run build $n import, no plan" \
      "$v" import --db "$work/plain.db" --switch bench -c "$config" --year 2025 "$input"
    measure "run $run build $n import, pricing" \
      "$v" import --db "$work/rated.db" --switch bench -c "$config" --year 2025 "$input"
    measure "run $run build $n rate, every call" "$v" rate --db "$work/plain.db" --plan "$plan"
    measure "run $run build $n rate again" "$v" rate --db "$work/plain.db"
  done
done
