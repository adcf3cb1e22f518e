#!/usr/bin/env bash
# Tries the commands of the README in a bare Debian 12: try-bare.sh [FOLDER]. Makes debootstrap's smallest tree in FOLDER
# (default: a temporary one, removed afterwards), clones the last commit into it, runs ./run, ./test and ./package there,
# and hands the packages to try-packages.sh. Takes root, the network of the machine's own package mirror, 8 GB and an
# hour. Not for CI.
set -euo pipefail
cd "$(dirname "$0")/.."
[ "$(id -u)" -eq 0 ] || { echo "try-bare.sh: needs root, for debootstrap and chroot"; exit 2; }
command -v debootstrap >/dev/null || { echo "try-bare.sh: needs the package debootstrap"; exit 2; }

tree=${1:-}
if [ -z "$tree" ]; then
  tree=$(mktemp -d /var/tmp/tonewright-bare.XXXXXX)
  trap 'rm -rf --one-file-system "$tree"' EXIT
fi
mirror=$(apt-get indextargets --format '$(SITE) $(CODENAME) $(REPO_URI)' | sed -n 's/.* bookworm //p' | head -1)
if [ ! -e "$tree/etc/debian_version" ]; then
  echo "A bare tree in $tree, from ${mirror:-its usual mirror}"
  debootstrap --variant=minbase bookworm "$tree" ${mirror:+"$mirror"} > "$tree.log" 2>&1 || { tail "$tree.log"; exit 1; }
  rm "$tree.log"
fi
cp /etc/resolv.conf "$tree/etc/"
rm -rf "$tree/root/tonewright"
git clone -q . "$tree/root/tonewright"

# What is mounted for the tree is gone with the namespace.
inside() {
  unshare --mount --pid --fork bash -c '
    mount -t proc proc "$1/proc" && mount --bind /dev "$1/dev" && mount -t tmpfs tmpfs "$1/tmp" || exit
    exec chroot "$1" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin http_proxy="${http_proxy:-}" \
      bash -c "cd /root/tonewright && $2"' bash "$tree" "$1"
}
failed=0
for command in ./run ./test ./package; do
  start=$SECONDS
  if inside "$command" > "$tree/root/${command#./}.log" 2>&1; then verdict=passed; else verdict=FAILED failed=1; fi
  echo "$command: $verdict in $((SECONDS - start)) s"
  tail -6 "$tree/root/${command#./}.log"
done
[ $failed -eq 0 ] || exit 1
mkdir -p packages
cp "$tree"/root/tonewright/packages/*.deb packages/
tools/try-packages.sh
