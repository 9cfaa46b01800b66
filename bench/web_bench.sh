#!/usr/bin/env bash
# The web page's answers on a large SQLite store, as the server times them:
# a page of calls (newest first, one extension's month, a deep page, by
# person, department and cost, in every order both ways) and the
# dashboard. The store is made once from bench/make_records.py's Hicom
# records, imported, priced by examples/rating/hicom-plan.toml, and kept
# under /tmp/velqua-web-bench.
#
# Usage: bench/web_bench.sh [--calls N] [--runs K] [--velqua PATH] [--db STORE]
#   N records (default 10,000,000); K timed runs of each request (default 5,
#   the best kept, after a warming one). --db: an existing store with its
#   directory instead (bench/reports_bench.sh makes one); the person,
#   department and extension asked for are its directory's first entry; a
#   PostgreSQL store by its URL.
# The time is curl's time to the first byte of the answer on a loopback
# connection: the server's time, plus a loopback round trip.
set -euo pipefail
cd "$(dirname "$0")/.."
calls=10000000
runs=5
velqua=build/tools/velqua/velqua
while [ $# -gt 0 ]; do
  case "$1" in
    --calls) calls="$2"; shift 2 ;;
    --runs) runs="$2"; shift 2 ;;
    --velqua) velqua="$2"; shift 2 ;;
    --db) db="$2"; shift 2 ;;
    *) echo "unknown option: $1" >&2; exit 2 ;;
  esac
done
velqua=$(realpath "$velqua")
dir=/tmp/velqua-web-bench
mkdir -p "$dir"
db="${db:-$dir/calls-$calls.db}"
# A query in the store's own shell (a PostgreSQL store is a URL).
q() { if [[ "$db" == postgres* ]]; then psql "$db" -Atc "$1"; else sqlite3 "$db" "$1"; fi; }
if [[ "$db" != postgres* && ! -f "$db" ]]; then
  echo "making $db ($calls records)"
  python3 bench/make_records.py "$calls" > "$dir/records-$calls.txt"
  /usr/bin/time -f "  imported in %e s" "$velqua" import --db "$db" --switch hicom \
    -c examples/hicom/hicom.json "$dir/records-$calls.txt" > /dev/null
  /usr/bin/time -f "  priced in %e s" "$velqua" rate --db "$db" \
    --plan examples/rating/hicom-plan.toml > /dev/null
  rm -f "$dir/records-$calls.txt"
fi
# A directory of the records' extensions (100 to 499): a person each, ten
# departments.
if [ "$(q "SELECT count(*) FROM directory")" = 0 ]; then
  {
    echo "extension,person,department"
    for e in $(seq 100 499); do echo "$e,Person $e Weber$((e % 7)),Dept $((e % 10))"; done
  } > "$dir/people.csv"
  "$velqua" directory import --db "$db" "$dir/people.csv" > /dev/null
fi
first="SELECT entry_key, person, department FROM directory WHERE kind = 'extension'"
IFS='|' read -r extension person department < <(q "$first ORDER BY entry_key LIMIT 1")
person=$(echo "${person##* }" | tr 'A-Z' 'a-z')  # the last word: a surname
department=${department// /%20}

"$velqua" serve --db "$db" --listen 127.0.0.1:0 > "$dir/serve.out" 2>&1 &
server=$!
trap 'kill $server' EXIT
for _ in $(seq 100); do
  url=$(grep -o 'http://[^ ]*/' "$dir/serve.out" || true)
  [ -n "$url" ] && break
  sleep 0.1
done
curl -s -c "$dir/jar" "${url}api/session" > /dev/null

# The best of K runs after a warming one, in milliseconds to the first byte.
best() {
  curl -s -b "$dir/jar" -o /dev/null "${url}$1"
  local best_ms=""
  for _ in $(seq "$runs"); do
    ms=$(curl -s -b "$dir/jar" -o /dev/null -w '%{time_starttransfer}' "${url}$1" |
         awk '{printf "%.1f", $1 * 1000}')
    if [ -z "$best_ms" ] || [ "$(echo "$ms < $best_ms" | bc)" = 1 ]; then best_ms=$ms; fi
  done
  printf "%9s ms  %s\n" "$best_ms" "$1"
}

best "api/calls?limit=50"
best "api/calls?limit=50&sort=duration"
best "api/calls?limit=50&offset=10000"
best "api/calls?limit=50&extension=$extension&from=2025-03-01&to=2025-03-31"
best "api/calls?limit=50&from=2025-03-01&to=2025-03-31&sort=cost"
best "api/calls?limit=50&number=0301"
best "api/calls?limit=50&person=$person"
best "api/calls?limit=50&department=$department"
best "api/calls?limit=50&department=$department&from=2025-03-01&to=2025-03-31&sort=cost"
best "api/calls?limit=50&min_cost=1.00"
# Every other order, both ways: the calls without the key (no trunk, no
# price) come first in ascending order.
best "api/calls?limit=50&sort=duration&order=asc&offset=10000"
best "api/calls?limit=50&sort=cost"
best "api/calls?limit=50&sort=cost&order=asc"
best "api/calls?limit=50&extension=$extension&sort=cost"
best "api/calls?limit=50&person=$person&sort=cost"
best "api/calls?limit=50&number=0301&sort=cost"
best "api/calls?limit=50&sort=extension&order=asc"
best "api/calls?limit=50&sort=trunk&order=asc"
best "api/calls?limit=50&sort=trunk"
best "api/calls?limit=50&sort=number"
best "api/calls?limit=50&from=2025-03-01&to=2025-03-31&sort=duration&order=asc"
day=$(q "SELECT substr(max(start), 1, 10) FROM calls")
best "api/dashboard?day=$day"
