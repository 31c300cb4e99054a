#!/bin/sh
# Installs ORLET for the current user from its unpacked archive, without root:
#   tar xzf orlet-<version>-Linux.tar.gz && orlet-<version>-Linux/share/orlet/install-user.sh
# Versions go side by side under ~/.local/lib/orlet/versions; ~/.local/lib/orlet/current points
# at the one that runs (switched in one rename, as the updater does) and ~/.local/bin/orlet at
# its program. The desktop entry and icons go under ~/.local/share.
set -eu

top=$(cd "$(dirname "$0")/../.." && pwd)
version=$(cat "$top/share/orlet/version")
root="$HOME/.local/lib/orlet"
data="${XDG_DATA_HOME:-$HOME/.local/share}"

mkdir -p "$root/versions" "$HOME/.local/bin" "$data/applications" "$data/icons" "$data/metainfo"
staging="$root/versions/.incoming-$version"
rm -rf "$staging"
cp -R "$top" "$staging"
old=$(readlink "$root/current" 2>/dev/null || true)
if [ "$old" = "versions/$version" ]; then old=""; fi
rm -rf "$root/versions/$version"
mv "$staging" "$root/versions/$version"
ln -sfn "versions/$version" "$root/current.new"
mv -T "$root/current.new" "$root/current"
# The version replaced stays until the new one has started; ORLET removes it then.
if [ -n "$old" ]; then
  ln -sfn "$old" "$root/previous.new"
  mv -T "$root/previous.new" "$root/previous"
fi
ln -sfn ../lib/orlet/current/bin/orlet "$HOME/.local/bin/orlet"

sed "s|^Exec=.*|Exec=\"$HOME/.local/bin/orlet\"|" "$top/share/applications/orlet.desktop" \
  >"$data/applications/orlet.desktop"
cp -R "$top/share/icons/hicolor" "$data/icons/"
cp "$top/share/metainfo/"*.xml "$data/metainfo/"
if command -v update-desktop-database >/dev/null; then
  update-desktop-database -q "$data/applications" || true
fi
if command -v gtk-update-icon-cache >/dev/null; then
  gtk-update-icon-cache -q -t "$data/icons/hicolor" || true
fi
echo "ORLET $version est installé pour $(id -un) : menu des applications, ou ~/.local/bin/orlet."
