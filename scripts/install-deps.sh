#!/usr/bin/env bash
# Installs what ORLET needs to build, test and benchmark on Debian 12, skipping what is present.
#   scripts/install-deps.sh            # build + run + tests
#   scripts/install-deps.sh --bench    # also the reference capture tools for the benchmark
#   scripts/install-deps.sh --wm-matrix  # also the window managers of scripts/wm-matrix.sh
set -euo pipefail

packages=(
  # toolchain
  g++ cmake make pkg-config clang-format
  # Qt 6: widgets, tray, settings; SVG for the bundled icons; the X11 platform plugin
  qt6-base-dev qt6-svg-dev qt6-qpa-plugins
  # XCB and its extensions: window list and stacking (EWMH/ICCCM), capture (RandR, SHM, DAMAGE),
  # cursor (XFIXES), synthetic input (XTEST, XInput2), round button (SHAPE), keyboard (xkbcommon)
  libxcb1-dev libxcb-randr0-dev libxcb-shm0-dev libxcb-damage0-dev libxcb-xfixes0-dev
  libxcb-xtest0-dev libxcb-xinput-dev libxcb-ewmh-dev libxcb-icccm4-dev libxcb-image0-dev
  libxcb-util-dev libxcb-shape0-dev libxcb-keysyms1-dev libxkbcommon-dev libxkbcommon-x11-dev libxcb-xkb-dev
  # Wayland: the client library and the protocols' descriptions, bound at build time
  libwayland-dev wayland-protocols
  # updates: the feed's XML, the archives' Ed25519 signatures
  libexpat1-dev libsodium-dev
  # tests; the updater's tests serve HTTPS with a certificate authority of their own (python3,
  # openssl); XRes, to read what ORLET holds on the X server in the reliability tests
  libgtest-dev libgmock-dev python3 openssl libxcb-res0-dev
  # fuzzing: clang with libFuzzer
  clang libclang-rt-14-dev
  # packages: dependencies of the .deb (dpkg-shlibdeps), and their checks; the signed apt
  # repository of a release (apt-ftparchive, gpg)
  dpkg-dev lintian desktop-file-utils appstream apt-utils gpg
  # the virtual X session: Xorg with the dummy driver, xrandr, a window manager, a tray host,
  # tools the integration tests drive it with, and fonts and icons for what is drawn
  xserver-xorg-core libgl1-mesa-dri xserver-xorg-video-dummy x11-xserver-utils x11-utils x11-apps openbox trayer
  xdotool imagemagick fonts-dejavu-core adwaita-icon-theme
  # the Wayland session of the tests: headless sway
  sway
)
if [[ ${1:-} == --bench ]]; then
  packages+=(ffmpeg gstreamer1.0-tools gstreamer1.0-plugins-base gstreamer1.0-plugins-good)
fi
if [[ ${1:-} == --wm-matrix ]]; then
  # the desktops' window managers in their X11 modes; dbus-run-session comes with dbus
  packages+=(xfwm4 metacity kwin-x11 mutter dbus)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if ((${#missing[@]} == 0)); then exit 0; fi

echo "Installing: ${missing[*]}"
sudo=""
if [[ $(id -u) -ne 0 ]]; then sudo=sudo; fi
$sudo apt-get update -q
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
