#!/usr/bin/env bash
# The README's first command: installs what is missing, builds Velqua into
# build/ (scripts/setup.sh) and translates the bundled Panasonic KX-TDA
# sample, printing the table of calls.
set -euo pipefail
cd "$(dirname "$0")/.."

# The program and the drawing surface are on by default in a top-level build;
# said explicitly so that an older build/ configured without them is fixed.
scripts/setup.sh build -DVELQUA_BUILD_CLI=ON -DVELQUA_BUILD_CAIRO=ON

echo
echo "== velqua translate: Panasonic KX-TDA100/200, examples/kx-tda/records.txt"
build/tools/velqua/velqua translate --format table \
  -c examples/kx-tda/kx-tda.json \
  --extensions examples/kx-tda/extensions.txt \
  examples/kx-tda/records.txt
