#!/usr/bin/env bash
# Holds every source against .clang-format and prints the difference.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.cpp' '*.h')
if ! clang-format --dry-run -Werror "${files[@]}" 2>/dev/null; then
  for file in "${files[@]}"; do
    clang-format "$file" | diff -u --label "$file" --label "$file, formatted" "$file" - || true
  done
  exit 1
fi
echo "formatting: ${#files[@]} files as they should be"
