#!/usr/bin/env python3
"""End-to-end picture benchmark: the real ORLET binary against ffmpeg x11grab + scale.

Started by run.sh. In its own Xorg dummy session (openbox, tray, a stand-in "Capture One 23"):

1. Quality: a still test pattern (photo-like gradient, 1-pixel line textures, small text, a red
   frame) is set as the background of DUMMY1 (2560x1440). ORLET's enlarged mirror of it is read
   back from the screen and compared (ImageMagick PSNR, and SSIM where it has it) with a Lanczos
   reduction of the pattern to the same size; so is one frame of ffmpeg x11grab scaled to that
   size with its default scaler. The whole picture and the text block alone; SSIM from ffmpeg's
   ssim filter.
2. Cost: for the mirror enlarged on DUMMY1 and for the display list (both cards live), at each of
   DUMMY1's sizes (2560x1440, then 1920x1080 and 3840x2160 where the server takes them), the
   generator draws on DUMMY1 in each mode while ORLET's CPU (all threads, /proc schedstat) and the
   X server's extra over a baseline with the panel hidden are measured; painted fps come from
   ORLET's own --stats counters; peak memory from VmHWM, reset as each view opens (so each row's
   peak is that view's, from its opening on). A still screen (static) is measured once the view
   has been open some 9 s: leaving the display list lets go of the memory its tests kept 6 s
   after its last test, a one-off that is not the still screen's own cost. ffmpeg x11grab at
   30 fps scaled to the mirror's picture size is measured over the same generator as the
   reference.
3. Latency: orlet_latency_probe fills a square on DUMMY1 with a new colour, waits for the server
   to have drawn it, and reads the pixel where the enlarged mirror shows the square's centre every
   0.5 ms until it shows the new colour: change on the display to painted pixels, as the X server
   holds them (p50, p99 over 150 changes).
4. The CPU time of one full reduction (orlet_reduce_cost), which the machine's load barely moves.
"""
import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from procstat import cpu_ns  # noqa: E402

WINDOW = 5.0
STILL_WINDOW = 15.0  # a still screen costs little: a longer window for the same precision
SETTLE = 6.5  # more, with the 1.5 s every measure waits, than the 6 s shared memory is kept unused
PANEL = (900, 600)
PICTURE = (0, 47, 900, 506)  # the enlarged mirror's picture in the panel, on whole pixels
CARD = (14, 19, 197, 111)  # the first card's picture; the next one is 225 further right
TEXT = (1400, 820, 1000, 420)  # the text block of the pattern
FFMPEG_FPS = 30


def vmhwm_mb(pid):
    for line in open(f"/proc/{pid}/status"):
        if line.startswith("VmHWM"):
            return int(line.split()[1]) / 1024
    return float("nan")


def run(*argv, env=None, check=True):
    return subprocess.run(argv, env=env, check=check, capture_output=True, text=True)


class Session:
    def __init__(self, args):
        self.args = args
        self.display = args.display
        self.tmp = tempfile.mkdtemp(prefix="orlet-picture-bench-")
        home = os.path.join(self.tmp, "home")
        apps = os.path.join(home, "data", "applications")
        os.makedirs(apps)
        os.makedirs(os.path.join(home, "run"), mode=0o700)
        with open(os.path.join(apps, "bench-captureone.desktop"), "w") as f:
            f.write("[Desktop Entry]\nType=Application\nName=Capture One 23\nExec=true\n"
                    "StartupWMClass=CaptureOne\n")
        self.env = dict(os.environ, DISPLAY=self.display, HOME=home,
                        XDG_CONFIG_HOME=os.path.join(home, "config"),
                        XDG_DATA_HOME=os.path.join(home, "data"),
                        XDG_RUNTIME_DIR=os.path.join(home, "run"))
        self.env.pop("WAYLAND_DISPLAY", None)
        subprocess.run([args.xsession, "start", self.display, "--tray"], check=True)
        self.xorg = int(open(f"/tmp/orlet-xsession-{self.display[1:]}/xorg.pid").read())
        self.editor = subprocess.Popen(
            [args.standin, "--class", "CaptureOne", "--title", "Capture One 23", "--geometry",
             "700x500+1100+500"], env=self.env, stdout=subprocess.DEVNULL)
        self.log = open(os.path.join(self.tmp, "orlet.log"), "w+")
        self.orlet = subprocess.Popen([args.orlet, "--stats"], env=self.env, stdout=self.log,
                                      stderr=self.log)
        self.button = self.wait_for_window(40, 40)
        self.size = (2560, 1440)

    def close(self):
        for proc in (self.orlet, self.editor):
            proc.terminate()
            try:
                proc.wait(timeout=5)
            except subprocess.TimeoutExpired:
                proc.kill()
        subprocess.run([self.args.xsession, "stop", self.display], check=False)

    def windows(self):
        out = run("xdotool", "search", "--pid", str(self.orlet.pid), env=self.env,
                  check=False).stdout
        for window in out.split():
            geometry = run("xdotool", "getwindowgeometry", "--shell", window, env=self.env,
                           check=False).stdout
            values = dict(line.split("=", 1) for line in geometry.split() if "=" in line)
            if values:
                yield {k: int(values[k]) for k in ("X", "Y", "WIDTH", "HEIGHT")}

    def wait_for_window(self, width, height, timeout=15):
        end = time.monotonic() + timeout
        while time.monotonic() < end:
            for w in self.windows():
                if (w["WIDTH"], w["HEIGHT"]) == (width, height) and w["X"] >= 0:
                    return w
            time.sleep(0.2)
        raise RuntimeError(f"no ORLET window of {width}x{height} appeared")

    def click(self, x, y):
        run("xdotool", "mousemove", str(x), str(y), "click", "1", env=self.env)
        time.sleep(0.5)
        run("xdotool", "mousemove", "900", "1070", env=self.env)  # off the panel and cards

    def toggle_panel(self):
        run("xdotool", "search", "--class", "CaptureOne", "windowactivate", env=self.env,
            check=False)
        time.sleep(0.3)
        self.click(self.button["X"] + 20, self.button["Y"] + 20)

    def show_list(self):
        self.toggle_panel()
        self.panel = self.wait_for_window(*PANEL)
        time.sleep(1.0)

    def enlarge_second(self):
        x, y, w, h = CARD
        self.click(self.panel["X"] + x + 225 + w // 2, self.panel["Y"] + y + h // 2)
        time.sleep(1.5)

    def back(self):
        self.click(self.panel["X"] + 8 + 11, self.panel["Y"] + 8 + 11)
        time.sleep(1.0)

    def use_size(self, size):
        """Gives DUMMY1 `size` ("WxH") beside the main display, the panel hidden; False where the
        server refuses that mode."""
        mode = {"2560x1440": "2560x1440_60", "3840x2160": "3840x2160_60"}.get(size, size)
        # A mode only the main display lists yet (1920x1080) is lent to DUMMY1 first.
        subprocess.run(["xrandr", "--addmode", "DUMMY1", mode], env=self.env, capture_output=True)
        done = subprocess.run(["xrandr", "--output", "DUMMY1", "--mode", mode, "--pos", "1920x0"],
                              env=self.env, capture_output=True)
        if done.returncode != 0:
            return False
        self.size = tuple(int(v) for v in size.split("x"))
        time.sleep(1.0)
        return True

    def reset_peak(self):
        """Starts ORLET's VmHWM afresh from its current resident size."""
        with open(f"/proc/{self.orlet.pid}/clear_refs", "w") as f:
            f.write("5")

    def counters(self):
        self.log.flush()
        lines = re.findall(r"orlet stats: captured (\d+) unchanged (\d+) painted (\d+) "
                           r"paint_ms ([\d.]+)", open(self.log.name).read())
        c = lines[-1] if lines else (0, 0, 0, 0)
        return {"captured": int(c[0]), "painted": int(c[2]), "paint_ms": float(c[3])}

    def screenshot(self, name):
        path = os.path.join(self.tmp, name)
        run("import", "-window", "root", path, env=self.env)
        return path


def make_pattern(tmp):
    """2560x1440: a photo-like gradient, blocks of 1-pixel lines, 11-point text, a red frame."""
    path = os.path.join(tmp, "pattern.png")
    lines_v = "pattern:gray50"  # 1-pixel checker: the finest texture there is
    draw = []
    for i in range(0, 600, 2):  # 1-pixel vertical and horizontal lines
        draw += ["-draw", f"line {200 + i},150 {200 + i},650"]
        draw += ["-draw", f"line 900,{150 + i // 2 * 2} 1500,{150 + i // 2 * 2}"]
    text = ("Le client regarde l'écran pendant que l'opérateur retouche l'image. "
            "0123456789 ABCDEFGHIJKLM nopqrstuvwxyz")
    annotate = []
    for row in range(18):
        annotate += ["-annotate", f"+{TEXT[0] + 10}+{TEXT[1] + 22 + row * 22}",
                     text[(row * 7) % 40:][:90]]
    run("convert", "-size", "2560x1440", "gradient:#1e3c72-#f7b267",
        "(", "-size", "2560x1440", "radial-gradient:#ffffff80-#00000000", ")",
        "-compose", "over", "-composite",
        "-fill", "black", "-stroke", "black", *draw, "-stroke", "none",
        "(", "-size", "500x500", lines_v, ")", "-geometry", "+1700+150", "-compose", "over",
        "-composite",
        "-fill", "white", "-draw",
        f"rectangle {TEXT[0]},{TEXT[1]} {TEXT[0] + TEXT[2] - 1},{TEXT[1] + TEXT[3] - 1}",
        "-fill", "black", "-font", "DejaVu-Sans", "-pointsize", "15", *annotate,
        "-fill", "none", "-stroke", "red", "-strokewidth", "8",
        "-draw", "rectangle 4,4 2555,1435", "-depth", "8", path)
    return path


def show_pattern(session, pattern):
    full = os.path.join(session.tmp, "root.png")
    run("convert", "-size", "4480x1440", "xc:black", pattern, "-geometry", "+1920+0",
        "-composite", "-depth", "8", full)
    # display exits with 1 once it has set the background.
    run("display", "-window", "root", full, env=session.env, check=False)
    time.sleep(1.5)


def metric(kind, a, b, crop=None):
    extra = ["-crop", crop, "+repage"] if crop else []
    out = subprocess.run(["compare", "-metric", kind, "(", a, *extra, ")", "(", b, *extra, ")",
                          "null:"], capture_output=True, text=True).stderr.strip()
    try:
        return float(out.split()[0])
    except (ValueError, IndexError):
        return float("nan")


def ssim(a, b):
    out = subprocess.run(["ffmpeg", "-hide_banner", "-i", a, "-i", b, "-lavfi", "ssim", "-f",
                          "null", "-"], capture_output=True, text=True).stderr
    found = re.search(r"SSIM .*All:([\d.]+)", out)
    return float(found.group(1)) if found else float("nan")


def quality(session, pattern):
    show_pattern(session, pattern)
    session.show_list()
    session.enlarge_second()
    shot = session.screenshot("mirror.png")
    x, y, w, h = PICTURE
    mirror = os.path.join(session.tmp, "mirror-picture.png")
    run("convert", shot, "-crop", f"{w}x{h}+{session.panel['X'] + x}+{session.panel['Y'] + y}",
        "+repage", mirror)
    shutil.copy(shot, os.path.join(os.getcwd(), "orlet-picture-bench-mirror.png"))
    reference = os.path.join(session.tmp, "reference.png")
    run("convert", pattern, "-filter", "Lanczos", "-resize", f"{w}x{h}!", reference)
    ff = os.path.join(session.tmp, "ffmpeg.png")
    run("ffmpeg", "-hide_banner", "-loglevel", "error", "-y", "-f", "x11grab", "-draw_mouse", "0",
        "-video_size", "2560x1440", "-i", f"{session.display}+1920,0", "-frames:v", "1",
        "-vf", f"scale={w}:{h}", ff, env=session.env)
    sx, sy = w / 2560, h / 1440
    text = (f"{int(TEXT[2] * sx)}x{int(TEXT[3] * sy)}+{int(TEXT[0] * sx) + 1}+"
            f"{int(TEXT[1] * sy) + 1}")
    rows = []
    for name, image in (("ORLET mirror", mirror), ("ffmpeg x11grab + scale", ff)):
        rows.append((name, metric("PSNR", image, reference), metric("PSNR", image, reference, text),
                     ssim(image, reference)))
    print(f"\nPicture quality against a Lanczos reduction of the pattern to {w}x{h}:")
    print("| picture | PSNR whole dB | PSNR text dB | SSIM whole |")
    print("|---|---|---|---|")
    for name, whole, txt, ssim_whole in rows:
        print(f"| {name} | {whole:.1f} | {txt:.1f} | {ssim_whole:.4f} |")
    session.back()
    session.toggle_panel()  # hidden again
    run("display", "-window", "root", "xc:black", env=session.env, check=False)


def latency(session):
    """Change on DUMMY1 to its pixels in the enlarged mirror, as the screen holds them."""
    square, size = (1920 + 1130, 570), 300
    x, y, w, h = PICTURE
    sx, sy = w / 2560, h / 1440
    mirror = (session.panel["X"] + x + int((square[0] - 1920 + size / 2) * sx),
              session.panel["Y"] + y + int((square[1] + size / 2) * sy))
    out = run(session.args.probe, session.display, str(square[0]), str(square[1]), str(size),
              str(mirror[0]), str(mirror[1]), "150", env=session.env).stdout
    found = re.search(r"p50 ([\d.-]+) p99 ([\d.-]+) lost (\d+)", out)
    return tuple(float(v) for v in found.groups()) if found else (float("nan"),) * 3


def measure(session, mode, reader=None):
    w, h = session.size
    settle = SETTLE if mode == "static" else 0.0
    window = STILL_WINDOW if mode == "static" else WINDOW
    gen = subprocess.Popen([session.args.generator, session.display, "1920", "0", str(w), str(h),
                            mode, str(window + 3 + settle), os.path.join(session.tmp, "gen.log")])
    time.sleep(0.5 + settle)
    proc = reader() if reader else None
    time.sleep(1.0)
    pid = proc.pid if proc else session.orlet.pid
    cpu0, x0, c0 = cpu_ns(pid), cpu_ns(session.xorg), session.counters()
    t0 = time.monotonic()
    time.sleep(window)
    cpu1, x1, c1 = cpu_ns(pid), cpu_ns(session.xorg), session.counters()
    elapsed = time.monotonic() - t0
    result = {"cpu": (cpu1 - cpu0) / 1e9 / elapsed, "xorg": (x1 - x0) / 1e9 / elapsed,
              "painted": (c1["painted"] - c0["painted"]) / elapsed,
              "captured": (c1["captured"] - c0["captured"]) / elapsed,
              "paint_ms": (c1["paint_ms"] - c0["paint_ms"]) / max(1, c1["painted"] - c0["painted"]),
              "vmhwm": vmhwm_mb(pid)}
    if proc:
        proc.terminate()
        proc.wait()
    gen.wait()
    return result


def ffmpeg(session):
    x, y, w, h = PICTURE
    size = "%dx%d" % session.size
    return lambda: subprocess.Popen(
        ["ffmpeg", "-hide_banner", "-loglevel", "error", "-nostats", "-f", "x11grab", "-draw_mouse",
         "0", "-framerate", str(FFMPEG_FPS), "-video_size", size, "-i",
         f"{session.display}+1920,0", "-vf", f"scale={w}:{h}", "-f", "null", "-"],
        env=session.env, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def cost(session, modes, sizes):
    rows = []
    for size in sizes:
        if not session.use_size(size):
            print(f"\nDUMMY1 cannot be {size} on this server: skipped", flush=True)
            continue
        print(f"\nDUMMY1 at {size}:", flush=True)
        if size == "2560x1440":  # the probe's square is placed for this size
            session.show_list()
            session.enlarge_second()
            p50, p99, lost = latency(session)
            print(f"Change on DUMMY1 to painted pixels in the enlarged mirror: p50 {p50:.1f} ms, "
                  f"p99 {p99:.1f} ms ({lost:.0f} of 150 changes not seen within 1 s)", flush=True)
            session.back()
            session.toggle_panel()
        rows += cost_at(session, size, modes)
    print("\n| size | mode | view | ORLET+X % core | ffmpeg+X % core | ratio | painted fps "
          "| captured fps | paint ms/frame | ORLET VmHWM MB |")
    print("|---|---|---|---|---|---|---|---|---|---|")
    for size, mode, view, r, share, ref_share in rows:
        ratio = share / ref_share if ref_share > 0 else float("nan")
        print(f"| {size} | {mode} | {view} | {share * 100:.2f} | {ref_share * 100:.2f} "
              f"| {ratio:.3f} | {r['painted']:.1f} | {r['captured']:.1f} | {r['paint_ms']:.2f} "
              f"| {r['vmhwm']:.0f} |")


def cost_at(session, size, modes):
    rows = []
    for mode in modes:
        base = measure(session, mode)  # the panel hidden: ORLET captures nothing
        ref = measure(session, mode, ffmpeg(session))
        session.reset_peak()
        session.show_list()
        grid = measure(session, mode)
        session.reset_peak()
        session.enlarge_second()
        mirror = measure(session, mode)
        session.back()
        session.toggle_panel()
        ref_share = ref["cpu"] + max(0.0, ref["xorg"] - base["xorg"])
        for view, r in (("enlarged", mirror), ("list, 2 cards", grid)):
            share = r["cpu"] + max(0.0, r["xorg"] - base["xorg"])
            rows.append((size, mode, view, r, share, ref_share))
            print(f"  {mode} {view}: ORLET+X {share * 100:.2f} % of a core, painted "
                  f"{r['painted']:.1f}/s, captured {r['captured']:.1f}/s; ffmpeg+X "
                  f"{ref_share * 100:.2f} %", flush=True)
    return rows


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--display", default=":66")
    parser.add_argument("--orlet", required=True)
    parser.add_argument("--standin", required=True)
    parser.add_argument("--generator", required=True)
    parser.add_argument("--xsession", required=True)
    parser.add_argument("--probe", required=True)
    parser.add_argument("--reduce-cost", required=True)
    parser.add_argument("--modes", default="full,box,typing,static")
    parser.add_argument("--sizes", default="2560x1440,1920x1080,3840x2160")
    parser.add_argument("--skip-quality", action="store_true")
    args = parser.parse_args()
    session = Session(args)
    try:
        if not args.skip_quality:
            quality(session, make_pattern(session.tmp))
        print(f"\nCost on DUMMY1, {WINDOW:.0f} s windows ({STILL_WINDOW:.0f} s for static); ffmpeg at {FFMPEG_FPS} fps scaled to "
              f"{PICTURE[2]}x{PICTURE[3]}; X extra over the panel hidden:")
        cost(session, args.modes.split(","), args.sizes.split(","))
    finally:
        session.close()
    print("\nCPU time of one full change reduced (capture thread's work, load-independent):")
    print(run(args.reduce_cost, "20").stdout, end="")


if __name__ == "__main__":
    main()
