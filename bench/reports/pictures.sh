#!/usr/bin/env bash
# Makes the pictures of doc/reports.md: a store of 30,000 made-up calls over
# 2025 (bench/report_store), priced by bench/reports/plan.toml, with the
# directory of bench/reports/*.csv; each report of March 2025 as a PDF, its
# first page rendered at 50 dpi (pdftoppm, Debian package poppler-utils).
#
# Usage: bench/reports/pictures.sh [BUILD_DIR]   (default: build)
set -euo pipefail
cd "$(dirname "$0")/../.."
build=${1:-build}
velqua=$build/tools/velqua/velqua
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
db=$work/calls.db
"$build/bench/report_store" "$db" 30000 2025-01-01 365
"$velqua" rate --db "$db" --plan bench/reports/plan.toml
"$velqua" directory import --db "$db" bench/reports/people.csv bench/reports/accounts.csv
march=(--db "$db" --from 2025-03-01 --to 2025-03-31)
page() {  # NAME PAGE REPORT-ARGUMENTS...
  local name=$1 first=$2
  shift 2
  "$velqua" report "$@" "${march[@]}" -o "$work/$name.pdf"
  pdftoppm -r 50 -f "$first" -l "$first" -png -singlefile "$work/$name.pdf" "doc/reports/$name"
}
page extensions 1 extensions
page itemised 1 extensions --itemised 207
page departments 1 departments
page accounts 1 accounts
page trunks 1 trunks --lines 8
page destinations 1 destinations --top 10
page missed 1 missed
page traffic 1 traffic
page traffic-charts 2 traffic
page compare 1 compare --of departments
