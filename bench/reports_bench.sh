#!/usr/bin/env bash
# The reports' speed on a large SQLite store, side by side with the same
# totals asked of the sqlite3 shell in plain SQL and of pandas over a CSV
# export. The store is made once by bench/report_store (made-up calls over
# a year) and kept under /tmp/velqua-reports-bench.
#
# Usage: bench/reports_bench.sh [--calls N] [--runs K] [--velqua PATH] [--gen PATH]
#   N calls over 2025 (default 10,000,000); K timed runs of each (default 3,
#   the best kept; a first run warms the cache).
# Needs GNU time (Debian package time), sqlite3, python3-pandas.
set -euo pipefail
cd "$(dirname "$0")/.."
calls=10000000
runs=3
velqua=build/tools/velqua/velqua
gen=build/bench/report_store
while [ $# -gt 0 ]; do
  case "$1" in
    --calls) calls="$2"; shift 2 ;;
    --runs) runs="$2"; shift 2 ;;
    --velqua) velqua="$2"; shift 2 ;;
    --gen) gen="$2"; shift 2 ;;
    *) echo "unknown option: $1" >&2; exit 2 ;;
  esac
done
velqua=$(realpath "$velqua")
gen=$(realpath "$gen")
dir=/tmp/velqua-reports-bench
mkdir -p "$dir"
db="$dir/calls-$calls.db"
if [ ! -f "$db" ]; then
  echo "making $db ($calls calls over 2025)"
  /usr/bin/time -f "  made in %e s, %M KB" "$gen" "$db" "$calls" 2025-01-01 365
fi

# The best of K runs after a warming run: wall seconds, CPU seconds (user +
# system: what the machine's load does not inflate) and peak RSS.
best() {
  "$@" > /dev/null 2>&1
  local best_s="" best_cpu="" best_kb=""
  for _ in $(seq "$runs"); do
    /usr/bin/time -f "%e %U %S %M" -o "$dir/time" "$@" > /dev/null 2>&1
    read -r s user sys kb < "$dir/time"
    cpu=$(echo "$user + $sys" | bc)
    if [ -z "$best_s" ] || [ "$(echo "$s < $best_s" | bc)" = 1 ]; then
      best_s=$s; best_cpu=$cpu; best_kb=$kb
    fi
  done
  printf "%8s s wall %8s s CPU %8s KB\n" "$best_s" "$best_cpu" "$best_kb"
}

month=(--from 2025-03-01 --to 2025-03-31)
year=(--from 2025-01-01 --to 2025-12-31)
for kind in extensions trunks missed traffic compare; do
  printf "%-11s month " "$kind"; best "$velqua" report "$kind" --db "$db" "${month[@]}" --format csv
  printf "%-11s year  " "$kind"; best "$velqua" report "$kind" --db "$db" "${year[@]}" --format csv
done
printf "%-11s month " "pdf trunks"; best "$velqua" report trunks --lines 8 --db "$db" "${month[@]}" -o "$dir/t.pdf"

# The same totals in plain SQL: calls and talk time per trunk, per extension.
trunks_sql="SELECT trunk, count(*), sum(duration) FROM calls WHERE start >= '2025-03-01' AND start < '2025-04-01' AND trunk IS NOT NULL GROUP BY trunk;"
ext_sql="SELECT extension, count(*), sum(CASE WHEN attribute <> 4 AND type IN (2,5) THEN 1 ELSE 0 END), sum(CASE WHEN attribute <> 4 AND type = 1 THEN 1 ELSE 0 END), sum(CASE WHEN attribute <> 4 AND type = 3 THEN 1 ELSE 0 END), sum(CASE WHEN attribute = 4 THEN 1 ELSE 0 END), sum(duration) FROM calls WHERE start >= '2025-03-01' AND start < '2025-04-01' GROUP BY extension;"
printf "%-11s month " "sqlite3 trunks"; best sqlite3 "$db" "$trunks_sql"
printf "%-11s month " "sqlite3 extensions"; best sqlite3 "$db" "$ext_sql"

# pandas over a CSV export of the month (the export itself not timed).
csv="$dir/march-$calls.csv"
[ -f "$csv" ] || sqlite3 -header -csv "$db" "SELECT start, type, attribute, duration, extension, trunk FROM calls WHERE start >= '2025-03-01' AND start < '2025-04-01'" > "$csv"
cat > "$dir/totals.py" <<'PY'
import sys
import pandas as pd
calls = pd.read_csv(sys.argv[1], dtype={"extension": str, "trunk": str})
if sys.argv[2] == "trunks":
    print(calls.dropna(subset=["trunk"]).groupby("trunk").agg(calls=("start", "size"), seconds=("duration", "sum")))
else:
    answered = calls["attribute"] != 4
    calls["out"] = answered & calls["type"].isin([2, 5])
    calls["in"] = answered & (calls["type"] == 1)
    calls["internal"] = answered & (calls["type"] == 3)
    calls["unanswered"] = ~answered
    print(calls.groupby("extension")[["out", "in", "internal", "unanswered", "duration"]].sum())
PY
printf "%-11s month " "pandas trunks"; best /usr/bin/python3 "$dir/totals.py" "$csv" trunks
printf "%-11s month " "pandas extensions"; best /usr/bin/python3 "$dir/totals.py" "$csv" extensions
