#!/usr/bin/env bash
# The user's whole road in the real window, by keyboard and mouse alone: load the sample chart, calibrate and preview,
# gamma, coefficients, parameters, relative mode, a user's illuminant, the simulated frame grabber and camera. The
# coefficient files must equal the batch tool's to the byte. Leaves pictures of each station.
#
#   tests/road/studio_road.sh [BUILD_FOLDER [OUTPUT_FOLDER]]
#
# Needs Xvfb, openbox, xdotool and ImageMagick's import beside a finished build.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
out=${2:-$build/road}
size=${ROAD_SIZE:-1920x1080}
rm -rf "$out"
mkdir -p "$out/home"
out=$(cd "$out" && pwd)
chart=$root/samples/Tonewright/Images/chart.bmp
tool=$build/cli/tonewright

export HOME=$out/home XDG_CONFIG_HOME=$out/home/.config ZELVANDIR=$root/samples DISPLAY=:${ROAD_DISPLAY:-97}
unset QT_QPA_PLATFORM
cp -r "$root/samples/." "$out/samples"
export ZVN_SIMULATION=$out/samples/simulation.ini
Xvfb "$DISPLAY" -screen 0 "${size}x24" >"$out/xvfb.log" 2>&1 &
xvfb=$!
trap 'kill $(jobs -p) 2>/dev/null || true' EXIT
sleep 1
openbox >"$out/openbox.log" 2>&1 &
sleep 1
(cd "$out" && exec "$build/app/tonewright-studio") >"$out/studio.log" 2>&1 &
studio=$!

stations=0
say() { printf '%s\n' "$*"; }
fail() { shot failed; say "FAILED: $*"; exit 1; }
shot() { stations=$((stations + 1)); import -window root "$out/$(printf %02d $stations)-$1.png"; }
key() { xdotool key --clearmodifiers "$@"; sleep 0.4; }
tip() { key Alt_L; for letter in "$@"; do key "$letter"; done; sleep 0.4; }  # key tips: tab, then control
name() { sleep 1; key ctrl+a; xdotool type --delay 5 "$1"; key Return; sleep 1; }
same() { cmp "$1" "$2" || fail "$1 and $2 differ"; say "same: $(basename "$1") $(basename "$2")"; }
alive() { kill -0 "$studio" 2>/dev/null || fail "the Studio has ended: $(tail -5 "$out/studio.log")"; }

for _ in $(seq 50); do xdotool search --onlyvisible --name 'Zelvan Tonewright' >/dev/null && break; sleep 0.1; done
window=$(xdotool search --onlyvisible --name 'Zelvan Tonewright' | head -n 1)
xdotool windowfocus --sync "$window" windowmove --sync "$window" 40 40
xdotool mousemove 300 50 click --repeat 2 --delay 80 1  # on the title bar: to the whole screen, its frame included
sleep 1
shot start

say "load, calibrate and preview"
key ctrl+o; name "$chart"; shot chart
key ctrl+p; sleep 1; shot preview

say "the preview follows the gamma slider"
before=$(import -window root rgb:- | md5sum)
tip h g a; key Tab; for _ in $(seq 10); do key Right; done; sleep 1; shot gamma
[ "$before" != "$(import -window root rgb:- | md5sum)" ] || fail "the preview did not follow"
tip h g a; key ctrl+a; xdotool type 45; key Return; sleep 1

say "save coefficients and parameters, reset, load"
key ctrl+e; name "$out/absolute.ccor"
"$tool" calibrate "$chart" --coefficients "$out/absolute-tool.ccor" --corrected "$out/corrected.bmp" >"$out/absolute.json"
same "$out/absolute.ccor" "$out/absolute-tool.ccor"
tip h s p; name "$out/absolute.twkp"
tip h r p; sleep 0.5; shot question; key alt+y; sleep 0.5
tip h l p; name "$out/absolute.twkp"
key ctrl+e; name "$out/again.ccor"
same "$out/again.ccor" "$out/absolute-tool.ccor"
alive

say "relative calibration"
tip h r e; name "$out/corrected.bmp"; shot relative
key ctrl+e; name "$out/relative.ccor"
"$tool" calibrate "$chart" --reference "$out/corrected.bmp" --coefficients "$out/relative-tool.ccor" >"$out/relative.json"
same "$out/relative.ccor" "$out/relative-tool.ccor"
alive

say "a user's illuminant from a CSV file"
tip h a b
tip h i t; key Down Home Return; sleep 1
white=(0.83749 0.88497 0.92462)
xdotool mousemove 48 226 click --repeat 2 --delay 80 1; sleep 0.5
for value in "${white[@]}"; do xdotool type "$value"; key Tab; done; key Escape; shot editing
xdotool mousemove 61 820 click 1; name "$root/tests/road/d65.csv"; shot matrix-size; key Return; sleep 1; shot values
key ctrl+e; name "$out/user.ccor"
"$tool" calibrate "$chart" --illuminant user --values "$root/tests/road/d65.csv" \
  --white "$(IFS=,; echo "${white[*]}")" --coefficients "$out/user-tool.ccor" >"$out/user.json"
same "$out/user.ccor" "$out/user-tool.ccor"
alive

say "pick colors by hand"
tip h c s; key Down Down Return; sleep 1
for _ in 1 2 3; do xdotool mousemove 480 450 click --repeat 2 --delay 80 1; sleep 0.5; done; shot manual
tip h c s; key Down Home Return; sleep 0.5

say "the simulated frame grabber: snap, upload"
tip h c f; sleep 1; shot configure; key Return; sleep 1
tip h s n; sleep 2; shot snapped
tip h u c; sleep 2; shot upload

say "the simulated camera: backup"
tip h c f; sleep 1; key Down; sleep 0.5; shot configure-camera; key Return; sleep 1; shot camera
tip h b c; name "$out/backup.ccor"; shot backup
same "$out/backup.ccor" "$out/samples/simulated-camera/ColorCorrectionMatrix"
alive

key alt+F4
for _ in $(seq 50); do kill -0 "$studio" 2>/dev/null || break; sleep 0.1; done
kill -0 "$studio" 2>/dev/null && fail "the Studio did not end"
say "the whole road is done; pictures are in $out"
