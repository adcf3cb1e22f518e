#!/usr/bin/env bash
# The user's whole road in the real window: a virtual screen with a window manager, on which studio_road.py walks by
# keyboard and mouse. Leaves pictures of each station.
#
#   tests/road/studio_road.sh [BUILD_FOLDER [OUTPUT_FOLDER]]        ROAD_SIZE=1280x800 for another screen
#
# Needs a finished build with tests, and what `tools/install-packages.sh ci` installs.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
out=${2:-$build/road}
rm -rf "$out"
mkdir -p "$out/home" "$out/run"
out=$(cd "$out" && pwd)
chmod 700 "$out/run"
cp -r "$root/samples/." "$out/samples"

export HOME=$out/home XDG_CONFIG_HOME=$out/home/.config XDG_DATA_HOME=$out/home/.local XDG_RUNTIME_DIR=$out/run
export ZELVANDIR=$out/samples QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 NO_AT_BRIDGE=0
unset QT_QPA_PLATFORM ZVN_SIMULATION
trap 'kill $(jobs -p) 2>/dev/null || true' EXIT
Xvfb -displayfd 3 -screen 0 "${ROAD_SIZE:-1920x1080}x24" 3>"$out/display" 2>"$out/xvfb.log" &
for _ in $(seq 100); do [ -s "$out/display" ] && break; sleep 0.1; done
DISPLAY=:$(cat "$out/display")
export DISPLAY
openbox >"$out/openbox.log" 2>&1 &
timeout --kill-after=10 "${ROAD_SECONDS:-600}" dbus-run-session -- \
  /usr/bin/python3 "$root/tests/road/studio_road.py" "$root" "$build" "$out" 2>"$out/road.log" ||
  { tail -n 20 "$out/road.log"; echo "FAILED; pictures and logs are in $out"; exit 1; }
echo "the whole road is done; pictures are in $out"
