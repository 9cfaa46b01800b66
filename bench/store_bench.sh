#!/usr/bin/env bash
# Benchmarks of the call store, each side by side with what a user would
# otherwise use, in the same minute. Records are made by bench/make_records.py
# (Hicom long format, all different) and kept under /tmp/velqua-store-bench.
#
# Usage: bench/store_bench.sh sqlite     [--records N] [--runs K]
#          velqua import of N records (default 1,000,000) into a new SQLite
#          store, then bench/python_import.py: the same rows by a plain Python
#          executemany into the same schema, one transaction; K rounds
#        bench/store_bench.sh postgresql [--records N] [--runs K]
#          velqua import into a new PostgreSQL database, then psql \copy of the
#          same rows as CSV into the same table (a throwaway server on a free
#          loopback port, run as the postgres user when root)
#        bench/store_bench.sh query      [--records N] [--runs K]
#          velqua calls for one extension over one month in a store of N calls
#          (default 10,000,000), whole program and the query alone
#        bench/store_bench.sh memory
#          peak RSS of velqua import of 10 MB, 100 MB and 1 GB of records
# Options: --velqua PATH (default build-perf/tools/velqua/velqua, a Release build)
# Needs GNU time (Debian package time), python3, and for postgresql the
# Debian package postgresql.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

what="${1:?sqlite, postgresql, query or memory}"
shift
records=""
runs=3
velqua=build-perf/tools/velqua/velqua
while [ $# -gt 0 ]; do
  case "$1" in
    --records) records="$2"; shift 2 ;;
    --runs) runs="$2"; shift 2 ;;
    --velqua) velqua="$2"; shift 2 ;;
    *) echo "unknown option: $1" >&2; exit 2 ;;
  esac
done
velqua=$(realpath "$velqua")
[ -x "$velqua" ] || { echo "no program at $velqua (cmake -DCMAKE_BUILD_TYPE=Release)" >&2; exit 1; }
config="$root/examples/hicom/hicom.json"
cache=/tmp/velqua-store-bench
mkdir -p "$cache"
work=$(mktemp -d /tmp/velqua-store-bench-run-XXXXXX)
chmod 755 "$work"
cleanup() { [ -n "${pg_data:-}" ] && pg stop >/dev/null 2>&1; rm -rf "$work"; }
trap cleanup EXIT

# records-N.txt, made once.
records_file() {
  local file="$cache/records-$1.txt"
  [ -s "$file" ] || python3 bench/make_records.py "$1" >"$file"
  echo "$file"
}

# Runs a command under GNU time; prints "WALL CPU RSS_MB".
timed() {
  /usr/bin/time -f "%e %U %S %M" -o "$work/time" "$@"
  awk '{ printf "%.2f %.2f %.0f\n", $1, $2 + $3, $4 / 1024 }' "$work/time"
}

machine() {
  echo "machine: $(lscpu | sed -n 's/^Model name: *//p'), $(nproc) CPUs; load: $(uptime | sed 's/.*load average: //')"
}

import() {  # DB FILE
  timed "$velqua" import --db "$1" --switch hq -c "$config" --year 2025 --quiet "$2" 2>"$work/import.err"
}

bench_sqlite() {
  local n=${records:-1000000} file
  file=$(records_file "$n")
  machine
  echo "input: $n records, $(stat -c %s "$file") bytes"
  for run in $(seq 1 "$runs"); do
    rm -f "$work"/calls.db*
    read -r wall cpu rss < <(import "$work/calls.db" "$file")
    awk -v n="$n" -v w="$wall" -v c="$cpu" -v r="$rss" -v k="$run" 'BEGIN {
      printf "run %d: velqua import: %.2f s wall, %.2f s cpu, %.0f records/s, peak RSS %d MB\n",
        k, w, c, n / w, r }'
    echo "run $run: $(python3 bench/python_import.py "$work/calls.db" "$work/python.db")"
  done
}

# The throwaway PostgreSQL server: pg start|stop, psql_as ARGS...
pg_bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -1)
as_pg() { if [ "$(id -u)" = 0 ]; then runuser -u postgres -- "$@"; else "$@"; fi; }
pg() {
  case "$1" in
    start)
      pg_data="$work/pg"
      mkdir -p "$pg_data"
      [ "$(id -u)" = 0 ] && chown postgres "$work" "$pg_data"
      pg_port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')
      as_pg "$pg_bin/initdb" -D "$pg_data/data" -A trust -U postgres -E UTF8 --locale=C >/dev/null
      as_pg "$pg_bin/pg_ctl" -D "$pg_data/data" -l "$pg_data/log" -w -o \
        "-p $pg_port -k $pg_data -c listen_addresses=127.0.0.1" start >/dev/null ;;
    stop) as_pg "$pg_bin/pg_ctl" -D "$pg_data/data" -m fast -w stop ;;
  esac
}
psql_to() { psql -q -v ON_ERROR_STOP=1 "postgresql://postgres@127.0.0.1:$pg_port/$1" "${@:2}"; }

bench_postgresql() {
  local n=${records:-1000000} file columns
  file=$(records_file "$n")
  columns="switch_id, source_id, position, received_utc, raw, type, attribute, start, start_utc, duration, ring, dialled, extension, trunk, receiving_extension, receiving_trunk, account_code, extension_random"
  pg start
  machine
  echo "input: $n records, $(stat -c %s "$file") bytes; PostgreSQL $("$pg_bin/postgres" --version | awk '{print $3}') on 127.0.0.1:$pg_port (default settings)"
  for run in $(seq 1 "$runs"); do
    psql_to postgres -c "CREATE DATABASE v$run" -c "CREATE DATABASE p$run"
    read -r wall cpu rss < <(import "postgresql://postgres@127.0.0.1:$pg_port/v$run" "$file")
    awk -v n="$n" -v w="$wall" -v c="$cpu" -v k="$run" 'BEGIN {
      printf "run %d: velqua import: %.2f s wall (velqua %.2f s cpu), %.0f records/s\n", k, w, c, n / w }'
    # The same rows as CSV, into the same table of an empty copy of the schema.
    psql_to "v$run" -c "\\copy (SELECT $columns FROM calls) TO '$work/calls.csv' CSV"
    as_pg pg_dump -h 127.0.0.1 -p "$pg_port" -U postgres -s "v$run" | psql_to "p$run" >/dev/null
    as_pg pg_dump -h 127.0.0.1 -p "$pg_port" -U postgres -a -t switches -t sources "v$run" |
      psql_to "p$run" >/dev/null
    read -r wall cpu rss < <(timed psql -q "postgresql://postgres@127.0.0.1:$pg_port/p$run" \
      -c "\\copy calls ($columns) FROM '$work/calls.csv' CSV")
    local rows
    rows=$(wc -l <"$work/calls.csv")
    awk -v n="$rows" -v w="$wall" -v k="$run" 'BEGIN {
      printf "run %d: psql \\copy of the %d calls as CSV: %.2f s wall, %.0f records/s\n", k, n, w, n / w }'
    psql_to postgres -c "DROP DATABASE v$run" -c "DROP DATABASE p$run"
  done
}

bench_query() {
  local n=${records:-10000000} file store
  file=$(records_file "$n")
  store="$cache/store-$n.db"
  if [ ! -s "$store" ]; then
    read -r wall cpu rss < <(import "$store" "$file")
    echo "made the store once: velqua import of $n records: $wall s wall, $cpu s cpu, peak RSS $rss MB"
  fi
  machine
  echo "store: $(sqlite3 "$store" 'SELECT count(*) FROM calls') calls, $(stat -c %s "$store") bytes"
  local query=(calls --db "$store" --extension 201 --from 2025-03-01 --to 2025-03-31 --format csv)
  echo "calls of extension 201 in March 2025: $("$velqua" "${query[@]}" | tail -n +2 | wc -l)"
  for run in $(seq 1 "$runs"); do
    local start=$EPOCHREALTIME
    "$velqua" "${query[@]}" -o /dev/null
    local end=$EPOCHREALTIME
    echo "run $run: velqua ${query[*]}: $(awk -v a="$start" -v b="$end" 'BEGIN { printf "%.1f", (b - a) * 1000 }') ms"
  done
  echo "the query alone (sqlite3 .timer), and its plan:"
  sqlite3 "$store" <<EOF
.timer on
SELECT count(*), sum(duration) FROM calls WHERE extension = '201' AND start >= '2025-03-01' AND start < '2025-04-01';
.timer off
EXPLAIN QUERY PLAN SELECT * FROM calls WHERE extension = '201' AND start >= '2025-03-01' AND start < '2025-04-01';
EOF
}

bench_memory() {
  machine
  for mb in 10 100 1000; do
    local n=$((mb * 1000000 / 81)) file  # the records are 81 bytes
    file=$(records_file "$n")
    rm -f "$work"/calls.db*
    read -r wall cpu rss < <(import "$work/calls.db" "$file")
    echo "$mb MB ($n records): $wall s wall, $(awk -v n="$n" -v w="$wall" 'BEGIN { printf "%.0f", n / w }') records/s, peak RSS $rss MB"
  done
}

"bench_$what"
