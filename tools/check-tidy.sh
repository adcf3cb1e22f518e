#!/usr/bin/env bash
# Holds the sources that are not tests against .clang-tidy, as the build in build/ compiles them.
# check-tidy.sh [--deep] [REGEX]: "--deep" adds the path-sensitive analyzer, which takes five times as long; REGEX
# chooses files by name.
set -euo pipefail
cd "$(dirname "$0")/.."
checks=""
if [ "${1:-}" = --deep ]; then
  checks="clang-analyzer-*"
  shift
fi
mapfile -t files < <(sed -n "s|^ *\"file\": \"$PWD/\(.*\.cpp\)\".*|\1|p" build/compile_commands.json |
                       grep -vE '^(tests|bench|build[^/]*)/' | grep -E "${1:-.}" | sort -u)
[ ${#files[@]} -gt 0 ] || { echo "tidy: build/compile_commands.json names no source: build first"; exit 1; }
# What the compiler of the build knows and clang-tidy doesn't is no finding.
printf '%s\n' "${files[@]}" |
  xargs -P "$(nproc)" -n 2 clang-tidy -p build --quiet --checks="$checks" --warnings-as-errors='*' \
    --extra-arg=-Wno-unknown-warning-option 2> >(grep -vE '^[0-9]+ warnings? (generated|treated)' >&2)
echo "tidy: ${#files[@]} files as they should be"
