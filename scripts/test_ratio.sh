#!/usr/bin/env bash
# Prints the lines of test code, the lines of the rest and their ratio: C++ and
# Python files git tracks, a file counting as test code when it stands under a
# folder named tests/; examples/ is left out. The project keeps tests at about a
# quarter to a third of the code: enough to catch real faults, no more.
# Usage: scripts/test_ratio.sh [--max PERCENT]   (exit 1 above PERCENT)
set -euo pipefail
cd "$(dirname "$0")/.."

max=""
if [ "${1:-}" = "--max" ]; then max="${2:?--max needs a percentage}"; fi

git ls-files -z -- '*.cpp' '*.cc' '*.c' '*.h' '*.hpp' '*.py' ':!examples/' |
  xargs -0 wc -l |
  awk -v max="$max" '
    $2 == "total" { next }
    { if ($2 ~ /(^|\/)tests\//) tests += $1; else code += $1 }
    END {
      ratio = code ? 100 * tests / code : 0
      printf "tests %d lines, code %d lines, tests/code %.1f%%\n", tests, code, ratio
      if (max != "" && ratio > max + 0) { printf "above %s%%\n", max; exit 1 }
    }'
