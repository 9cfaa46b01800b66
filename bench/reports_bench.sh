#!/usr/bin/env bash
# The reports' speed on a large store, side by side with the same totals
# asked in plain SQL of the engine's shell (sqlite3 or psql) and of pandas
# over a CSV export. The store is made once by bench/report_store (made-up calls over
# a year), priced by bench/reports/plan.toml with the directory of
# bench/reports/*.csv, and kept under /tmp/velqua-reports-bench.
#
# Usage: bench/reports_bench.sh [--calls N] [--runs K] [--velqua PATH] [--gen PATH]
#                               [--db URL] [--no-year]
#   N calls over 2025 (default 10,000,000); K timed runs of each (default 3,
#   the best kept; a first run warms the cache). --db: a PostgreSQL store
#   (filled the first time, when it holds no calls) instead of the SQLite
#   file; --no-year: the month only.
# Needs GNU time (Debian package time), sqlite3, python3-pandas.
set -euo pipefail
cd "$(dirname "$0")/.."
calls=10000000
runs=3
velqua=build/tools/velqua/velqua
gen=build/bench/report_store
url=""
year_too=1
while [ $# -gt 0 ]; do
  case "$1" in
    --calls) calls="$2"; shift 2 ;;
    --runs) runs="$2"; shift 2 ;;
    --velqua) velqua="$2"; shift 2 ;;
    --gen) gen="$2"; shift 2 ;;
    --db) url="$2"; shift 2 ;;
    --no-year) year_too=0; shift ;;
    *) echo "unknown option: $1" >&2; exit 2 ;;
  esac
done
velqua=$(realpath "$velqua")
gen=$(realpath "$gen")
dir=/tmp/velqua-reports-bench
mkdir -p "$dir"
db="${url:-$dir/calls-$calls.db}"
fill() {
  echo "making $db ($calls calls over 2025)"
  /usr/bin/time -f "  made in %e s, %M KB" "$gen" "$db" "$calls" 2025-01-01 365
  /usr/bin/time -f "  priced in %e s" "$velqua" rate --db "$db" --plan bench/reports/plan.toml
  "$velqua" directory import --db "$db" bench/reports/people.csv bench/reports/accounts.csv
}
if [ -n "$url" ]; then
  [ "$(psql "$url" -Atc "SELECT count(*) FROM calls" 2>/dev/null || echo 0)" != 0 ] || fill
elif [ ! -f "$db" ]; then
  fill
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
for kind in extensions departments accounts trunks destinations missed traffic compare; do
  printf "%-12s month " "$kind"; best "$velqua" report "$kind" --db "$db" "${month[@]}" --format csv
  if [ "$year_too" = 1 ]; then
    printf "%-12s year  " "$kind"; best "$velqua" report "$kind" --db "$db" "${year[@]}" --format csv
  fi
done
printf "%-12s month " "pdf depts"; best "$velqua" report departments --db "$db" "${month[@]}" -o "$dir/d.pdf"

# The same totals in plain SQL on the calls, in the engine's own shell.
shell=sqlite3
sql=(sqlite3 "$db")
[ -z "$url" ] || { shell=psql; sql=(psql "$url" -Atc); }
for period in "2025-03-01 2025-04-01 month" "2025-01-01 2026-01-01 year"; do
  read -r from to_next name <<< "$period"
  [ "$name" = month ] || [ "$year_too" = 1 ] || continue
  span="c.start >= '$from' AND c.start < '$to_next'"
  # Calls, talk time and cost per trunk; the extensions report's counts.
  trunks_sql="SELECT c.trunk, count(*), sum(c.duration), sum(CAST(replace(k.cost, '.', '') AS INTEGER)) FROM calls c LEFT JOIN call_costs k ON k.call_id = c.id WHERE $span AND c.trunk IS NOT NULL GROUP BY c.trunk;"
  ext_sql="SELECT extension, count(*), sum(CASE WHEN attribute <> 4 AND type IN (2,5) THEN 1 ELSE 0 END), sum(CASE WHEN attribute <> 4 AND type = 1 THEN 1 ELSE 0 END), sum(CASE WHEN attribute <> 4 AND type = 3 THEN 1 ELSE 0 END), sum(CASE WHEN attribute = 4 THEN 1 ELSE 0 END), sum(duration) FROM calls c WHERE $span GROUP BY extension;"
  # Cost per department as a user would write it: each call's department in
  # force on its day, by a correlated subquery on the directory.
  dept_sql="SELECT coalesce((SELECT d.department FROM directory d WHERE d.kind = 'extension' AND d.entry_key = c.extension AND (d.from_day = '' OR d.from_day <= substr(c.start, 1, 10)) ORDER BY d.from_day DESC LIMIT 1), '(none)') AS dep, count(*), sum(c.duration), sum(CAST(replace(k.cost, '.', '') AS INTEGER)) FROM calls c LEFT JOIN call_costs k ON k.call_id = c.id WHERE $span GROUP BY dep;"
  printf "%-11s %s " "$shell departments" "$name"; best "${sql[@]}" "$dept_sql"
  printf "%-11s %s " "$shell trunks" "$name"; best "${sql[@]}" "$trunks_sql"
  printf "%-11s %s " "$shell extensions" "$name"; best "${sql[@]}" "$ext_sql"
done

# pandas over a CSV export of the month (the export itself not timed).
export_sql="SELECT c.start, c.type, c.attribute, c.duration, c.extension, c.trunk, k.cost FROM calls c LEFT JOIN call_costs k ON k.call_id = c.id WHERE c.start >= '2025-03-01' AND c.start < '2025-04-01'"
csv="$dir/march-priced-$calls${url:+-pg}.csv"
if [ ! -f "$csv" ]; then
  if [ -n "$url" ]; then
    psql "$url" -c "\\copy ($export_sql) TO STDOUT WITH CSV HEADER" > "$csv"
  else
    sqlite3 -header -csv "$db" "$export_sql" > "$csv"
  fi
fi
cat > "$dir/totals.py" <<'PY'
import sys
import pandas as pd
calls = pd.read_csv(sys.argv[1], dtype={"extension": str, "trunk": str})
if sys.argv[2] == "departments":
    people = pd.read_csv(sys.argv[3], dtype={"extension": str, "from": str})
    people["day"] = pd.to_datetime(people["from"].fillna("1970-01-01"))
    calls["day"] = pd.to_datetime(calls["start"].str[:10])
    calls["cents"] = (calls["cost"].fillna(0) * 100).round().astype("int64")
    both = pd.merge_asof(calls.dropna(subset=["extension"]).sort_values("day"),
                         people.sort_values("day")[["day", "extension", "department"]],
                         on="day", by="extension")
    print(both.fillna({"department": "(none)"}).groupby("department").agg(
        calls=("start", "size"), seconds=("duration", "sum"), cents=("cents", "sum")))
elif sys.argv[2] == "trunks":
    print(calls.dropna(subset=["trunk"]).groupby("trunk").agg(calls=("start", "size"), seconds=("duration", "sum")))
else:
    answered = calls["attribute"] != 4
    calls["out"] = answered & calls["type"].isin([2, 5])
    calls["in"] = answered & (calls["type"] == 1)
    calls["internal"] = answered & (calls["type"] == 3)
    calls["unanswered"] = ~answered
    print(calls.groupby("extension")[["out", "in", "internal", "unanswered", "duration"]].sum())
PY
printf "%-11s month " "pandas departments"; best /usr/bin/python3 "$dir/totals.py" "$csv" departments bench/reports/people.csv
printf "%-11s month " "pandas trunks"; best /usr/bin/python3 "$dir/totals.py" "$csv" trunks
printf "%-11s month " "pandas extensions"; best /usr/bin/python3 "$dir/totals.py" "$csv" extensions
