#!/usr/bin/env bash
# The apt repository scripts/release.sh writes, read by apt itself as a machine with the
# package's sources entry reads it: the newer version is found, and a repository whose index was
# altered after signing, or signed with another key, is refused. A throw-away OpenPGP key; apt
# runs on folders of the test's own and touches nothing of the machine's.
set -euo pipefail
release=$1
work=$(mktemp -d)
trap 'gpgconf --homedir "$work/gnupg" --kill all 2>/dev/null || true; rm -rf "$work"' EXIT
export GNUPGHOME=$work/gnupg
mkdir -m 700 "$GNUPGHOME"
fail() { echo "FAIL: $*" >&2; exit 1; }

key() { gpg --batch --passphrase '' --quick-gen-key "$1" ed25519 sign never 2>/dev/null; }
key "ORLET publisher <publisher@orlet.invalid>"
key "Someone else <else@orlet.invalid>"

deb() {  # VERSION: a stand-in orlet package
  local tree=$work/deb-$1
  mkdir -p "$tree/DEBIAN" "$tree/usr/bin"
  printf '#!/bin/sh\necho %s\n' "$1" >"$tree/usr/bin/orlet"
  chmod 755 "$tree/usr/bin/orlet"
  printf 'Package: orlet\nVersion: %s\nArchitecture: amd64\nMaintainer: ORLET <orlet@orlet.invalid>\nDescription: stand-in\n' \
    "$1" >"$tree/DEBIAN/control"
  dpkg-deb --root-owner-group --build "$tree" "$work/orlet_$1_amd64.deb" >/dev/null
}
deb 0.1.0
deb 0.2.0
"$release" apt publisher@orlet.invalid "$work/repo" "$work/orlet_0.1.0_amd64.deb" "$work/orlet_0.2.0_amd64.deb"
"$release" apt-key publisher@orlet.invalid "$work/orlet-archive-keyring.gpg"

# apt with every folder of its own, as the package's sources entry names the repository.
candidate() {
  local root=$work/apt
  rm -rf "$root"
  mkdir -p "$root/lists/partial" "$root/cache/archives/partial" "$root/etc/sources.list.d" \
    "$root/etc/preferences.d" "$root/etc/apt.conf.d"
  : >"$root/status"
  cat >"$root/etc/sources.list.d/orlet.sources" <<SOURCES
Types: deb
URIs: file:$work/repo
Suites: stable
Components: main
Signed-By: $work/orlet-archive-keyring.gpg
SOURCES
  local options=(-o Dir::Etc="$root/etc" -o Dir::Etc::sourcelist=/dev/null
    -o Dir::State::Lists="$root/lists" -o Dir::State::status="$root/status"
    -o Dir::Cache="$root/cache" -o Debug::NoLocking=1 -o APT::Architecture=amd64
    -o APT::Sandbox::User="$(id -un)")
  apt-get "${options[@]}" -q update >"$work/update.log" 2>&1 || true
  apt-cache "${options[@]}" policy orlet 2>/dev/null | sed -n 's/^ *Candidate: //p'
}

[[ $(candidate) == 0.2.0 ]] || { cat "$work/update.log"; fail "the newer version is not found"; }

# An index changed after signing: its digest no longer matches the signed Release.
cp -a "$work/repo" "$work/genuine"
sed -i 's/^Version: 0.1.0$/Version: 9.9.9/' "$work/repo/dists/stable/main/binary-amd64/Packages"
gzip -9nc "$work/repo/dists/stable/main/binary-amd64/Packages" \
  >"$work/repo/dists/stable/main/binary-amd64/Packages.gz"
[[ -z $(candidate) ]] || fail "an altered index was accepted"
grep -q "Hash Sum mismatch\|Hashes of expected file" "$work/update.log" || { cat "$work/update.log"; fail "no digest error"; }

# A repository signed by someone else.
rm -rf "$work/repo"
cp -a "$work/genuine" "$work/repo"
gpg --batch --yes --local-user else@orlet.invalid --clearsign \
  -o "$work/repo/dists/stable/InRelease" "$work/repo/dists/stable/Release"
rm "$work/repo/dists/stable/Release.gpg"
[[ -z $(candidate) ]] || fail "a repository signed with another key was accepted"
grep -q "NO_PUBKEY\|not signed\|signature" "$work/update.log" || { cat "$work/update.log"; fail "no signature error"; }
echo "apt repository: newer version found; altered index and foreign signature refused"
