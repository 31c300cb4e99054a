#!/usr/bin/env bash
# Runs ORLET's X11 integration tests under each window manager studios run: openbox, xfwm4
# (with its compositor off, and on as Xfce has it by default: xfwm4-compositor), metacity, KWin
# and Mutter (their X11 modes), installing them first. Prints passed and failed
# counts per window manager; the exit status is non-zero when any test failed.
#
#   scripts/wm-matrix.sh [xfwm4 metacity ...]     # all six when none is named
set -euo pipefail
cd "$(dirname "$0")/.."

wms=("$@")
if ((${#wms[@]} == 0)); then wms=(openbox xfwm4 xfwm4-compositor metacity kwin mutter); fi
scripts/install-deps.sh --wm-matrix

build=${ORLET_TEST_BUILD_DIR:-build-test}
others=()
for wm in "${wms[@]}"; do [[ $wm == openbox ]] || others+=("$wm"); done
matrix=$(IFS=';'; echo "${others[*]-}")
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Debug -DORLET_SANITIZE=ON -DORLET_BUILD_BENCH=OFF \
  "-DORLET_WM_MATRIX=$matrix" >/dev/null
# The build directory is scripts/test.sh's too: leave it registering openbox alone again.
trap 'cmake -S . -B "$build" -DORLET_WM_MATRIX= >/dev/null' EXIT
cmake --build "$build" -j"$(nproc)"

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$PWD/tests/lsan.supp:print_suppressions=0}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
status=0 summary=()
for wm in "${wms[@]}"; do
  log="$build/wm-matrix-$wm.log"
  if ctest --test-dir "$build" -L "^wm-$wm\$" --output-on-failure --timeout 600 >"$log" 2>&1; then
    result="all passed"
  else
    status=1
    result="failed: $(grep -E '^[[:space:]]+[0-9]+ - ' "$log" | sed 's/^ *[0-9]* - //' | tr '\n' ' ')"
  fi
  summary+=("$wm: $(grep -Eo '[0-9]+ tests failed out of [0-9]+|100% tests passed.*' "$log" | head -1) — $result")
done
printf '%s\n' "${summary[@]}"
exit $status
