#!/usr/bin/env bash
# The README's first command: installs what is missing, builds Velqua into
# build/ (scripts/setup.sh) and translates the bundled Panasonic KX-TDA
# sample, printing the table of calls.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build

echo
echo "== velqua translate: Panasonic KX-TDA100/200, examples/kx-tda/records.txt"
build/tools/velqua/velqua translate --format table \
  -c examples/kx-tda/kx-tda.json \
  --extensions examples/kx-tda/extensions.txt \
  examples/kx-tda/records.txt
