#!/usr/bin/env bash
# Holds every source against .clang-format and prints the difference.
set -euo pipefail
cd "$(dirname "$0")/.."
files=$(git ls-files '*.cpp' '*.h')
clang-format --dry-run -Werror $files
echo "formatting: $(wc -w <<<"$files") files as they should be"
