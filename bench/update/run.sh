#!/usr/bin/env bash
# Update check benchmark, one command: builds ORLET (-O2), serves a feed over HTTPS with a
# certificate authority of its own, starts its own Xorg dummy session (openbox) and prints the
# time from the choice of "Mise à jour…" to the update window's map.
#   bench/update/run.sh [--display :88] [--checks 20]
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${ORLET_BENCH_BUILD:-$root/build-update-bench}
mkdir -p "$build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DORLET_BUILD_TESTS=OFF \
  >"$build/configure.log" 2>&1 || { cat "$build/configure.log"; exit 1; }
cmake --build "$build" -j2 --target orlet >"$build/build.log" 2>&1 || {
  tail -30 "$build/build.log"
  exit 1
}
exec python3 "$root/bench/update/bench.py" --orlet "$build/orlet" --root "$root" "$@"
