#!/usr/bin/env bash
# Holds the #include lines against the table of arrows in docs/architecture.md, and private headers against their folder.
set -euo pipefail
cd "$(dirname "$0")/.."
# A row of the table: | `folder/` | `one/` `other/file.h` | ...; a folder may always include itself.
declare -A may
while IFS='|' read -r _ folder targets _; do
  folder=$(tr -d ' `' <<<"$folder")
  may[${folder%/}]=" ${folder%/} $(tr -d '`–' <<<"$targets" | sed -E 's:/( |$): :g') "
done < <(grep -E '^\| `[a-z/]+/` \| (–|`)' docs/architecture.md)
[ ${#may[@]} -ge 10 ] || { echo "docs/architecture.md: no table of arrows"; exit 1; }
# The folder of a file that the table knows: app/view/X.h is app/view's, acquisition/zvn/X.h acquisition's.
declare -A known
folder_of() {
  local folder=${1%/*}
  if [ -z "${known[$folder]:-}" ]; then
    known[$folder]=$folder
    while [ -z "${may[${known[$folder]}]:-}" ]; do
      [[ ${known[$folder]} == */* ]] || break
      known[$folder]=${known[$folder]%/*}
    done
  fi
  of=${known[$folder]}
}
bad=0
complain() { echo "$1:$2"; bad=1; }
while IFS=: read -r file line text; do
  target=${text#*\"}
  target=${target%%\"*}
  folder_of "$file"; from=$of
  folder_of "$target"; to=$of
  allowed=${may[$from]:-}
  # Folders within app/ reach out of it as app/ does.
  [[ $from == app/* && $to != app && $to != app/* ]] && allowed=${may[app]}
  [[ $allowed == *" $to "* || $allowed == *" $target "* ]] || complain "$file:$line" " $from/ may not include $target"
  if [[ $target == *_impl.h && ${target%/*} != "${file%/*}" ]]; then
    complain "$file:$line" " $target is private to its folder"
  fi
done < <(git grep -nE '^#include "' -- $(printf '%s\n' "${!may[@]}" | grep -v / | sed 's|$|/*|'))
if git grep -nE '^#include <Q' -- ':!app' ':!tests/app' ':!bench' ':!packaging' ; then
  echo "only app/ includes Qt"
  bad=1
fi
if git grep -nE '^#include <Q' -- app/workflow | grep -vE '<(QDateTime|QDir|QObject|QString|QTimer)>'; then
  echo "app/workflow/ has no widget"
  bad=1
fi
[ $bad -eq 0 ] && echo "includes: every arrow points the right way"
exit $bad
