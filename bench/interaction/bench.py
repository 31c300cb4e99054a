#!/usr/bin/env python3
"""Interaction benchmark: what the enlarged mirror's click overlay, drawn cursor and pointer
crossing cost, and how fast a click on the miniature reaches the window under it.

Started by run.sh, on its own Xorg dummy session (1920x1080 primary, 2560x1440 right of it),
with the stand-in editor "Capture One 23" and its viewer window on the second display.

CPU: ORLET's and the X server's, from /proc/<pid>/stat, median of repeated windows: first with
the mirror hidden (the baseline), then with the second display enlarged in the mirror and
nothing changing on it (so the capture itself costs next to nothing); in each, the pointer
resting and moving at 60 moves a second, off that display and on it.

Click latency: the mirror placed on the second display itself (so the pointer over it never
crosses), clicks on its picture by an XTEST clicker; from the moment the server has handled the
clicker's release to the moment the editor's window reads the replayed release.
"""
import argparse
import os
import subprocess
import sys
import tempfile
import time

PANEL = (900, 600)
CARD_TWO = (337, 73)  # the second card's middle in a 900-wide grid, from the panel's corner
MIRROR_ON_SECOND = (3560, 820)
VIEWER = "1200x600+2000+100"


def cpu_ns(pid):
    """User and system time of the whole process, threads that ended included (a sum over
    /proc/<pid>/task would lose those)."""
    fields = open(f"/proc/{pid}/stat").read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) * 1e9 / os.sysconf("SC_CLK_TCK")


def xdotool(display, *args):
    subprocess.run(["xdotool", *map(str, args)], env={**os.environ, "DISPLAY": display},
                   check=True, stdout=subprocess.DEVNULL)


def wait_for(condition, timeout=15.0):
    end = time.monotonic() + timeout
    while time.monotonic() < end:
        if condition():
            return True
        time.sleep(0.05)
    return False


def xorg_pid(display):
    out = subprocess.run(["pgrep", "-f", f"Xorg {display} "], capture_output=True, text=True)
    return int(out.stdout.split()[0])


class Session:
    def __init__(self, args, home, mirror_at=None):
        self.args, self.display, self.home = args, args.display, home
        env = {**os.environ, "DISPLAY": self.display, "HOME": home,
               "XDG_CONFIG_HOME": f"{home}/config", "XDG_DATA_HOME": f"{home}/data",
               "XDG_RUNTIME_DIR": f"{home}/run", "DBUS_SESSION_BUS_ADDRESS": ""}
        os.makedirs(f"{home}/config/orlet", exist_ok=True)
        with open(f"{home}/config/orlet/orlet.ini", "w") as ini:
            ini.write("[General]\n")
            if mirror_at:
                ini.write(f"secondaryWindowPositionX={mirror_at[0]}\n"
                          f"secondaryWindowPositionY={mirror_at[1]}\n")
        self.editor_log = f"{home}/editor.log"
        self.editor = subprocess.Popen(
            [args.standin, "--class", "CaptureOne", "--instance", "captureone", "--title",
             "Capture One 23", "--geometry", "800x600+300+200", "--viewer", VIEWER,
             "--color", "4a6078"], env=env, stdout=open(self.editor_log, "w"))
        wait_for(lambda: "window 0x" in open(self.editor_log).read())
        self.orlet = subprocess.Popen([args.orlet], env=env, stdout=open(f"{home}/orlet.log", "w"),
                                      stderr=subprocess.STDOUT)
        main = open(self.editor_log).read().split()[1]
        time.sleep(1.0)
        xdotool(self.display, "windowactivate", "--sync", int(main, 16))

    def panel(self, width, height):
        out = subprocess.run(["xdotool", "search", "--pid", str(self.orlet.pid)],
                             env={**os.environ, "DISPLAY": self.display},
                             capture_output=True, text=True).stdout.split()
        for window in out:
            geo = subprocess.run(["xdotool", "getwindowgeometry", "--shell", window],
                                 env={**os.environ, "DISPLAY": self.display},
                                 capture_output=True, text=True).stdout
            values = dict(line.split("=") for line in geo.split())
            if int(values["WIDTH"]) == width and int(values["HEIGHT"]) == height:
                return int(values["X"]), int(values["Y"])
        return None

    def enlarge_second_display(self):
        assert wait_for(lambda: self.panel(40, 40)), "no floating button"
        bx, by = self.panel(40, 40)
        xdotool(self.display, "mousemove", bx + 20, by + 20, "click", "1")
        assert wait_for(lambda: self.panel(*PANEL)), "no mirror"
        time.sleep(3.0)  # the grid's cards
        mx, my = self.panel(*PANEL)
        xdotool(self.display, "mousemove", mx + CARD_TWO[0], my + CARD_TWO[1], "click", "1")
        time.sleep(2.0)
        return mx, my

    def close(self):
        for process in (self.orlet, self.editor):
            process.terminate()
            process.wait()


def measure(pids, seconds, repeats):
    """The median over `repeats` windows of `seconds`, each process on its own: a single window
    on a shared machine catches whatever else ran then."""
    runs = []
    for _ in range(repeats):
        before = [cpu_ns(p) for p in pids]
        time.sleep(seconds)
        runs.append([100.0 * (cpu_ns(p) - b) / (seconds * 1e9) for p, b in zip(pids, before)])
    return [sorted(column)[len(column) // 2] for column in zip(*runs)]


def moving_pointer(display, seconds, centre):
    """One xdotool run moving the pointer around a circle, 60 times a second; the X server's
    share of it is the same wherever the circle is."""
    import math
    steps = int(seconds * 60)
    args = []
    for i in range(steps):
        a = 2 * math.pi * i / 120
        args += ["mousemove", str(int(centre[0] + 400 * math.cos(a))),
                 str(int(centre[1] + 300 * math.sin(a))), "sleep", "0.0166"]
    return subprocess.Popen(["xdotool", *args], env={**os.environ, "DISPLAY": display})


def pointer_states(args, pids):
    """ORLET's and the X server's CPU with the pointer resting and moving, off the mirrored
    display and on it."""
    rows = []
    for name, spot in (("pointer resting off it", (1000, 900)),
                       ("pointer resting on it", (3000, 1000))):
        xdotool(args.display, "mousemove", *spot)
        time.sleep(1)
        rows.append((name, measure(pids, args.seconds, args.repeats)))
    for name, centre in (("pointer moving off it", (1400, 840)),
                         ("pointer moving on it", (3200, 720))):
        mover = moving_pointer(args.display, args.seconds * args.repeats + 2, centre)
        time.sleep(1)
        rows.append((name, measure(pids, args.seconds, args.repeats)))
        mover.wait()
    return rows


def cpu_figures(args):
    """The same states twice: first with the mirror hidden (ORLET idle: the baseline), then with
    the second display enlarged in it, nothing changing there, so that the difference is what
    the enlarged mirror's overlays cost."""
    home = tempfile.mkdtemp(prefix="orlet-interaction-")
    session = Session(args, home)
    try:
        pids = [session.orlet.pid, xorg_pid(args.display)]
        assert wait_for(lambda: session.panel(40, 40)), "no floating button"
        hidden = pointer_states(args, pids)
        session.enlarge_second_display()
        return hidden, pointer_states(args, pids)
    finally:
        session.close()


def click_latency(args):
    home = tempfile.mkdtemp(prefix="orlet-interaction-")
    session = Session(args, home, MIRROR_ON_SECOND)
    try:
        mx, my = session.enlarge_second_display()
        picture_top = my + (PANEL[1] - PANEL[0] * 1440 / 2560) / 2
        spot = (mx + PANEL[0] // 4, int(picture_top + PANEL[0] * 1440 / 2560 / 4))
        before = open(session.editor_log).read().count("release 1 ")
        out = subprocess.run([args.clicker, str(spot[0]), str(spot[1]), str(args.clicks), "100"],
                             env={**os.environ, "DISPLAY": args.display}, capture_output=True,
                             text=True, check=True).stdout.split()
        sent = [int(t) for t in out]
        wait_for(lambda: open(session.editor_log).read().count("release 1 ") >= before + len(sent),
                 5.0)
        received = [int(line.split()[5]) for line in open(session.editor_log)
                    if line.startswith("release 1 ")][before:]
        if len(received) != len(sent):
            print(f"  {len(sent)} clicks sent, {len(received)} releases received", file=sys.stderr)
        latencies = sorted((r - s) / 1000.0 for s, r in zip(sent, received))
        return latencies
    finally:
        session.close()


def percentile(values, p):
    return values[min(len(values) - 1, int(round(p / 100.0 * (len(values) - 1))))]


def main():
    parser = argparse.ArgumentParser()
    for name in ("orlet", "standin", "clicker", "xsession"):
        parser.add_argument(f"--{name}", required=True)
    parser.add_argument("--display", default=":62")
    parser.add_argument("--seconds", type=float, default=10.0)
    parser.add_argument("--repeats", type=int, default=3)
    parser.add_argument("--clicks", type=int, default=200)
    args = parser.parse_args()
    subprocess.run([args.xsession, "start", args.display], check=True)
    try:
        hidden, enlarged = cpu_figures(args)
        latencies = click_latency(args)
    finally:
        subprocess.run([args.xsession, "stop", args.display])
    print(f"CPU in % of one core, median of {args.repeats} windows of {args.seconds:.0f} s; "
          f"'added' is the enlarged mirror (2560x1440 display, nothing changing on it) minus the "
          f"same state with the mirror hidden:")
    print(f"  {'state':26} {'hidden ORLET+Xorg':>18} {'enlarged ORLET':>15} {'Xorg':>7} "
          f"{'added':>7}")
    for (name, (h_orlet, h_xorg)), (_, (orlet, xorg)) in zip(hidden, enlarged):
        print(f"  {name:26} {h_orlet + h_xorg:18.2f} {orlet:15.2f} {xorg:7.2f} "
              f"{orlet + xorg - h_orlet - h_xorg:7.2f}")
    if latencies:
        print(f"Click on the miniature -> release read by the window under it, {len(latencies)} "
              f"clicks: p50 {percentile(latencies, 50):.1f} ms, p99 {percentile(latencies, 99):.1f} ms, "
              f"max {latencies[-1]:.1f} ms (the release is replayed 10 ms after the press)")


if __name__ == "__main__":
    main()
