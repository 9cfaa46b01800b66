#!/usr/bin/env bash
# Installs a build into a temporary prefix and uses it as a user would: a C
# host built with pkg-config and a C++ host built with find_package(velqua),
# both from the installed examples (outside the source tree), and the Python
# host with the installed module, must each print the same rows as the
# installed velqua program on the bundled Panasonic example.
# Usage: scripts/check_install.sh [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"

work=$(mktemp -d /tmp/velqua-install-XXXXXX)
trap 'rm -rf "$work"' EXIT
prefix="$work/prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null

pc=$(find "$prefix" -name velqua.pc)
export PKG_CONFIG_PATH="${pc%/*}"
export LD_LIBRARY_PATH="$(pkg-config --variable=libdir velqua)"
python=$(sed -n 's/^Python3_EXECUTABLE:[A-Z]*=//p' "$build/CMakeCache.txt")
hosts="$prefix/share/doc/velqua/examples"
kx="$prefix/share/velqua/examples/kx-tda"
args=("$kx/kx-tda.cfg" "$kx/records.txt" "$kx/extensions.txt")

"$prefix/bin/velqua" translate -c "$kx/kx-tda.cfg" --extensions "$kx/extensions.txt" \
  --format csv "$kx/records.txt" >"$work/program-all.csv" 2>/dev/null
# The hosts print the call columns; the program adds where an unrecognised
# record came from and its text (file, raw), left out here.
"$python" -c 'import csv, sys
w = csv.writer(sys.stdout, lineterminator="\r\n")
for row in csv.reader(open(sys.argv[1], newline="")):
    w.writerow(row[:-2])' "$work/program-all.csv" >"$work/program.csv"

cp -r "$hosts/c" "$work/c"
# shellcheck disable=SC2046  # pkg-config gives several words
cc -std=c99 -Wall -Wextra -pedantic -Werror -o "$work/c/velqua_rows" "$work/c/velqua_rows.c" \
  $(pkg-config --cflags --libs velqua)
"$work/c/velqua_rows" "${args[@]}" >"$work/c.csv" 2>/dev/null

cmake -S "$hosts/cpp" -B "$work/cpp" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cpp" >/dev/null
"$work/cpp/velqua_rows_cpp" "${args[@]}" >"$work/cpp.csv" 2>/dev/null

PYTHONPATH="$prefix/lib/python3/dist-packages" "$python" "$hosts/python/velqua_rows.py" \
  "${args[@]}" >"$work/python.csv"

for host in c cpp python; do
  if ! cmp -s "$work/program.csv" "$work/$host.csv"; then
    echo "the $host host's rows differ from the program's:" >&2
    diff "$work/program.csv" "$work/$host.csv" >&2 || true
    exit 1
  fi
done
echo "installed: the C, C++ and Python hosts print the program's $(($(wc -l <"$work/program.csv") - 1)) rows"
