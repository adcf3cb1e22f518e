#!/usr/bin/env bash
# Holds the sources that are not tests against .clang-tidy, as the build in build/ compiles them. What passed is
# remembered by its content and that of the headers of ours that it includes, so that a second run takes what changed.
# check-tidy.sh [--deep] [REGEX]: "--deep" adds the path-sensitive analyzer, which takes five times as long; REGEX
# chooses files by name.
set -euo pipefail
cd "$(dirname "$0")/.."
export checks=""
if [ "${1:-}" = --deep ]; then
  checks="clang-analyzer-*"
  shift
fi
export tidy=$(command -v clang-tidy-14 || command -v clang-tidy)
export passed=${XDG_CACHE_HOME:-$HOME/.cache}/tonewright-tidy
mkdir -p "$passed"
find "$passed" -type f -mtime +30 -delete
how=$({ cat .clang-tidy */.clang-tidy "$0"; "$tidy" --version | grep version; echo "$checks"; } | sha256sum)
# A line a source: its name, then the sums of all that it is made of.
mapfile -t sources < <(
  ninja -C build -t deps |
    awk -v root="$PWD/" 'NR == FNR { sum[$2] = $1; next }
                         /^[^ ]/ { if (line != "") print line; line = ""; next }
                         { sub(/^\.\.\//, "", $1); sub("^" root, "", $1)
                           if ($1 in sum) line = (line == "" ? $1 : line) " " sum[$1] }
                         END { if (line != "") print line }' <(git ls-files '*.cpp' '*.h' | xargs sha256sum) - |
    grep -vE '^(tests|bench|examples|packaging)/' | grep -E "^[^ ]*\.cpp " | sort -u -k 1,1)
todo=()
count=0
for line in "${sources[@]}"; do
  file=${line%% *}
  grep -qE "${1:-.}" <<<"$file" || continue
  count=$((count + 1))
  key=$(sha256sum <<<"$how $line")
  [ -e "$passed/${key%% *}" ] || todo+=("$file" "${key%% *}")
done
[ $count -gt 0 ] || { echo "tidy: the build in build/ made none of these: build first"; exit 1; }
# What the compiler of the build knows and clang-tidy doesn't is no finding.
check() {
  "$tidy" -p build --quiet --checks="$checks" --warnings-as-errors='*' --extra-arg=-Wno-unknown-warning-option "$1" \
    2> >(grep -vE '^[0-9]+ warnings? (generated|treated)' >&2) && touch "$passed/$2"
}
export -f check
[ ${#todo[@]} -eq 0 ] || printf '%s\n' "${todo[@]}" | xargs -P "$(nproc)" -n 2 bash -c 'check "$@"' _
echo "tidy: $count files as they should be, $((${#todo[@]} / 2)) of them looked at"
