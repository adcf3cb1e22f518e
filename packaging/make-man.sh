#!/usr/bin/env bash
# Makes the manual pages of the batch tool from what its --help tells: make-man.sh TOOL VERSION FOLDER
# One page for the tool, one for each command.
set -euo pipefail
tool=$1
version=$2
folder=$3
mkdir -p "$folder"

# The items of a section of the help ("Options:"), as tagged paragraphs.
items() {
  awk -v section="$1:" '
    function roff(text) { gsub(/\\/, "\\e", text); gsub(/-/, "\\-", text); gsub(/^[.\x27]/, "\\\\\\&&", text); return text }
    /^[A-Z][A-Za-z]*:$/ { inside = $0 == section; next }
    /^$/ || !inside { next }
    /^  [^ ]/ {
      line = substr($0, 3)
      at = match(line, /   */)
      print ".TP"
      print ".B " roff(at ? substr(line, 1, at - 1) : line)
      if (at) print roff(substr(line, at + RLENGTH))
      next
    }
    { sub(/^ +/, ""); print roff($0) }'
}

# page NAME SECTION-TITLES...: reads the help of a command.
page() {
  local name=$1 help usage
  shift
  help=$(cat)
  usage=$(sed -n 's/^Usage: //p' <<<"$help" | head -1)
  {
    printf '.TH "%s" 1 "" "Tonewright %s" "Tonewright"\n' "$(tr '[:lower:]' '[:upper:]' <<<"$name" | sed 's/-/\\-/g')" "$version"
    printf '.SH NAME\n%s \\- %s\n' "${name//-/\\-}" "$(head -1 <<<"$help" | sed 's/\.$//; s/-/\\-/g')"
    printf '.SH SYNOPSIS\n.B %s\n' "${usage//-/\\-}"
    for title in "$@"; do
      grep -q "^$title:$" <<<"$help" || continue
      printf '.SH %s\n' "$(tr '[:lower:]' '[:upper:]' <<<"$title")"
      items "$title" <<<"$help"
    done
    printf '.SH OUTPUT\n%s\n' "Results are one JSON document on standard output, words for a person go to standard error."
    printf '.SH "EXIT STATUS"\n0 for done, 1 where the work failed, 2 where the command line is wrong%s.\n' \
      "$(grep -q 'exit status is 3' <<<"$help" && echo ', 3 where a limit is not kept')"
    printf '.SH "SEE ALSO"\n'
  } > "$folder/$name.1"
}

commands=$("$tool" --help | awk '/^Subcommands:$/ { inside = 1; next } inside && /^  [^ ]/ { print $1 }')
"$tool" --help | sed 's/^Subcommands:$/Commands:/' | page tonewright Commands Options
for command in $commands; do
  "$tool" "$command" --help | page "tonewright-$command" Positionals Options
  printf '.BR tonewright (1)\n' >> "$folder/tonewright-$command.1"
  printf '.BR tonewright\\-%s (1),\n' "$command" >> "$folder/tonewright.1"
done
printf '.BR tonewright\\-studio (1)\n' >> "$folder/tonewright.1"
