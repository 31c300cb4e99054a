#!/usr/bin/env bash
# Interaction benchmark, one command: builds ORLET, the stand-in editor and the clicker
# (RelWithDebInfo), starts its own Xorg dummy session on :62 and prints the overlays' CPU cost
# and the click latency.
#   bench/interaction/run.sh [--display :62] [--seconds 10] [--repeats 3] [--clicks 200]
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${ORLET_BENCH_BUILD:-$root/build-interaction-bench}
"$root/scripts/install-deps.sh"
mkdir -p "$build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  >"$build/configure.log" 2>&1 || { cat "$build/configure.log"; exit 1; }
cmake --build "$build" -j"$(nproc)" --target orlet orlet_standin orlet_interaction_clicker \
  >"$build/build.log" 2>&1 || { tail -30 "$build/build.log"; exit 1; }
exec python3 "$root/bench/interaction/bench.py" --orlet "$build/orlet" \
  --standin "$build/tests/linux/orlet_standin" \
  --clicker "$build/bench/interaction/orlet_interaction_clicker" \
  --xsession "$root/scripts/xsession.sh" "$@"
