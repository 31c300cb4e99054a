#!/usr/bin/env bash
# Signs ORLET's releases for its updater.
#
#   scripts/release.sh keygen KEY.pem
#       makes the publisher's Ed25519 key pair (keep KEY.pem secret) and prints the public key,
#       for -DORLET_UPDATE_PUBLIC_KEY=... or the settings file's SUPublicEDKey.
#   scripts/release.sh appcast KEY.pem BASE_URL [--notes NOTES.html] [--min-system V] ARCHIVE...
#       writes on standard output the whole feed (for -DORLET_UPDATE_FEED_URL=... / SUFeedURL):
#       one signed item per archive (the per-user .tar.gz and the .deb), each to be served at
#       BASE_URL/<file name>. The version is read from the file name (orlet-1.2.0-Linux.tar.gz,
#       orlet_1.2.0_amd64.deb) unless VERSION is set.
#
# A release is then: cmake --build <build> --target package, and
#   scripts/release.sh appcast KEY.pem https://example.org/orlet <build>/orlet*.{tar.gz,deb}
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

case ${1:-} in
  keygen) (($# == 2)) || die "usage: keygen KEY.pem"; keygen "$2" ;;
  appcast) (($# >= 4)) || die "usage: appcast KEY.pem BASE_URL [options] ARCHIVE..."; shift; appcast "$@" ;;
  *) sed -n '2,17p' "$0" | sed 's/^# \{0,1\}//'; exit 2 ;;
esac
