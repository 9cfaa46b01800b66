#!/usr/bin/env bash
# Pricing in the store, side by side in the same minutes: import without a
# rating plan, import with one (each call priced as it is stored), and
# velqua rate of every stored call, for one or two builds of velqua run in
# turn (say the one before a change and the one after), so that the load of
# a shared machine weighs on both alike. Prints, per run, the CPU time
# (user + sys, GNU time) and the wall time.
#
# Usage: bench/rating_store_bench.sh [--records N] [--runs K] [--postgresql] VELQUA [VELQUA...]
#   N records (default 1,000,000) made by bench/make_records.py (Hicom long
#   format), the plan prices them with examples/rating/office-de.toml.
#   --postgresql: the stores are databases of a throwaway PostgreSQL server
#   on a free loopback port (run as the postgres user when root); the
#   server's work is then in the wall time, not in velqua's CPU time.
# Needs GNU time (Debian package time), python3, bc, and for --postgresql
# the Debian package postgresql.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
records=1000000
runs=2
postgresql=""
while [ $# -gt 0 ]; do
  case "$1" in
    --records) records="$2"; shift 2 ;;
    --runs) runs="$2"; shift 2 ;;
    --postgresql) postgresql=1; shift ;;
    *) break ;;
  esac
done
[ $# -gt 0 ] || { echo "usage: $0 [--records N] [--runs K] VELQUA [VELQUA...]" >&2; exit 2; }
cache=/tmp/velqua-rating-bench
mkdir -p "$cache"
input="$cache/records-$records.txt"
[ -s "$input" ] || python3 bench/make_records.py "$records" > "$input"
work=$(mktemp -d /tmp/velqua-rating-bench-run-XXXXXX)
chmod 755 "$work"
pg_bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -1)
as_pg() { if [ "$(id -u)" = 0 ]; then runuser -u postgres -- "$@"; else "$@"; fi; }
cleanup() {
  [ -n "$postgresql" ] && as_pg "$pg_bin/pg_ctl" -D "$work/pg/data" -m fast -w stop >/dev/null 2>&1
  rm -rf "$work"
}
trap cleanup EXIT
if [ -n "$postgresql" ]; then
  mkdir -p "$work/pg"
  [ "$(id -u)" = 0 ] && chown postgres "$work/pg"
  pg_port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')
  as_pg "$pg_bin/initdb" -D "$work/pg/data" -A trust -U postgres -E UTF8 --locale=C >/dev/null
  as_pg "$pg_bin/pg_ctl" -D "$work/pg/data" -l "$work/pg/log" -w -o \
    "-p $pg_port -k $work/pg -c listen_addresses=127.0.0.1" start >/dev/null
fi
# A new empty store named NAME: a file, or a database of the server.
new_store() {
  if [ -z "$postgresql" ]; then
    echo "$work/$1.db"
  else
    psql -q "postgresql://postgres@127.0.0.1:$pg_port/postgres" -c "CREATE DATABASE $1"
    echo "postgresql://postgres@127.0.0.1:$pg_port/$1"
  fi
}
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
    plain=$(new_store "plain_${run}_$n")
    rated=$(new_store "rated_${run}_$n")
    "$v" rate --db "$rated" --plan "$plan" > /dev/null 2>&1
    measure "run $run build $n import, no plan" \
      "$v" import --db "$plain" --switch bench -c "$config" --year 2025 "$input"
    measure "run $run build $n import, pricing" \
      "$v" import --db "$rated" --switch bench -c "$config" --year 2025 "$input"
    measure "run $run build $n rate, every call" "$v" rate --db "$plain" --plan "$plan"
    measure "run $run build $n rate again" "$v" rate --db "$plain"
  done
done
