#!/usr/bin/env bash
# A real X session for tests, benchmarks and demos: Xorg with the dummy video driver and two
# RandR outputs (1920x1080 primary at 0,0; 2560x1440 at 1920,0), a window manager (openbox unless
# --wm or $ORLET_TEST_WM names another: openbox, xfwm4, xfwm4-compositor, metacity, kwin,
# mutter), and optionally
# trayer as a system-tray host.
#
#   scripts/xsession.sh start :41 [--no-wm] [--wm NAME] [--tray] [--no-shm] [--depth 30]
#                                 [--layout client-left|main-below-left]
#                                                   # prints nothing; DISPLAY=:41 is then usable
#   scripts/xsession.sh tray :41    # starts the tray host on a session started without it
#   scripts/xsession.sh wm :41 stop|start|replace   # the window manager goes, comes, is replaced
#   scripts/xsession.sh stop :41
#
# --no-shm starts the server without the MIT-SHM extension; --depth 30 gives a 30-bit root
# window (10 bits a channel), --depth 16 a 16-bit one (5:6:5), which ORLET cannot capture.
# --layout moves the main display away from the desktop's origin: right of the 2560x1440 display
# (client-left), or left of it and lower, with nothing at 0,0 (main-below-left).
set -euo pipefail

usage="usage: xsession.sh start|tray|wm|stop :N [--no-wm] [--wm NAME] [--tray] [--no-shm] [--depth 30]"
cmd=${1:?$usage}
display=${2:?usage: xsession.sh start|stop :N}
shift 2
number=${display#:}
rundir=${ORLET_XSESSION_DIR:-/tmp/orlet-xsession-$number}

# shellcheck source=wait-until.sh
source "$(dirname "${BASH_SOURCE[0]}")/wait-until.sh"

# The pid written in a display's lock file (Xorg's own), empty when there is none.
lock_owner() {
  tr -d ' \n' 2>/dev/null < "/tmp/.X$number-lock" || true
}

# Stops what this run directory started. The display's lock file and socket are removed only
# when they are our server's, or left over by a server that is gone: a session that lost the race
# for a display never takes the winner's with it.
stop() {
  local ours=""
  if [[ -d $rundir ]]; then
    [[ -e $rundir/xorg.pid ]] && ours=$(cat "$rundir/xorg.pid")
    for pidfile in "$rundir"/*.pid; do
      [[ -e $pidfile ]] || continue
      kill "$(cat "$pidfile")" 2>/dev/null || true
    done
    for pidfile in "$rundir"/*.pid; do
      [[ -e $pidfile ]] || continue
      local pid; pid=$(cat "$pidfile")
      wait_until 5 bash -c "! kill -0 $pid" || kill -9 "$pid" 2>/dev/null || true
      rm -f "$pidfile"
    done
  fi
  local owner; owner=$(lock_owner)
  if [[ -n $owner && ( $owner == "$ours" || ! -d /proc/$owner ) ]]; then
    rm -f "/tmp/.X$number-lock" "/tmp/.X11-unix/X$number"
  fi
}

# True once our own Xorg answers: it holds the display's lock (another server on that display
# would answer xdpyinfo too).
ours_is_up() {
  local pid; pid=$(cat "$rundir/xorg.pid")
  kill -0 "$pid" && [[ $(lock_owner) == "$pid" ]] && xdpyinfo -display "$display"
}

# Starts window manager $1 in the background (replacing the running one when $2 is "replace")
# and records its pid. The desktops' own managers
# want a session bus of their own, and run without compositing where they can: what the tests
# read off the screen is then what the applications drew.
start_wm() {
  local command bus=(dbus-run-session --) replace=${2:-}
  case $1 in
    openbox) command=(openbox --sm-disable ${replace:+--replace}); bus=() ;;
    xfwm4) command=(xfwm4 --compositor=off) ;;
    # Xfce's default: the compositor on, so that no window reports what covers it.
    xfwm4-compositor) command=(xfwm4 --compositor=on) ;;
    metacity) command=(metacity --replace --no-composite --sm-disable) ;;
    kwin) command=(env KWIN_COMPOSE=N QT_QPA_PLATFORM=xcb kwin_x11 --replace) ;;
    mutter) command=(mutter --x11 --replace --sm-disable) ;;
    *) echo "xsession.sh: unknown window manager $1" >&2; exit 2 ;;
  esac
  # The manager itself writes its pid (the bus wrapper ends by itself, with its bus, once the
  # manager has ended).
  rm -f "$rundir/wm.pid"
  "${bus[@]}" sh -c 'echo $$ >"$0"; exec "$@"' "$rundir/wm.pid" "${command[@]}" \
    >"$rundir/wm.log" 2>&1 &
  if ! wait_until 20 bash -c "xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'"; then
    echo "xsession.sh: window manager $1 did not start; see $rundir/wm.log" >&2
    tail -20 "$rundir/wm.log" >&2 || true
    exit 1
  fi
  # KWin leaves the bare desktop's pointer to Plasma's start-up, which makes it the arrow: without
  # it the X server's cross would show there.
  if [[ $1 == kwin ]]; then xsetroot -cursor_name left_ptr; fi
}

# The window manager: stopped, started, or replaced by a new one through the WM_S0 selection
# (ICCCM 2.8), as a user switching window managers does.
window_manager() {
  local pidfile=$rundir/wm.pid
  export DISPLAY=$display
  case ${1:-} in
    stop)
      if [[ -e $pidfile ]]; then
        local pid; pid=$(cat "$pidfile")
        kill "$pid" 2>/dev/null || true
        wait_until 5 bash -c "! kill -0 $pid" || kill -9 "$pid" 2>/dev/null || true
        rm -f "$pidfile"
      fi
      wait_until 5 bash -c "! xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'" || true
      ;;
    start|replace)
      local old=""
      [[ -e $pidfile ]] && old=$(cat "$pidfile")
      start_wm "${ORLET_TEST_WM:-openbox}" "$([[ $1 == replace ]] && echo replace)"
      if [[ -n $old ]]; then wait_until 10 bash -c "! kill -0 $old" || return 1; fi
      ;;
    *) echo "usage: xsession.sh wm :N stop|start|replace" >&2; exit 2 ;;
  esac
}

# The session's two displays: 1920x1080 primary (the main display) at 0,0 and 2560x1440 at
# 1920,0, unless --layout says otherwise.
layout=main-left
lay_out() {
  local fb=4480x1440 main=0x0 client=1920x0
  case $layout in
    client-left) main=2560x0 client=0x0 ;;
    main-below-left) fb=4480x2160 main=0x1080 client=1920x0 ;;
  esac
  xrandr --fb $fb --output DUMMY0 --mode 1920x1080 --pos $main --primary \
    --output DUMMY1 --mode 2560x1440_60 --pos $client
}

start() {
  local wm=${ORLET_TEST_WM:-openbox} tray=0 depth=24 extensions=()
  while (($#)); do
    case $1 in
      --no-wm) wm="" ;;
      --wm) wm=${2:?$usage}; shift ;;
      --tray) tray=1 ;;
      --no-shm) extensions+=(-extension MIT-SHM) ;;
      --depth) depth=${2:?--depth needs a number}; shift ;;
      --layout) layout=${2:?--layout needs a name}; shift ;;
      *) echo "xsession.sh: unknown option $1" >&2; exit 2 ;;
    esac
    shift
  done
  stop
  mkdir -p "$rundir"
  cat > "$rundir/xorg.conf" <<'CONF'
Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoEnableDevices" "false"
  Option "DontVTSwitch" "true"
EndSection
Section "Device"
  Identifier "dummy"
  Driver "dummy"
  VideoRam 256000
EndSection
Section "Monitor"
  Identifier "monitor"
  HorizSync 5.0 - 1000.0
  VertRefresh 5.0 - 200.0
EndSection
Section "Screen"
  Identifier "screen"
  Device "dummy"
  Monitor "monitor"
  DefaultDepth DEPTH
  SubSection "Display"
    Depth DEPTH
    Virtual 6400 2160
  EndSubSection
EndSection
CONF
  sed -i "s/DEPTH/$depth/" "$rundir/xorg.conf"
  Xorg "$display" -config "$rundir/xorg.conf" -noreset -nolisten tcp -logfile "$rundir/xorg.log" \
    "${extensions[@]}" >"$rundir/xorg.out" 2>&1 &
  echo $! > "$rundir/xorg.pid"
  local up=0 deadline=$((SECONDS + 20))
  while ((SECONDS < deadline)); do
    if ours_is_up >/dev/null 2>&1; then up=1; break; fi
    kill -0 "$(cat "$rundir/xorg.pid")" 2>/dev/null || break  # lost the display: say so now
    sleep 0.1
  done
  if ((!up)); then
    echo "xsession.sh: Xorg did not start on $display; see $rundir/xorg.log" >&2
    tail -20 "$rundir/xorg.log" >&2 || true
    exit 1
  fi
  export DISPLAY=$display
  xrandr --newmode 2560x1440_60 312.25 2560 2752 3024 3488 1440 1443 1448 1493 -hsync +vsync
  xrandr --newmode 3840x2160_60 712.75 3840 4160 4576 5312 2160 2163 2168 2237 -hsync +vsync
  xrandr --addmode DUMMY1 2560x1440_60
  xrandr --addmode DUMMY1 3840x2160_60
  lay_out
  xsetroot -solid '#3c4048' 2>/dev/null || true
  if [[ -n $wm ]]; then start_wm "$wm"; fi
  # Mutter applies a layout of its own when it starts: give the session's back.
  if [[ $wm == mutter ]]; then lay_out; fi
  if ((tray)); then start_tray; fi
}

# trayer as the notification area (an XEmbed tray host), on the running session.
start_tray() {
  export DISPLAY=$display
  trayer --edge bottom --align right --widthtype pixel --width 120 --heighttype pixel \
    --height 24 --transparent false >"$rundir/trayer.log" 2>&1 &
  echo $! > "$rundir/trayer.pid"
  wait_until 10 bash -c "xprop -root | grep -q _NET_SYSTEM_TRAY || xwininfo -root -tree | grep -qi trayer"
}

case $cmd in
  start) start "$@" ;;
  stop) stop ;;
  tray) start_tray ;;
  wm) window_manager "$@" ;;
  *) echo "$usage" >&2; exit 2 ;;
esac
