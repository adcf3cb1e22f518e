#!/usr/bin/env bash
# Holds the #include lines against the arrows between folders, and private headers against their folder.
set -euo pipefail
cd "$(dirname "$0")/.."
declare -A may=(
  [primitives]="primitives"
  [foundation]="foundation primitives"
  [imagefile]="imagefile foundation primitives"
  [analysis]="analysis foundation primitives"
  [calibration]="calibration foundation primitives"
  [acquisition]="acquisition primitives foundation calibration"
  [chart]="chart foundation primitives analysis calibration"
  [quality]="quality foundation calibration chart"
  [report]="report foundation imagefile calibration chart quality"
  [cli]="cli primitives foundation imagefile analysis calibration acquisition chart quality report"
  [python]="python primitives foundation imagefile analysis calibration acquisition chart quality report"
  [app]="app primitives foundation imagefile analysis calibration acquisition chart quality report"
)
declare -A inside=([app/toolkit]="app/toolkit" [app/view]="app/view app/toolkit" [app/panes]="app/panes app/view app/toolkit")
bad=0
complain() { echo "$1:$2"; bad=1; }
while IFS=: read -r file line text; do
  target=$(sed -E 's/.*"([^"]*)".*/\1/' <<<"$text")
  from=${file%%/*}
  to=${target%%/*}
  [[ " ${may[$from]} " == *" $to "* ]] || complain "$file:$line" " $from/ may not include $target"
  if [[ $target == *_impl.h && ${target%/*} != "${file%/*}" ]]; then
    complain "$file:$line" " $target is private to its folder"
  fi
  sub=$(cut -d/ -f1-2 <<<"$file")
  if [[ -n ${inside[$sub]:-} && $to == app ]]; then
    [[ " ${inside[$sub]} " == *" ${target%/*} "* ]] || complain "$file:$line" " $sub/ may not include $target"
  fi
done < <(git grep -nE '^#include "' -- 'primitives/*' 'foundation/*' 'imagefile/*' 'analysis/*' 'calibration/*' \
           'acquisition/*' 'chart/*' 'quality/*' 'report/*' 'cli/*' 'python/*' 'app/*')
if git grep -nE '^#include <Q' -- ':!app' ':!tests/app' ':!bench' ; then
  echo "only app/ includes Qt"
  bad=1
fi
[ $bad -eq 0 ] && echo "includes: every arrow points the right way"
exit $bad
