#!/usr/bin/env bash
# Signs ORLET's releases for its updater.
#
#   scripts/release.sh keygen KEY.pem
#       makes the publisher's Ed25519 key pair (keep KEY.pem secret) and prints the public key,
#       for -DORLET_UPDATE_PUBLIC_KEY=....
#   scripts/release.sh appcast KEY.pem BASE_URL [--notes NOTES.html] [--min-system V] ARCHIVE...
#       writes on standard output the whole feed (for -DORLET_UPDATE_FEED_URL=...):
#       one signed item per archive (the per-user .tar.gz and the .deb), each to be served at
#       BASE_URL/<file name>. The version is read from the file name (orlet-1.2.0-Linux.tar.gz,
#       orlet_1.2.0_amd64.deb) unless VERSION is set.
#   scripts/release.sh apt GPG_KEY REPOSITORY DEB...
#       adds the Debian packages to the apt repository in the folder REPOSITORY (made if need be;
#       served as is at the address given to -DORLET_APT_REPOSITORY=...): pool/main/, the
#       package index of suite "stable", component "main", and its Release file signed with the
#       publisher's OpenPGP key GPG_KEY (gpg's key id or address) as InRelease and Release.gpg.
#   scripts/release.sh apt-key GPG_KEY KEYRING
#       writes the key's public part as a binary keyring, for -DORLET_APT_KEYRING=KEYRING.
#
# A release is then: cmake --build <build> --target package, and
#   scripts/release.sh appcast KEY.pem https://example.org/orlet <build>/orlet*.{tar.gz,deb}
#   scripts/release.sh apt GPG_KEY <served folder>/apt <build>/orlet_*.deb
set -euo pipefail

die() { echo "release.sh: $*" >&2; exit 2; }

public_key() { openssl pkey -in "$1" -pubout -outform DER | tail -c 32 | base64 -w0; }

keygen() {
  [[ -e $1 ]] && die "$1 exists; not overwriting a key"
  (umask 077 && openssl genpkey -algorithm ed25519 -out "$1")
  public_key "$1"
  echo
}

version_of() {
  if [[ -n ${VERSION:-} ]]; then echo "$VERSION"; return; fi
  local name
  name=$(basename "$1")
  [[ $name =~ ^orlet[-_]([0-9][A-Za-z0-9.+~-]*)(-Linux\.tar\.gz|_[a-z0-9]+\.deb)$ ]] ||
    die "cannot read a version in $name (set VERSION)"
  echo "${BASH_REMATCH[1]}"
}

type_of() {
  case $1 in
    *.deb) echo application/vnd.debian.binary-package ;;
    *.tar.gz) echo application/gzip ;;
    *) die "unknown archive kind: $1" ;;
  esac
}

xml_escape() { sed -e 's/&/\&amp;/g' -e 's/</\&lt;/g' -e 's/>/\&gt;/g' -e 's/"/\&quot;/g'; }

item() {  # KEY BASE_URL NOTES MIN_SYSTEM ARCHIVE
  local key=$1 base=$2 notes=$3 min=$4 archive=$5 version signature
  version=$(version_of "$archive")
  signature=$(openssl pkeyutl -sign -rawin -inkey "$key" -in "$archive" | base64 -w0)
  echo "    <item>"
  echo "      <title>ORLET $version</title>"
  echo "      <sparkle:version>$version</sparkle:version>"
  echo "      <sparkle:shortVersionString>$version</sparkle:shortVersionString>"
  [[ -n $min ]] && echo "      <sparkle:minimumSystemVersion>$min</sparkle:minimumSystemVersion>"
  [[ -n $notes ]] && echo "      <description><![CDATA[$(cat "$notes")]]></description>"
  echo "      <pubDate>$(date -R)</pubDate>"
  echo "      <enclosure url=\"$(printf '%s/%s' "${base%/}" "$(basename "$archive")" | xml_escape)\""
  echo "                 length=\"$(stat -c %s "$archive")\" type=\"$(type_of "$archive")\""
  echo "                 sparkle:edSignature=\"$signature\"/>"
  echo "    </item>"
}

appcast() {
  local key=$1 base=$2 notes="" min=""
  shift 2
  while [[ ${1:-} == --* ]]; do
    case $1 in
      --notes) notes=$2 ;;
      --min-system) min=$2 ;;
      *) die "unknown option $1" ;;
    esac
    shift 2
  done
  (($# > 0)) || die "no archive to sign"
  echo '<?xml version="1.0" encoding="utf-8"?>'
  echo '<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">'
  echo '  <channel>'
  echo '    <title>ORLET</title>'
  for archive in "$@"; do item "$key" "$base" "$notes" "$min" "$archive"; done
  echo '  </channel>'
  echo '</rss>'
}

# apt checks the signature of Release and, through it, every index and package it lists.
apt_repository() {
  local key=$1 repo=$2 arch
  shift 2
  (($# > 0)) || die "no package to publish"
  mkdir -p "$repo/pool/main"
  cp "$@" "$repo/pool/main/"
  local archs=()
  for deb in "$repo"/pool/main/*.deb; do archs+=("$(dpkg-deb -f "$deb" Architecture)"); done
  mapfile -t archs < <(printf '%s\n' "${archs[@]}" | sort -u)
  for arch in "${archs[@]}"; do
    local index=dists/stable/main/binary-$arch
    mkdir -p "$repo/$index"
    (cd "$repo" && apt-ftparchive --arch "$arch" packages pool/main >"$index/Packages")
    gzip -9nc "$repo/$index/Packages" >"$repo/$index/Packages.gz"
  done
  apt-ftparchive -o APT::FTPArchive::Release::Origin=ORLET -o APT::FTPArchive::Release::Label=ORLET \
    -o APT::FTPArchive::Release::Suite=stable -o APT::FTPArchive::Release::Codename=stable \
    -o APT::FTPArchive::Release::Architectures="${archs[*]}" \
    -o APT::FTPArchive::Release::Components=main \
    release "$repo/dists/stable" >"$repo/dists/stable/Release.new"
  mv "$repo/dists/stable/Release.new" "$repo/dists/stable/Release"
  gpg --batch --yes --local-user "$key" --clearsign -o "$repo/dists/stable/InRelease" \
    "$repo/dists/stable/Release"
  gpg --batch --yes --local-user "$key" --armor --detach-sign -o "$repo/dists/stable/Release.gpg" \
    "$repo/dists/stable/Release"
}

case ${1:-} in
  keygen) (($# == 2)) || die "usage: keygen KEY.pem"; keygen "$2" ;;
  appcast) (($# >= 4)) || die "usage: appcast KEY.pem BASE_URL [options] ARCHIVE..."; shift; appcast "$@" ;;
  apt) (($# >= 4)) || die "usage: apt GPG_KEY REPOSITORY DEB..."; shift; apt_repository "$@" ;;
  apt-key) (($# == 3)) || die "usage: apt-key GPG_KEY KEYRING"; gpg --batch --yes -o "$3" --export "$2" ;;
  *) sed -n '2,23p' "$0" | sed 's/^# \{0,1\}//'; exit 2 ;;
esac
