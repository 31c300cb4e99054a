#!/usr/bin/env python3
"""Capture benchmark: ORLET's X11 capture path against ffmpeg x11grab and GStreamer ximagesrc.

Started by run.sh. Draws on DUMMY1 of its own Xorg dummy session with orlet_capture_generator and
measures, over the same window, every capture path reading that display's rectangle at 30 fps.
CPU is read from /proc/<pid>/task/*/schedstat (nanoseconds), memory from VmHWM, wake-ups from
voluntary context switches; the X server's CPU counts as the extra over a generator-only run.
"""
import argparse
import glob
import os
import subprocess
import sys
import tempfile
import threading
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from procstat import cpu_ns  # noqa: E402

FPS = 30
WARMUP = 1.0
WINDOW = 3.5
RESOLUTIONS = [(1920, 1080, "1920x1080"), (2560, 1440, "2560x1440_60"), (3840, 2160, "3840x2160_60")]
MODES = ["full", "box", "typing", "static"]


def wakeups(pid):
    total = 0
    for path in glob.glob(f"/proc/{pid}/task/*/status"):
        try:
            for line in open(path):
                if line.startswith("voluntary_ctxt_switches"):
                    total += int(line.split()[1])
        except OSError:
            pass
    return total


def vmhwm_mb(pid):
    try:
        for line in open(f"/proc/{pid}/status"):
            if line.startswith("VmHWM"):
                return int(line.split()[1]) / 1024
    except OSError:
        pass
    return float("nan")


def shared_buffers_mb(pid):
    """Shared-memory segments mapped by a process: frames the X server writes into directly,
    which VmHWM counts only once the process itself touches them."""
    total = 0
    try:
        for line in open(f"/proc/{pid}/maps"):
            if "memfd:" in line or "SYSV" in line:
                start, end = line.split()[0].split("-")
                total += int(end, 16) - int(start, 16)
    except OSError:
        pass
    return total / 2**20


def percentile(values, p):
    if not values:
        return float("nan")
    values = sorted(values)
    return values[min(len(values) - 1, int(p / 100 * len(values)))]


class LineTimes:
    """Collects (time, line) of a process's output on a thread."""

    def __init__(self, stream, keep):
        self.events = []
        self.thread = threading.Thread(target=self._read, args=(stream, keep), daemon=True)
        self.thread.start()

    def _read(self, stream, keep):
        for line in stream:
            if keep(line):
                self.events.append((time.monotonic_ns(), line))


class Session:
    def __init__(self, args):
        self.args = args
        self.display = args.display
        self.env = dict(os.environ, DISPLAY=self.display)
        self.tmp = tempfile.mkdtemp(prefix="orlet-bench-")
        subprocess.run([args.xsession, "start", self.display, "--no-wm"], check=True)
        self.xorg = int(open(f"/tmp/orlet-xsession-{self.display[1:]}/xorg.pid").read())

    def close(self):
        subprocess.run([self.args.xsession, "stop", self.display], check=False)

    def xrandr(self, *argv):
        subprocess.run(["xrandr", *argv], env=self.env, check=True)

    def set_resolution(self, width, height, mode):
        if mode == "1920x1080":
            subprocess.run(["xrandr", "--addmode", "DUMMY1", "1920x1080"], env=self.env,
                           stderr=subprocess.DEVNULL)
        self.xrandr("--fb", f"{1920 + width}x{max(1080, height)}", "--output", "DUMMY0",
                    "--mode", "1920x1080", "--pos", "0x0", "--primary", "--output", "DUMMY1",
                    "--mode", mode, "--pos", "1920x0")

    def generator(self, width, height, mode, log):
        seconds = WARMUP + WINDOW + 2.5
        return subprocess.Popen([self.args.generator, self.display, "1920", "0", str(width),
                                 str(height), mode, str(seconds), log])

    def measure(self, width, height, mode, reader):
        """Runs the generator and optionally a reader; returns the window's figures."""
        gen_log = os.path.join(self.tmp, "gen.log")
        gen = self.generator(width, height, mode, gen_log)
        time.sleep(0.3)  # the generator's window is up and drawing
        proc, counter = reader() if reader else (None, None)
        time.sleep(WARMUP)
        watched = [self.xorg] + ([proc.pid] if proc else [])
        t0 = time.monotonic_ns()
        cpu0 = {pid: cpu_ns(pid) for pid in watched}
        wake0 = wakeups(proc.pid) if proc else 0
        time.sleep(WINDOW)
        t1 = time.monotonic_ns()
        cpu1 = {pid: cpu_ns(pid) for pid in watched}
        result = {"t0": t0, "t1": t1, "xorg_cpu": (cpu1[self.xorg] - cpu0[self.xorg]) / 1e9}
        if proc:
            result["cpu"] = (cpu1[proc.pid] - cpu0[proc.pid]) / 1e9
            result["wakeups"] = (wakeups(proc.pid) - wake0) / WINDOW
            result["vmhwm"] = vmhwm_mb(proc.pid)
            result["buffers"] = shared_buffers_mb(proc.pid)
            proc.terminate()
            try:
                proc.wait(timeout=5)
            except subprocess.TimeoutExpired:
                proc.kill()
                proc.wait()
            result["frames"] = counter(t0, t1)
        gen.wait()
        drawn = [tuple(map(int, line.split())) for line in open(gen_log)]
        result["gen_fps"] = sum(1 for _, t in drawn if t0 <= t < t1) / WINDOW
        result["drawn"] = dict(drawn)
        return result

    def orlet(self):
        log = os.path.join(self.tmp, "driver.log")

        def start():
            proc = subprocess.Popen([self.args.driver, self.display, "1920", "0", str(FPS), log],
                                    stdout=subprocess.PIPE, text=True)
            proc.stdout.readline()  # "ready": the stream is started

            def frames(t0, t1):
                published = [tuple(map(int, line.split())) for line in open(log)]
                first = {}
                for number, t in published:
                    first.setdefault(number, t)
                self.last_published = [(n, t) for n, t in first.items() if t0 <= t < t1]
                return len(self.last_published)
            return proc, frames
        return start

    def ffmpeg(self, width, height):
        def start():
            proc = subprocess.Popen(
                ["ffmpeg", "-hide_banner", "-loglevel", "error", "-nostats", "-progress", "pipe:1",
                 "-stats_period", "0.1", "-f", "x11grab", "-draw_mouse", "0", "-framerate",
                 str(FPS), "-video_size", f"{width}x{height}", "-i", f"{self.display}+1920,0",
                 "-f", "null", "-"], stdout=subprocess.PIPE, stdin=subprocess.DEVNULL, text=True)
            lines = LineTimes(proc.stdout, lambda line: line.startswith("frame="))

            def frames(t0, t1):
                def at(t):
                    seen = [int(l.split("=")[1]) for ts, l in lines.events if ts <= t]
                    return seen[-1] if seen else 0
                return at(t1) - at(t0)
            return proc, frames
        return start

    def gst(self, width, height, damage):
        def start():
            proc = subprocess.Popen(
                ["gst-launch-1.0", "-v", "ximagesrc", f"display-name={self.display}",
                 "startx=1920", "starty=0", f"endx={1920 + width - 1}", f"endy={height - 1}",
                 f"use-damage={'true' if damage else 'false'}", "show-pointer=false", "!",
                 f"video/x-raw,framerate={FPS}/1", "!", "fakesink", "silent=false", "sync=false"],
                stdout=subprocess.PIPE, text=True)
            lines = LineTimes(proc.stdout, lambda line: "last-message = chain" in line)

            def frames(t0, t1):
                return sum(1 for ts, _ in lines.events if t0 <= ts < t1)
            return proc, frames
        return start


def per_frame_ms(run, baseline):
    extra_x = max(0.0, run["xorg_cpu"] - baseline["xorg_cpu"])
    if not run["frames"]:
        return float("nan")
    return (run["cpu"] + extra_x) / run["frames"] * 1000


def own_ms(run):
    return run["cpu"] / run["frames"] * 1000 if run["frames"] else float("nan")


def share_percent(run, baseline):
    return (run["cpu"] + max(0.0, run["xorg_cpu"] - baseline["xorg_cpu"])) / WINDOW * 100


def latencies(session, run):
    drawn = run["drawn"]
    return [(t - drawn[n]) / 1e6 for n, t in session.last_published if n in drawn]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--display", default=":64")
    parser.add_argument("--bin", required=True)
    parser.add_argument("--xsession", required=True)
    parser.add_argument("--resolutions", default="1920x1080,2560x1440,3840x2160")
    parser.add_argument("--modes", default=",".join(MODES))
    args = parser.parse_args()
    args.generator = os.path.join(args.bin, "orlet_capture_generator")
    args.driver = os.path.join(args.bin, "orlet_capture_driver")
    wanted = args.resolutions.split(",")

    session = Session(args)
    rows = []
    try:
        memcpy = subprocess.run([args.driver, "--memcpy"], capture_output=True, text=True).stdout
        rtt = subprocess.run([args.driver, "--roundtrip", args.display], capture_output=True,
                             text=True).stdout
        print(f"machine: {os.cpu_count()} cores, memcpy {memcpy.strip()} GB/s, "
              f"X round trip {rtt.strip()} us; window {WINDOW:.1f} s at {FPS} fps requested")
        for width, height, mode_name in RESOLUTIONS:
            if f"{width}x{height}" not in wanted:
                continue
            try:
                session.set_resolution(width, height, mode_name)
            except subprocess.CalledProcessError:
                print(f"{width}x{height}: the dummy server refused this mode; skipped")
                continue
            for mode in args.modes.split(","):
                # The X server's own load drifts with the machine's: its baseline is the mean of
                # a generator-only run before and one after the readers' runs.
                before = session.measure(width, height, mode, None)
                orlet = session.measure(width, height, mode, session.orlet())
                lat = latencies(session, orlet)
                ff = session.measure(width, height, mode, session.ffmpeg(width, height))
                gd = session.measure(width, height, mode, session.gst(width, height, True))
                gn = session.measure(width, height, mode, session.gst(width, height, False))
                after = session.measure(width, height, mode, None)
                base = dict(before, xorg_cpu=(before["xorg_cpu"] + after["xorg_cpu"]) / 2)
                rows.append((f"{width}x{height}", mode, base, orlet, lat, ff, gd, gn))
                report_row(rows[-1], sys.stdout)
    finally:
        session.close()
    print()
    print_table(rows)


def report_row(row, out):
    res, mode, base, orlet, lat, ff, gd, gn = row
    frames = max(1, orlet["frames"])
    print(f"  {res} {mode}: ORLET {orlet['frames'] / WINDOW:.1f} fps, own CPU "
          f"{orlet['cpu'] / frames * 1000:.3f} ms/frame + X server extra "
          f"{max(0.0, orlet['xorg_cpu'] - base['xorg_cpu']) / frames * 1000:.3f} ms/frame "
          f"(X alone {base['xorg_cpu'] / WINDOW * 100:.1f} % of a core, with ORLET "
          f"{orlet['xorg_cpu'] / WINDOW * 100:.1f} %); capture buffers {orlet['buffers']:.0f} MB; "
          f"ffmpeg {ff['frames'] / WINDOW:.1f} fps, gst {gd['frames'] / WINDOW:.1f} / "
          f"{gn['frames'] / WINDOW:.1f} fps", file=out, flush=True)


def print_table(rows):
    def f(value, digits=2):
        return "n/a" if value != value else f"{value:.{digits}f}"

    print("| display | mode | generator fps | ORLET fps | ORLET CPU ms/frame | ffmpeg ms/frame "
          "| gst damage ms/frame | gst no-damage ms/frame | ORLET/ffmpeg | ORLET/gst-d "
          "| ORLET/gst-nd | own CPU ms/frame ORLET/ffmpeg | latency p50/p95/p99 ms | VmHWM MB ORLET/ffmpeg/gst-d/gst-nd "
          "| CPU % core ORLET+X / ffmpeg+X / gst-d+X | ORLET wake-ups/s |")
    print("|" + "---|" * 16)
    for res, mode, base, orlet, lat, ff, gd, gn in rows:
        o, fm, d, n = (per_frame_ms(r, base) for r in (orlet, ff, gd, gn))
        print(f"| {res} | {mode} | {base['gen_fps']:.1f} / {orlet['gen_fps']:.1f} "
              f"| {orlet['frames'] / WINDOW:.1f} | {f(o, 3)} | {f(fm, 3)} | {f(d, 3)} | {f(n, 3)} "
              f"| {f(o / fm if fm else float('nan'), 3)} | {f(o / d if d else float('nan'), 3)} "
              f"| {f(o / n if n else float('nan'), 3)} "
              f"| {f(own_ms(orlet), 3)}/{f(own_ms(ff), 3)} "
              f"| {f(percentile(lat, 50))}/{f(percentile(lat, 95))}/{f(percentile(lat, 99))} "
              f"| {orlet['vmhwm']:.0f}/{ff['vmhwm']:.0f}/{gd['vmhwm']:.0f}/{gn['vmhwm']:.0f} "
              f"| {share_percent(orlet, base):.3f} / {share_percent(ff, base):.2f} / "
              f"{share_percent(gd, base):.2f} | {orlet['wakeups']:.1f} |")


if __name__ == "__main__":
    main()
