#!/usr/bin/env bash
# End-to-end picture benchmark, one command: builds ORLET and the generator (optimised), starts
# its own virtual X session (openbox, tray, stand-in editor) on :66, runs the real ORLET binary
# with --stats and prints, beside `ffmpeg -f x11grab` + scale to the same size, what the mirror
# and the display list cost, how long a change takes to reach the mirror and how faithful the
# mirror's picture is; then the CPU time of one reduction, which does not depend on the load.
#   bench/picture/run.sh [--display :66] [--modes full,box,typing,static] [--sizes 2560x1440,...]
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${ORLET_BENCH_BUILD:-$root/build-picture-bench}
"$root/scripts/install-deps.sh" --bench
mkdir -p "$build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >"$build/configure.log" 2>&1 ||
  { cat "$build/configure.log"; exit 1; }
cmake --build "$build" -j"$(nproc)" --target orlet orlet_standin orlet_capture_generator \
  orlet_latency_probe orlet_reduce_cost \
  >"$build/build.log" 2>&1 || { tail -30 "$build/build.log"; exit 1; }
exec python3 "$root/bench/picture/bench.py" --orlet "$build/orlet" \
  --standin "$build/tests/linux/orlet_standin" \
  --generator "$build/bench/capture/orlet_capture_generator" \
  --probe "$build/bench/picture/orlet_latency_probe" \
  --reduce-cost "$build/bench/picture/orlet_reduce_cost" \
  --xsession "$root/scripts/xsession.sh" "$@"
