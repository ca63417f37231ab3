#!/usr/bin/env bash
# The main job: build the library and the prsm host, then estimate the example accelerator design.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DPRSM_BUILD_TESTS=OFF -DPRSM_BUILD_BENCH=OFF >/dev/null
cmake --build build -j"$(nproc)" >/dev/null
build/host/prsm models
echo
build/host/prsm estimate examples/accelerator.json "$@"
