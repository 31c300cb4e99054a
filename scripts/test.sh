#!/usr/bin/env bash
# Builds ORLET with AddressSanitizer and UndefinedBehaviorSanitizer and runs the whole test suite:
# the logic's unit tests, the formatting check, and the integration tests on a real X server.
# Then builds the whole tree once more as a packager would, optimised (RelWithDebInfo, benchmarks
# included), where the compiler's warnings differ, runs the unit tests from that build and builds
# and checks the packages (scripts/package.sh), and runs the reliability cases from it at a
# larger share of their full counts. Last, the fuzzers (clang, libFuzzer) run for a
# bounded time over their seed corpora.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
build=${ORLET_TEST_BUILD_DIR:-build-test}
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Debug -DORLET_SANITIZE=ON -DORLET_BUILD_BENCH=OFF
cmake --build "$build" -j"$(nproc)"

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$PWD/tests/lsan.supp:print_suppressions=0}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
ctest --test-dir "$build" --output-on-failure --timeout 600 "$@"

cmake -S . -B "$build-release" -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build-release" -j"$(nproc)"
ctest --test-dir "$build-release" --output-on-failure --timeout 600 -L "unit|package"
# The reliability cases again, optimised as users run ORLET, at their full counts with a one-minute
# soak (about five minutes); the full ten-minute soak is the README's longer command.
ORLET_RELIABILITY_SCALE=${ORLET_RELIABILITY_RELEASE_SCALE:-1} \
  ORLET_RELIABILITY_SOAK_SCALE=${ORLET_RELIABILITY_RELEASE_SOAK_SCALE:-0.1} \
  ctest --test-dir "$build-release" --output-on-failure --timeout 1800 -L reliability

fuzz=${ORLET_FUZZ_BUILD_DIR:-$build-fuzz}
CC=clang CXX=clang++ cmake -S . -B "$fuzz" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DORLET_FUZZ=ON \
  -DORLET_BUILD_TESTS=OFF -DORLET_BUILD_BENCH=OFF -DORLET_FUZZ_SECONDS="${ORLET_FUZZ_SECONDS:-15}"
cmake --build "$fuzz" -j"$(nproc)" --target fuzzers
ctest --test-dir "$fuzz" --output-on-failure -L fuzz
