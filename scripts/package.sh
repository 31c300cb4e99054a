#!/usr/bin/env bash
# Builds ORLET's packages and checks them:
#   scripts/package.sh [BUILD_DIR]
# BUILD_DIR defaults to build-package, configured as Debian builds packages (Release, the
# distribution's hardening flags). Leaves in BUILD_DIR the Debian package
# orlet_<version>_<arch>.deb and the per-user archive orlet-<version>-Linux.tar.gz, after
# running lintian, desktop-file-validate and appstreamcli on what the .deb installs.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${1:-build-package}
# The release channel, given in the environment: the update feed and its Ed25519 key, the signed
# apt repository and its keyring (see README, "Updates"). Without them the packages say that they
# have no update channel.
channel=()
for setting in ORLET_UPDATE_FEED_URL ORLET_UPDATE_PUBLIC_KEY ORLET_APT_REPOSITORY ORLET_APT_KEYRING; do
  [[ -n ${!setting:-} ]] && channel+=("-D$setting=${!setting}")
done
if [[ ! -f $build/CMakeCache.txt ]]; then
  CFLAGS=$(dpkg-buildflags --get CFLAGS) CXXFLAGS="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)" \
    LDFLAGS=$(dpkg-buildflags --get LDFLAGS) \
    cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DORLET_BUILD_TESTS=OFF -DORLET_BUILD_BENCH=OFF \
    ${channel[@]+"${channel[@]}"}
elif ((${#channel[@]})); then
  cmake -S . -B "$build" "${channel[@]}" >/dev/null
fi
cmake --build "$build" -j"$(nproc)" --target orlet orlet_docs
(cd "$build" && cpack -G "DEB;TGZ" >/dev/null)

deb=$(ls -t "$build"/orlet_*.deb | head -1)
archive=$(ls -t "$build"/orlet-*-Linux.tar.gz | head -1)
echo "== $deb"
dpkg-deb --field "$deb" Package Version Depends
echo "== lintian"
lintian --fail-on error,warning "$deb"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
dpkg-deb -x "$deb" "$tmp"
echo "== desktop-file-validate"
desktop-file-validate "$tmp"/usr/share/applications/*.desktop
echo "== appstreamcli validate"
appstreamcli validate --no-net "$tmp"/usr/share/metainfo/*.xml
echo "== $archive"
tar -tzf "$archive" | grep -E '/(bin/orlet|share/orlet/install-user.sh)$'
echo "packages: ok"
