#!/usr/bin/env bash
# Installs the packages of packages/ into a fresh Debian 12 tree, calibrates the sample there, starts the Studio from its
# desktop entry, and takes all off again: try-packages.sh [FOLDER for the tree, default a temporary one]. Needs root,
# debootstrap, Debian's mirror, Xvfb, xdotool and ImageMagick; a picture of the Studio stays at packages/studio.png.
set -euo pipefail
cd "$(dirname "$0")/.."
mirror=$(apt-get indextargets --format '$(SITE) $(CODENAME) $(REPO_URI)' | sed -n 's/.* bookworm //p' | head -1)
tree=${1:-$(mktemp -d)}
[ -n "${1:-}" ] || trap 'rm -rf --one-file-system "$tree"' EXIT
within() { chroot "$tree" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }

[ -e "$tree/bin/sh" ] || debootstrap --variant=minbase --include=man-db,bash-completion,libglib2.0-bin,shared-mime-info bookworm "$tree" ${mirror:+"$mirror"} >"$tree.log" 2>&1 ||
  { tail "$tree.log"; exit 1; }
rm -f "$tree/etc/dpkg/dpkg.cfg.d/docker"  # manual pages are to be installed
within dpkg --get-selections | sort > "$tree/before"
within find / -xdev -iname '*tonewright*' | sort > "$tree/names-before"

cp packages/*.deb "$tree/tmp/"
within apt-get update -q >/dev/null
within sh -c 'apt-get install -q -y --no-install-recommends /tmp/*.deb' >"$tree/install.log" 2>&1 ||
  { tail -20 "$tree/install.log"; exit 1; }
echo "installed: $(within dpkg-query -W -f='${Package} ${Version}, ' '*tonewright*')"

within tonewright --version
samples=/usr/share/tonewright/samples
within tonewright calibrate $samples/Tonewright/Images/chart.bmp --illuminant D65 \
  --coefficients /tmp/chart.ccor --parameters /tmp/chart.twkp >"$tree/tmp/chart.json"
within tonewright info /tmp/chart.ccor /tmp/chart.twkp >/dev/null
within tonewright apply $samples/Tonewright/Images/chart.bmp --parameters /tmp/chart.twkp --output /tmp/corrected.bmp >/dev/null
echo "calibrated: $(grep -c . "$tree/tmp/chart.json") lines told, $(stat -c %s "$tree/tmp/chart.ccor") bytes of coefficients"
within man -w tonewright-calibrate >/dev/null
within man -P cat tonewright-calibrate | head -5 >"$tree/tmp/man.txt"
grep -q 'TONEWRIGHT-CALIBRATE' "$tree/tmp/man.txt"
# The display stands outside, so that the tree has nothing for a window but what the packages asked for.
display=:$((200 + $$ % 300))
Xvfb "$display" -screen 0 1280x800x24 >/dev/null 2>&1 &
xvfb=$!
trap 'kill $xvfb; [ -n "${1:-}" ] || rm -rf --one-file-system "$tree"' EXIT
for _ in $(seq 50); do DISPLAY=$display xdotool getdisplaygeometry >/dev/null 2>&1 && break || sleep 0.1; done
within env DISPLAY="$display" HOME=/root gio launch /usr/share/applications/tonewright-studio.desktop \
  $samples/Tonewright/Images/chart.bmp >"$tree/studio.log" 2>&1
window=$(DISPLAY=$display timeout 30 xdotool search --sync --onlyvisible --name 'Tonewright' | head -1)
sleep 3
DISPLAY=$display import -window root packages/studio.png
studio=$(DISPLAY=$display xdotool getwindowpid "$window")
kill -0 "$studio"
echo "the Studio came up from its desktop entry: $(DISPLAY=$display xdotool getwindowname "$window")"
kill "$studio"
if [ -e "$tree/usr/lib/python3/dist-packages/tonewright" ]; then
  cp "$tree/$samples/Tonewright/Images/chart.bmp" "$tree/tmp/python.bmp"
  within python3 /usr/share/doc/python3-tonewright/calibrate_from_python.py /tmp/python.bmp /tmp/python.bmp
  within tonewright info /tmp/python.ccor /tmp/python.twkp /tmp/python.corrected.bmp >/dev/null
fi

within sh -c "apt-get purge -q -y \$(dpkg-query -W -f='\${Package} ' '*tonewright*') && apt-get autoremove -q -y --purge" >"$tree/purge.log" 2>&1
rm -f "$tree"/tmp/*.deb "$tree"/tmp/chart.* "$tree"/tmp/python.* "$tree"/tmp/corrected.bmp "$tree"/tmp/man.txt
rm -rf "$tree/root/.config/Brennick Korva" "$tree"/var/cache/man/cat*/tonewright*  # what running them left
within find / -xdev -iname '*tonewright*' | sort > "$tree/names-after"
diff "$tree/names-before" "$tree/names-after"
diff "$tree/before" <(within dpkg --get-selections | sort)
echo "uninstalled without a trace"
