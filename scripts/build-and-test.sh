#!/usr/bin/env bash
# Builds and runs the whole test suite twice, normally and under AddressSanitizer and
# UndefinedBehaviorSanitizer, then checks that a consumer builds against the installed package.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
jobs=$(nproc)

echo "== Build and test"
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DPRSM_WERROR=ON
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure -j"$jobs"

echo "== Build and test under AddressSanitizer and UndefinedBehaviorSanitizer"
cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DPRSM_WERROR=ON -DPRSM_SANITIZE=ON -DPRSM_BUILD_BENCH=OFF
cmake --build build-asan -j"$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --test-dir build-asan --output-on-failure -j"$jobs"

echo "== Build a consumer against the installed package"
rm -rf build/stage build/consumer
cmake --install build --prefix build/stage >/dev/null
cmake -S tests/install -B build/consumer -DCMAKE_PREFIX_PATH="$PWD/build/stage" >/dev/null
cmake --build build/consumer -j"$jobs" >/dev/null
QDI_DATADIR="$PWD/build/stage/share/prsm" build/consumer/prsm_consumer
PKG_CONFIG_PATH="$PWD/build/stage/lib/pkgconfig" pkg-config --exists prsm
echo "installed: 1 passed, 0 failed"
