#!/usr/bin/env bash
# Installs the Debian 12 packages that building, testing, fuzzing and benchmarking need. Idempotent and
# silent when everything is present.
set -euo pipefail

packages=(
  build-essential cmake pkg-config python3
  libconfig++-dev libboost-filesystem-dev libboost-iostreams-dev libboost-system-dev zlib1g-dev
  libgtest-dev libbenchmark-dev nlohmann-json3-dev libcli11-dev libcpp-httplib-dev
  gnuplot-nox pybind11-dev python3-dev python3-numpy python3-pandas python3-pytest python3-dask python3-distributed
  chromium chromium-driver python3-selenium
  clang-14 libfuzzer-14-dev libclang-rt-14-dev
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
echo "Installing: ${missing[*]}" >&2
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
