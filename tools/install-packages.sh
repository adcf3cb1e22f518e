#!/usr/bin/env bash
# Installs the Debian packages that building (and, with "test", testing; with "ci", checking) needs, and only those
# that are missing.
set -euo pipefail
packages=(g++ cmake ninja-build pkg-config libpng-dev libtiff-dev liblcms2-dev libinih-dev libcli11-dev nlohmann-json3-dev
          qt6-base-dev qt6-svg-dev libqt6svg6 qt6-qpa-plugins libgl1-mesa-dev libaravis-dev libglib2.0-dev fonts-dejavu-core)
python=(pybind11-dev python3-dev python3-numpy)
case "${1:-}" in
  test) packages+=(libgtest-dev libgmock-dev aravis-tools "${python[@]}" python3-pytest) ;;
  package) packages+=("${python[@]}" dpkg-dev file gzip lintian desktop-file-utils appstream) ;;
  docs) packages=(doxygen) ;;
  ci) packages+=(libgtest-dev libgmock-dev aravis-tools "${python[@]}" python3-pytest git ccache clang-format clang-tidy-14 clang-14 libclang-rt-14-dev
                 libomp-14-dev zlib1g-dev libbenchmark-dev
                 xvfb openbox xdotool imagemagick dbus at-spi2-core python3-gi gir1.2-atspi-2.0) ;;
esac
missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing: ${missing[*]}"
sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -q
"${sudo[@]}" apt-get install -q -y --no-install-recommends "${missing[@]}"
