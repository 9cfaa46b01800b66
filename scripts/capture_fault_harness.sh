#!/usr/bin/env bash
# The capture fault harness, long version: 100,000 records pushed while the
# service is killed with SIGKILL 25 times at random moments and the
# connection cut 25 times; prints the figures doc/reliability.md records.
# The test suite runs a short version (10,000 records, 5 kills, 5 cuts).
# Usage: scripts/capture_fault_harness.sh [BUILD_DIR] [extra harness options]
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR="${1:-build}"
shift || true
cmake --build "$BUILD_DIR" -j2 --target velqua_capture_fault_harness >/dev/null
for fsync in always interval; do
  "$BUILD_DIR"/capture/velqua_capture_fault_harness --records 100000 --kills 25 --cuts 25 \
    --rate 2000 --fsync "$fsync" "$@"
done
