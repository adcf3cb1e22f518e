#!/usr/bin/env bash
# Holds the comments that call a behaviour deliberate against the rows of docs/compatibility.md: each names a row, and
# each row has its place.
set -euo pipefail
cd "$(dirname "$0")/.."
places=$(git grep -noiE 'deliberate(ly)?( \(C[0-9]+\))?' -- '*.h' '*.cpp' ':!tests')
bad=0
if grep -vE '\(C[0-9]+\)$' <<<"$places"; then
  echo "these name no row of docs/compatibility.md"
  bad=1
fi
if ! diff <(grep -oE 'C[0-9]+\)$' <<<"$places" | tr -d ')' | sort -u) \
          <(sed -nE 's/^\| (C[0-9]+) .*/\1/p' docs/compatibility.md | sort -u); then
  echo "rows of docs/compatibility.md (>) and comments in the sources (<) differ"
  bad=1
fi
[ $bad -eq 0 ] && echo "compatibility: every deliberate behaviour has its row"
exit $bad
