#!/usr/bin/env bash
# Configures and builds a preset, quietly: build.sh PRESET [CMake option...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift
cmake --preset "$preset" -G Ninja "$@" >/dev/null
cmake --build --preset "$preset"
