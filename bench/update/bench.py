#!/usr/bin/env python3
"""Update check benchmark: from the click on "Mise à jour…" to the update window being mapped
(the first dialog), with the feed on a local HTTPS server.
Runs in its own X session; the machine may be shared, so the figures are wall-clock times."""
import argparse, os, shutil, statistics, subprocess, tempfile, time


def run(env, *argv):
    return subprocess.run(argv, env=env, capture_output=True, text=True).stdout


def wait_until(condition, timeout=10, step=0.002):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        value = condition()
        if value:
            return value
        time.sleep(step)
    return None


def update_window(env):
    ids = run(env, "xdotool", "search", "--onlyvisible", "--name", "Mise à jour d'ORLET").split()
    return ids[0] if ids else None


def geometry(env, wid):
    fields = dict(l.strip().split(": ", 1) for l in run(env, "xwininfo", "-id", wid).splitlines()
                  if ": " in l)
    return (int(fields["Absolute upper-left X"]), int(fields["Absolute upper-left Y"]),
            int(fields["Width"]), int(fields["Height"]))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--orlet", required=True)
    parser.add_argument("--root", required=True)
    parser.add_argument("--display", default=":88")
    parser.add_argument("--checks", type=int, default=20)
    args = parser.parse_args()
    work = tempfile.mkdtemp(prefix="orlet-update-bench-")
    env = dict(os.environ, DISPLAY=args.display, HOME=f"{work}/home",
               XDG_CONFIG_HOME=f"{work}/home/.config", ORLET_UPDATE_EXTRA_CA=f"{work}/ca.pem")
    tests = f"{args.root}/tests/linux/update"
    subprocess.run([f"{tests}/make-ca.sh", work], check=True)
    os.makedirs(f"{work}/www")
    key = run(env, f"{args.root}/scripts/release.sh", "keygen", f"{work}/key.pem").strip()
    server = subprocess.Popen(["python3", f"{tests}/https_server.py", f"{work}/www",
                               f"{work}/server.pem", f"{work}/server.key", f"{work}/port"])
    session = [f"{args.root}/scripts/xsession.sh", "start", args.display]
    subprocess.run(session, check=True)
    orlet = None
    try:
        port = wait_until(lambda: os.path.exists(f"{work}/port") and open(f"{work}/port").read())
        with open(f"{work}/www/appcast.xml", "w") as feed:
            feed.write('<rss xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">'
                       "<channel><title>ORLET</title></channel></rss>")
        os.makedirs(f"{work}/home/.config/orlet")
        with open(f"{work}/home/.config/orlet/orlet.ini", "w") as ini:
            ini.write(f"[General]\nSUFeedURL=https://127.0.0.1:{port}/appcast.xml\n"
                      f"SUPublicEDKey={key}\n")
        # Run from a per-user installation, the kind that updates itself.
        bindir = f"{work}/home/.local/lib/orlet/versions/0.1.0/bin"
        os.makedirs(bindir)
        shutil.copy(args.orlet, bindir)
        os.symlink("versions/0.1.0", f"{work}/home/.local/lib/orlet/current")
        orlet = subprocess.Popen([f"{bindir}/orlet"], env=env, stdout=subprocess.DEVNULL,
                                 stderr=subprocess.DEVNULL)
        button = wait_until(lambda: run(env, "xdotool", "search", "--onlyvisible",
                                        "--classname", "orlet").split())
        assert button, "ORLET's button never appeared"
        mapped, missed = [], 0
        for _ in range(args.checks):
            run(env, "xdotool", "mousemove", "20", "20", "click", "3")
            time.sleep(0.3)
            start = time.monotonic()
            run(env, "xdotool", "mousemove", "80", "55", "click", "1")
            wid = wait_until(lambda: update_window(env))
            if not wid:
                missed += 1
                continue
            mapped.append(time.monotonic() - start)
            time.sleep(0.5)  # the feed's answer; "OK" or "Annuler" sit at the same place
            x, y, w, h = geometry(env, wid)
            run(env, "xdotool", "mousemove", str(x + w - 50), str(y + h - 30), "click", "1")
            wait_until(lambda: not update_window(env))
        print(f"update window mapped after the menu choice, {len(mapped)} checks: "
              f"median {statistics.median(mapped) * 1000:.0f} ms, "
              f"max {max(mapped) * 1000:.0f} ms, first {mapped[0] * 1000:.0f} ms "
              f"(includes xdotool's own ~5 ms per poll); "
              f"{missed} menu choices missed")
    finally:
        if orlet:
            orlet.terminate()
            orlet.wait()
        subprocess.run([f"{args.root}/scripts/xsession.sh", "stop", args.display])
        server.terminate()
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    main()
