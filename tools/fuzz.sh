#!/usr/bin/env bash
# Builds the fuzz targets and runs each from its seeds: fuzz.sh [SECONDS each, default 20]. What a target finds stays in
# build-fuzz/found/.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-20}
tools/build.sh fuzz
mkdir -p build-fuzz/found
export LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp:print_suppressions=0
run() {
  name=$1
  corpus=$(mktemp -d)
  trap 'rm -rf "$corpus"' EXIT
  if ! timeout --kill-after=10 $(($2 + 200)) "build-fuzz/tests/fuzz/${name}_fuzz" -seed=1 -max_total_time="$2" -timeout=60 \
       -rss_limit_mb=2048 -artifact_prefix="build-fuzz/found/$name-" "$corpus" "tests/fuzz/seeds/$name" \
       > "build-fuzz/found/$name.log" 2>&1; then
    tail -40 "build-fuzz/found/$name.log"
    echo "fuzz: $name found something: build-fuzz/found/$name-*"
    exit 1
  fi
  echo "fuzz: $name: $(grep -oE 'Done [0-9]+ runs in [0-9]+ second' "build-fuzz/found/$name.log")s"
}
export -f run
ls tests/fuzz/*_fuzz.cpp | sed 's|.*/\(.*\)_fuzz.cpp|\1|' |
  xargs -P "$(nproc)" -I{} bash -c 'set -euo pipefail; run {} '"$seconds"
