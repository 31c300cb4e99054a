#!/usr/bin/env bash
# A real Wayland session for tests and demos: sway with its headless backend (no GPU, no input
# devices) and two outputs (1920x1080 at 0,0; 2560x1440 at 1920,0), every window floating. sway
# refuses to run as root, so it runs as the unprivileged user orlet-wayland (made here when
# missing) with a runtime directory of its own; clients reach it through the socket's path.
#
#   scripts/swaysession.sh start NAME   # prints the WAYLAND_DISPLAY to use (an absolute path)
#   scripts/swaysession.sh stop NAME
set -euo pipefail

cmd=${1:?usage: swaysession.sh start|stop NAME}
name=${2:?usage: swaysession.sh start|stop NAME}
user=orlet-wayland
rundir=/tmp/orlet-sway-$name

# shellcheck source=wait-until.sh
source "$(dirname "${BASH_SOURCE[0]}")/wait-until.sh"

as_root() {
  if [[ $(id -u) -eq 0 ]]; then "$@"; else sudo "$@"; fi
}

stop() {
  if [[ -e $rundir/sway.pid ]]; then
    local pid; pid=$(cat "$rundir/sway.pid")
    as_root kill "$pid" 2>/dev/null || true
    wait_until 5 bash -c "! kill -0 $pid" || as_root kill -9 "$pid" 2>/dev/null || true
  fi
  as_root rm -rf "$rundir"
}

start() {
  stop
  id "$user" >/dev/null 2>&1 || as_root useradd --system --no-create-home "$user"
  as_root install -d -m 0700 -o "$user" "$rundir"
  as_root tee "$rundir/config" >/dev/null <<'CONF'
output HEADLESS-1 mode 1920x1080 position 0 0
output HEADLESS-2 mode 2560x1440 position 1920 0
for_window [app_id=".*"] floating enable
default_border none
default_floating_border none
focus_follows_mouse no
CONF
  # sway itself writes its pid: runuser stays between us and it.
  as_root runuser -u "$user" -- env -i PATH=/usr/bin:/bin XDG_RUNTIME_DIR="$rundir" \
    WLR_BACKENDS=headless WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1 WLR_HEADLESS_OUTPUTS=2 \
    sh -c 'echo $$ > "$XDG_RUNTIME_DIR/sway.pid"; exec sway -c "$XDG_RUNTIME_DIR/config"' \
    >"/tmp/orlet-sway-$name.log" 2>&1 &
  if ! wait_until 20 bash -c "ls '$rundir' | grep -q '^wayland-[0-9]*$'"; then
    echo "swaysession.sh: sway did not start; see /tmp/orlet-sway-$name.log" >&2
    tail -20 "/tmp/orlet-sway-$name.log" >&2 || true
    exit 1
  fi
  echo "$rundir/$(ls "$rundir" | grep '^wayland-[0-9]*$' | head -1)"
}

case $cmd in
  start) start ;;
  stop) stop ;;
  *) echo "usage: swaysession.sh start|stop NAME" >&2; exit 2 ;;
esac
