#!/usr/bin/env bash
# The main job: build the library and the prsm host, then estimate the example accelerator design.
# It builds in build-main/, a folder no other command uses, so it never changes what the tests build.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
# Lets ccache cache the sources that use the library's precompiled header.
export CCACHE_SLOPPINESS=pch_defines,time_macros
cmake -S . -B build-main -DCMAKE_BUILD_TYPE=Release -DPRSM_BUILD_TESTS=OFF -DPRSM_BUILD_BENCH=OFF \
  -DPRSM_SANITIZE=OFF -DPRSM_FUZZ=OFF "${launcher[@]}" >/dev/null
cmake --build build-main -j"$(nproc)" >/dev/null
build-main/host/prsm models
echo
build-main/host/prsm estimate examples/accelerator.json "$@"
