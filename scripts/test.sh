#!/usr/bin/env bash
# Runs every test: formatting check, clang-tidy, the g++ build and its tests, an install
# used by hosts in C, C++ and Python, then the clang build under
# AddressSanitizer + UndefinedBehaviorSanitizer and its tests, and a few
# seconds of every fuzz target from its corpus.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build -DVELQUA_WERROR=ON

echo "== clang-format check"
files=$(git ls-files '*.h' '*.c' '*.cpp' 2>/dev/null || find include src tests tools surfaces bench fuzz -name '*.h' -o -name '*.cpp')
clang-format --dry-run -Werror $files

echo "== clang-tidy (the core library, src/: .clang-tidy's bug-finding checks)"
cmake -S . -B build -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
run-clang-tidy -quiet -p build "$(pwd)/src/"  # .clang-tidy makes every finding an error

echo "== tests (g++)"
ctest --test-dir build --output-on-failure -j"$(nproc)" -E '^web\.browser$'

echo "== the web page in a real browser (chromium driven by playwright-core)"
# Its own step, so a machine without the browser fails here instead of
# skipping it; screenshots land in build/web-screenshots.
ctest --test-dir build --output-on-failure --no-tests=error -R '^web\.browser$'

echo "== install (C, C++ and Python hosts outside the tree)"
scripts/check_install.sh build

echo "== tests (clang, ASan + UBSan; the fuzz targets built too)"
CC=clang CXX=clang++ scripts/setup.sh build-asan -DVELQUA_SANITIZE=ON -DVELQUA_WERROR=ON \
  -DCMAKE_BUILD_TYPE=Debug -DVELQUA_FUZZ=ON
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan --output-on-failure -j"$(nproc)"

echo "== fuzz smoke run (each target a few seconds from its corpus)"
scripts/fuzz_smoke.sh build-asan 5
