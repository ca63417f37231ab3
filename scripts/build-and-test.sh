#!/usr/bin/env bash
# Builds and passes the tests: the whole suite normally, then again after the main job (the README's two
# commands in the other order); a consumer of the installed package; the suite under ThreadSanitizer,
# and under AddressSanitizer and UndefinedBehaviorSanitizer in the clang tree that then runs each fuzz
# target for a short fixed time.
#
# Every build has a folder of its own that no other command uses, configured with every option spelled
# out, so nothing cached by an earlier run can switch the tests off; every ctest run fails when it finds
# no test. The last line is "<passed> passed, <failed> failed", summed over every run.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
jobs=$(nproc)
fuzz_seconds=${PRSM_FUZZ_SECONDS:-45}

# Line tables are all a failing test's backtrace needs; full debug information and, under ThreadSanitizer,
# -O2 roughly double the compile time of the generated sheets on a 2-core machine.
line_tables=(-DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O2 -g1 -DNDEBUG")
tsan_flags=(-DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1 -DNDEBUG")
fuzz_flags=(-DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -gline-tables-only -DNDEBUG")

launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
# Lets ccache cache the sources that use the library's precompiled header.
export CCACHE_SLOPPINESS=pch_defines,time_macros

passed=0
failed=0
started=$SECONDS
summary() {
  local status=$?
  # A run that stops before counting its failure (a build that breaks) still fails one check.
  [ "$status" -ne 0 ] && [ "$failed" -eq 0 ] && failed=1
  echo
  echo "== Summary ($(((SECONDS - started) / 60)) min)"
  echo "$passed passed, $failed failed"
}
trap summary EXIT

section() {
  echo
  echo "== $* ($(((SECONDS - started) / 60)) min)"
}

# configure <folder> <options...>: the options every build shares, then the folder's own.
configure() {
  local dir=$1
  shift
  cmake -S . -B "$dir" -DPRSM_WERROR=ON -DPRSM_BUILD_BENCH=OFF "${launcher[@]}" "$@" >/dev/null
}

# compile <folder> [target]: the compiler's lines go to <folder>/build.log, shown when the build fails.
compile() {
  local dir=$1
  shift
  cmake --build "$dir" -j"$jobs" "$@" >"$dir/build.log" 2>&1 || {
    tail -n 80 "$dir/build.log"
    echo "building $dir failed (whole log: $dir/build.log)"
    return 1
  }
  echo "built $dir"
}

# run_tests <folder> [VAR=value...]: the folder's suite; adds its counts to the totals.
run_tests() {
  local dir=$1
  shift
  local status=0
  env "$@" ctest --test-dir "$dir" --output-on-failure --no-tests=error -j"$jobs" 2>&1 | tee "$dir/ctest.log" ||
    status=$?
  local line
  line=$(grep -E '^[0-9]+% tests passed, [0-9]+ tests? failed out of [0-9]+' "$dir/ctest.log" | tail -n 1 || true)
  if [[ $line =~ ([0-9]+)\ tests?\ failed\ out\ of\ ([0-9]+) ]] && [ "${BASH_REMATCH[2]}" -gt 0 ]; then
    passed=$((passed + BASH_REMATCH[2] - BASH_REMATCH[1]))
    failed=$((failed + BASH_REMATCH[1]))
  else
    failed=$((failed + 1))  # no test found, or ctest did not get as far as its closing line
    [ "$status" -ne 0 ] || status=1
  fi
  return "$status"
}

section "Build and test"
configure build -DCMAKE_BUILD_TYPE=RelWithDebInfo "${line_tables[@]}" -DPRSM_BUILD_TESTS=ON -DPRSM_SANITIZE=OFF \
  -DPRSM_FUZZ=OFF
compile build
run_tests build

section "The main job first, then the tests again (the README's commands in the other order)"
scripts/run-main.sh >build/run-main.log
grep -q "^Junction temperature" build/run-main.log || {
  cat build/run-main.log
  echo "the main job printed no estimate"
  false
}
echo "the main job ran (output in build/run-main.log)"
passed=$((passed + 1))
configure build -DCMAKE_BUILD_TYPE=RelWithDebInfo "${line_tables[@]}" -DPRSM_BUILD_TESTS=ON -DPRSM_SANITIZE=OFF \
  -DPRSM_FUZZ=OFF
compile build
run_tests build

section "Build a consumer against the installed package"
rm -rf build/stage build/consumer
cmake --install build --prefix build/stage >/dev/null
cmake -S tests/install -B build/consumer -DCMAKE_PREFIX_PATH="$PWD/build/stage" >/dev/null
cmake --build build/consumer -j"$jobs" >/dev/null
QDI_DATADIR="$PWD/build/stage/share/prsm" build/consumer/prsm_consumer
QDI_DATADIR="$PWD/build/stage/share/prsm" build/consumer/prsm_readme_example
PKG_CONFIG_PATH="$PWD/build/stage/lib/pkgconfig" pkg-config --exists prsm
echo "the consumer builds, links and calculates"
passed=$((passed + 1))

section "Build and test under ThreadSanitizer"
configure build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo "${tsan_flags[@]}" -DPRSM_BUILD_TESTS=ON -DPRSM_SANITIZE=thread -DPRSM_FUZZ=OFF
compile build-tsan
run_tests build-tsan TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1

# One clang tree serves both AddressSanitizer with UndefinedBehaviorSanitizer and fuzzing: everything in
# it is built with both sanitizers (and coverage counters, which only the fuzz targets read), so the
# suite runs there instead of in a library build of its own.
section "Build and test under AddressSanitizer and UndefinedBehaviorSanitizer (clang), then fuzz"
configure build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo "${fuzz_flags[@]}" -DCMAKE_CXX_COMPILER=clang++-14 -DPRSM_FUZZ=ON \
  -DPRSM_BUILD_TESTS=ON -DPRSM_BUILD_PYTHON=OFF -DPRSM_SANITIZE=OFF
compile build-fuzz
run_tests build-fuzz ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

section "Fuzz each target for ${fuzz_seconds} s"
findings=0
for target in fuzz_datafile fuzz_sheetfunc fuzz_set_by_name fuzz_host_json; do
  # New inputs go to a scratch folder; the seed corpus in the repository is only read.
  work=build-fuzz/corpus/$target
  mkdir -p "$work" build-fuzz/findings
  if LSAN_OPTIONS=suppressions=tests/fuzz/lsan-suppressions.txt \
    build-fuzz/tests/fuzz/$target -max_total_time="$fuzz_seconds" -timeout=30 -rss_limit_mb=2048 \
    -artifact_prefix="build-fuzz/findings/$target-" -print_final_stats=1 \
    "$work" "tests/fuzz/corpus/$target" >"build-fuzz/$target.log" 2>&1; then
    runs=$(awk '/^stat::number_of_executed_units/ {print $2}' "build-fuzz/$target.log")
    echo "$target: ${runs:-?} runs, no finding"
    passed=$((passed + 1))
  else
    tail -n 60 "build-fuzz/$target.log"
    echo "$target: FINDING, saved under build-fuzz/findings/ (whole log: build-fuzz/$target.log)"
    failed=$((failed + 1))
    findings=$((findings + 1))
  fi
done
[ "$findings" -eq 0 ] || exit 1
