#!/usr/bin/env bash
# Shortcut benchmark, one command: builds ORLET and the probe (-O2), starts its own Xorg dummy
# session (openbox, no tray) and prints ORLET's idle cost, its CPU per key event of the session,
# and the Ctrl+K -> mirror map latency.
#   bench/hotkey/run.sh [--display :89] [--keys 5000] [--toggles 200] [--idle 10]
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${ORLET_BENCH_BUILD:-$root/build-hotkey-bench}
mkdir -p "$build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DORLET_BUILD_TESTS=OFF \
  >"$build/configure.log" 2>&1 || { cat "$build/configure.log"; exit 1; }
cmake --build "$build" -j2 --target orlet orlet_hotkey_probe \
  >"$build/build.log" 2>&1 || { tail -30 "$build/build.log"; exit 1; }
exec python3 "$root/bench/hotkey/bench.py" --orlet "$build/orlet" \
  --probe "$build/bench/hotkey/orlet_hotkey_probe" --xsession "$root/scripts/xsession.sh" "$@"
