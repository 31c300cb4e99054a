#!/usr/bin/env bash
# Capture benchmark, one command: builds the generator and the driver (-O2), starts its own
# Xorg dummy session on :64 and prints ORLET's figures next to ffmpeg's and GStreamer's.
#   bench/capture/run.sh [--resolutions 1920x1080,2560x1440,3840x2160] [--display :64]
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${ORLET_BENCH_BUILD:-$root/build-capture-bench}
"$root/scripts/install-deps.sh" --bench
mkdir -p "$build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DORLET_BUILD_TESTS=OFF \
  >"$build/configure.log" 2>&1 || { cat "$build/configure.log"; exit 1; }
cmake --build "$build" -j"$(nproc)" --target orlet_capture_generator orlet_capture_driver \
  >"$build/build.log" 2>&1 || { tail -30 "$build/build.log"; exit 1; }
exec python3 "$root/bench/capture/bench.py" --bin "$build/bench/capture" \
  --xsession "$root/scripts/xsession.sh" "$@"
