#!/usr/bin/env bash
# The capture fault harness, long version: 100,000 records pushed while the
# service is killed with SIGKILL 24 times (at random moments, right after
# reconnections, inside re-sent parts) and the connection cut 24 times, on
# SQLite and on PostgreSQL; then 100,000 records appended to a followed file
# that is rotated or copied and truncated at each of 24 kills. Prints the
# figures doc/reliability.md records. The test suite runs short versions.
# Usage: scripts/capture_fault_harness.sh [BUILD_DIR] [extra harness options]
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR="${1:-build}"
shift || true
cmake --build "$BUILD_DIR" -j2 --target velqua_capture_fault_harness >/dev/null
harness="$BUILD_DIR"/capture/velqua_capture_fault_harness
status=0
for store in sqlite postgresql; do
  "$harness" --records 100000 --kills 24 --cuts 24 --rate 2000 --store "$store" "$@" || status=1
done
"$harness" --source file --records 100000 --kills 24 --rate 4000 "$@" || status=1
exit $status
