#!/usr/bin/env bash
# Times `velqua translate` end to end: generates a record file under /tmp by
# repeating a bundled example's sample, translates it with CSV output to
# /dev/null, and reports MB/s, records/s and peak RSS (GNU time -v).
#
# Usage: bench/cli_bench.sh [--records N | --mb M] [--example NAME]
#                           [--velqua PATH] [--runs K] [--keep]
#   --records N   about N records (default 1000000)
#   --mb M        about M MB of records instead (10, 100, 1000 ...)
#   --example     hicom (case 1, default), kx-tda (case 11), norstar (case 4),
#                 definity (case 6)
#   --velqua      the program (default build-perf/tools/velqua/velqua)
#   --runs K      time K runs and report each (default 3)
#   --keep        keep the generated file (it is deleted by default)
# Needs GNU time (/usr/bin/time, Debian package `time`).
set -euo pipefail
cd "$(dirname "$0")/.."

records=1000000
mb=""
example=hicom
velqua=build-perf/tools/velqua/velqua
runs=3
keep=0
while [ $# -gt 0 ]; do
  case "$1" in
    --records) records="$2"; shift 2 ;;
    --mb) mb="$2"; shift 2 ;;
    --example) example="$2"; shift 2 ;;
    --velqua) velqua="$2"; shift 2 ;;
    --runs) runs="$2"; shift 2 ;;
    --keep) keep=1; shift ;;
    *) echo "unknown option: $1" >&2; exit 2 ;;
  esac
done

[ -x "$velqua" ] || { echo "no program at $velqua (build with -DCMAKE_BUILD_TYPE=Release)" >&2; exit 1; }
[ -x /usr/bin/time ] || { echo "GNU time is missing: apt-get install time" >&2; exit 1; }
sample="examples/$example/records.txt"
config="examples/$example/$example.cfg"
extra=()
[ "$example" = kx-tda ] && extra=(--extensions examples/kx-tda/extensions.txt)

work=$(mktemp -d /tmp/velqua-cli-bench-XXXXXX)
cleanup() { [ "$keep" = 1 ] && echo "kept $work" || rm -rf "$work"; }
trap cleanup EXIT

# A block of about 1 MB of whole sample copies, then as many blocks as asked.
chunk="$work/chunk.txt"
input="$work/records.txt"
for _ in $(seq 1 $((1048576 / $(stat -c %s "$sample") + 1))); do cat "$sample"; done >"$chunk"
chunk_bytes=$(stat -c %s "$chunk")
if [ -n "$mb" ]; then
  copies=$(((mb * 1000000 + chunk_bytes - 1) / chunk_bytes))
else
  chunk_records=$("$velqua" translate -c "$config" "${extra[@]}" -f csv "$chunk" 2>&1 >/dev/null |
    sed -n 's/^velqua: \([0-9]*\) records read.*/\1/p')
  copies=$(((records + chunk_records - 1) / chunk_records))
fi
for _ in $(seq 1 "$copies"); do cat "$chunk"; done >"$input"
bytes=$(stat -c %s "$input")

echo "machine: $(lscpu | sed -n 's/^Model name: *//p'), $(nproc) CPUs; load: $(uptime | sed 's/.*load average: //')"
echo "input: $example sample x $copies blocks = $bytes bytes"
for run in $(seq 1 "$runs"); do
  /usr/bin/time -v -o "$work/time.txt" \
    "$velqua" translate -c "$config" "${extra[@]}" -f csv "$input" >/dev/null 2>"$work/err.txt"
  n=$(sed -n 's/^velqua: \([0-9]*\) records read.*/\1/p' "$work/err.txt")
  secs=$(sed -n 's/.*Elapsed (wall clock) time (h:mm:ss or m:ss): //p' "$work/time.txt" |
    awk -F: '{ s = 0; for (i = 1; i <= NF; i++) s = s * 60 + $i; print s }')
  user=$(sed -n 's/.*User time (seconds): //p' "$work/time.txt")
  sys=$(sed -n 's/.*System time (seconds): //p' "$work/time.txt")
  rss=$(sed -n 's/.*Maximum resident set size (kbytes): //p' "$work/time.txt")
  awk -v b="$bytes" -v n="$n" -v s="$secs" -v u="$user" -v y="$sys" -v r="$rss" -v k="$run" 'BEGIN {
    cpu = u + y
    printf "run %d: %d records, %.1f MB in %.2f s wall (%.2f s cpu): %.1f MB/s, %.0f records/s (cpu: %.1f MB/s, %.0f records/s); peak RSS %.1f MB\n",
      k, n, b / 1e6, s, cpu, b / 1e6 / s, n / s, b / 1e6 / cpu, n / cpu, r / 1024 }'
done
