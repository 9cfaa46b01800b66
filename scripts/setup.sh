#!/usr/bin/env bash
# Installs the Debian packages Velqua needs (only those missing) and builds it.
# Usage: scripts/setup.sh [BUILD_DIR] [extra cmake options...]
set -euo pipefail
cd "$(dirname "$0")/.."

PACKAGES=(build-essential cmake g++ clang libgtest-dev libbenchmark-dev libcairo2-dev
          libcli11-dev nlohmann-json3-dev fonts-liberation clang-format clang-tidy libclang-rt-14-dev
          pkg-config time  # time: GNU time for bench/cli_bench.sh
          pybind11-dev python3-dev python3-pytest  # the Python module and its tests
          python3-numpy python3-pandas  # velqua.read_calls: calls as a pandas DataFrame
          # the call store: SQLite, libpq, time zones; a PostgreSQL server for its tests
          libsqlite3-dev libpq-dev libhowardhinnant-date-dev tzdata postgresql
          # the capture service: Asio (sources), toml++ (its configuration), zlib (spool checksums)
          libasio-dev libtomlplusplus-dev zlib1g-dev
          # its Prometheus metrics (HTTP); the package's manual pages (from --help)
          libcpp-httplib-dev help2man
          # reports: spreadsheets, mail; their tests read PDFs and spreadsheets back
          libxlsxwriter-dev libcurl4-openssl-dev poppler-utils python3-openpyxl
          # the web page: Argon2id passwords; Node builds the page, chromium runs its tests
          libsodium-dev nodejs chromium)
# npm comes with some Node packages and not with Debian's own.
command -v npm >/dev/null 2>&1 || PACKAGES+=(npm)
missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}" >/dev/null
fi

# The page's build tools and its browser tests' driver, as pinned.
for dir in web/page web/tests/browser; do
  if [ ! -d "$dir/node_modules" ] || [ "$dir/package-lock.json" -nt "$dir/node_modules" ]; then
    (cd "$dir" && npm ci --no-audit --no-fund --loglevel=error)
  fi
done

BUILD_DIR="${1:-build}"
shift || true
cmake -S . -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build "$BUILD_DIR" -j"$(nproc)"
