#!/usr/bin/env bash
# Installs the packages of packages/ into a fresh Debian 12 tree, calibrates the sample there, and takes them off again:
# try-packages.sh [FOLDER for the tree, default a temporary one]. Needs root, debootstrap and Debian's mirror.
set -euo pipefail
cd "$(dirname "$0")/.."
mirror=$(apt-get indextargets --format '$(SITE) $(CODENAME) $(REPO_URI)' | sed -n 's/.* bookworm //p' | head -1)
tree=${1:-$(mktemp -d)}
[ -n "${1:-}" ] || trap 'rm -rf --one-file-system "$tree"' EXIT
within() { chroot "$tree" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }

[ -e "$tree/bin/sh" ] || debootstrap --variant=minbase --include=man-db,bash-completion bookworm "$tree" ${mirror:+"$mirror"} >"$tree.log" 2>&1 ||
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
within timeout 20 env QT_QPA_PLATFORM=offscreen HOME=/root tonewright-studio $samples/Tonewright/Images/chart.bmp && status=0 || status=$?
[ $status -eq 124 ] || { echo "the Studio ended by itself with $status"; exit 1; }
echo "the Studio ran until it was ended"
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
