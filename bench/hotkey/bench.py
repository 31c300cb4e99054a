#!/usr/bin/env python3
"""Shortcut benchmark: ORLET's cost while idle and per key event of the session, and the time
from the completing key-down to the mirror's map or unmap. Runs in its own X session."""
import argparse, os, pathlib, shutil, statistics, subprocess, sys, tempfile, time


def cpu_ns(pid):
    """CPU time of every thread of the process, in nanoseconds (schedstat: exact, not ticks)."""
    total = 0
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        total += int((task / "schedstat").read_text().split()[0])
    return total


def wakeups(pid):
    total = 0
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        for line in (task / "status").read_text().splitlines():
            if line.startswith(("voluntary_ctxt_switches", "nonvoluntary_ctxt_switches")):
                total += int(line.split()[1])
    return total


def wait_until(condition, timeout=10):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        if condition():
            return True
        time.sleep(0.05)
    return False


def mirror_window(env, pid):
    """ORLET's hidden mirror window: its top level of at least 200 x 100."""
    ids = subprocess.run(["xdotool", "search", "--pid", str(pid), "--classname", "orlet"],
                         env=env, capture_output=True, text=True).stdout.split()
    for wid in ids:
        geometry = subprocess.run(["xwininfo", "-id", wid], env=env, capture_output=True,
                                  text=True).stdout
        fields = dict(l.strip().split(": ", 1) for l in geometry.splitlines() if ": " in l)
        if int(fields.get("Width", 0)) >= 200 and int(fields.get("Height", 0)) >= 100:
            return wid
    return None


def percentile(values, p):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, int(round(p / 100 * (len(ordered) - 1))))]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--orlet", required=True)
    parser.add_argument("--probe", required=True)
    parser.add_argument("--xsession", required=True)
    parser.add_argument("--display", default=":89")
    parser.add_argument("--keys", type=int, default=5000)
    parser.add_argument("--toggles", type=int, default=200)
    parser.add_argument("--idle", type=float, default=10)
    args = parser.parse_args()

    home = pathlib.Path(tempfile.mkdtemp(prefix="orlet-hotkey-bench-"))
    (home / "config" / "orlet").mkdir(parents=True)
    (home / "config" / "orlet" / "orlet.ini").write_text(
        "[General]\nhotkeyChars=K\nhotkeyModifiers=4096\n")
    env = dict(os.environ, DISPLAY=args.display, HOME=str(home),
               XDG_CONFIG_HOME=str(home / "config"), DBUS_SESSION_BUS_ADDRESS="")
    subprocess.run([args.xsession, "start", args.display], check=True)
    orlet = None
    try:
        orlet = subprocess.Popen([args.orlet], env=env, stdout=subprocess.DEVNULL,
                                 stderr=subprocess.DEVNULL)
        window = None
        if not wait_until(lambda: mirror_window(env, orlet.pid) is not None):
            sys.exit("ORLET's mirror window did not appear")
        window = mirror_window(env, orlet.pid)
        time.sleep(1)  # start-up work done

        before, woke = cpu_ns(orlet.pid), wakeups(orlet.pid)
        time.sleep(args.idle)
        idle_cpu, idle_wakeups = cpu_ns(orlet.pid) - before, wakeups(orlet.pid) - woke
        print(f"idle, {args.idle:.0f} s with the shortcut registered: "
              f"{idle_cpu / 1e3:.0f} µs CPU, {idle_wakeups} wake-ups")

        before = cpu_ns(orlet.pid)
        subprocess.run([args.probe, "keys", str(args.keys)], env=env, check=True)
        time.sleep(0.5)  # ORLET drains its queue
        events = 2 * args.keys
        per_event = (cpu_ns(orlet.pid) - before) / events / 1e3
        print(f"key events of the session: {events} (X pressed and released {args.keys} times), "
              f"{per_event:.1f} µs of ORLET's CPU per key event (goal < 50)")

        out = subprocess.run([args.probe, "toggle", str(args.toggles), window], env=env,
                             capture_output=True, text=True, check=True).stdout
        samples = [line.split() for line in out.splitlines()]

        def report(label, values, goal=""):
            print(f"{label}, {len(values)} toggles: p50 {percentile(values, 50):.2f} ms, "
                  f"p99 {percentile(values, 99):.2f} ms, max {max(values):.2f} ms{goal}")

        for kind in ("map", "unmap"):
            report(f"Ctrl+K key-down -> mirror {kind}ped",
                   [int(us) / 1e3 for k, us, _ in samples if k == kind])
        report("Ctrl+K key-down -> mirror mapped or unmapped",
               [int(us) / 1e3 for _, us, _ in samples], " (goal p99 < 15)")
        report("Ctrl+K key-down -> ORLET acts (its map request, or the unmap)",
               [int(us) / 1e3 for _, _, us in samples])

        orlet.terminate()
        orlet.wait(5)
        orlet = None
        out = subprocess.run([args.probe, "baseline", str(args.toggles)], env=env,
                             capture_output=True, text=True, check=True).stdout
        samples = [line.split() for line in out.splitlines()]
        report("for comparison, a plain window mapped by its own client",
               [int(us) / 1e3 for k, us, _ in samples if k == "map"])
    finally:
        if orlet:
            orlet.terminate()
            orlet.wait(5)
        subprocess.run([args.xsession, "stop", args.display])
        shutil.rmtree(home, ignore_errors=True)


if __name__ == "__main__":
    main()
