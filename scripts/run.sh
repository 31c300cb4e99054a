#!/usr/bin/env bash
# Builds ORLET and runs it: on the current X display, or, when there is none, in a virtual X
# session (Xorg dummy with two displays, openbox, a tray) together with a stand-in editor, so that
# it can still be seen working: a screenshot of that session is saved as orlet-screenshot.png.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
build=${ORLET_BUILD_DIR:-build}
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build" -j"$(nproc)" --target orlet orlet_standin

if [[ -n ${DISPLAY:-} ]] && xdpyinfo >/dev/null 2>&1; then
  exec "$build/orlet" "$@"
fi

display=:${ORLET_VIRTUAL_DISPLAY:-31}
echo "No X display: starting a virtual one on $display."
scripts/xsession.sh start "$display" --tray
export DISPLAY=$display
trap 'kill $(jobs -p) 2>/dev/null; scripts/xsession.sh stop "$display"' EXIT

# The stand-in editor plays darktable: its windows' class, and darktable's own launcher entry.
editor="$build/tests/linux/orlet_standin"
if [[ -x $editor ]]; then
  export XDG_DATA_HOME=$(mktemp -d)
  mkdir -p "$XDG_DATA_HOME/applications"
  cp tests/linux/standin/entries/org.darktable.darktable.desktop "$XDG_DATA_HOME/applications/"
  "$editor" --instance darktable --class Darktable --title darktable \
    --geometry 1000x700+300+150 >/dev/null &
else
  editor=""
fi
"$build/orlet" "$@" &
orlet_pid=$!

# Wait for ORLET's floating button before the screenshot, instead of a fixed delay.
for _ in $(seq 100); do
  if xdotool search --pid "$orlet_pid" >/dev/null 2>&1; then break; fi
  sleep 0.1
done
if [[ -n $editor ]]; then
  xdotool search --class Darktable windowactivate 2>/dev/null || true
  # Show the mirror as the operator would: a click on the floating button.
  for window in $(xdotool search --pid "$orlet_pid" 2>/dev/null); do
    eval "$(xdotool getwindowgeometry --shell "$window")"
    if [[ $WIDTH == 40 && $HEIGHT == 40 ]]; then
      xdotool mousemove $((X + 20)) $((Y + 20)) click 1
    fi
  done
fi
sleep 2  # let the display cards fill before the screenshot
import -window root orlet-screenshot.png
echo "ORLET runs on $display (screenshot: $PWD/orlet-screenshot.png). Ctrl-C stops it."
wait "$orlet_pid"
