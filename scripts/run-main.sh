#!/usr/bin/env bash
# The main job: build the library and the prsm host, then estimate a logic design on the shipped data.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DPRSM_BUILD_TESTS=OFF -DPRSM_BUILD_BENCH=OFF >/dev/null
cmake --build build -j"$(nproc)" >/dev/null
build/host/prsm models
echo
build/host/prsm calc TalvexCleLogic INSTANCE_TYPE=LUT_LOGIC INSTANCE_COUNT=100000 CLOCK_FREQ=200 "$@"
