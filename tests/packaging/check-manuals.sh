#!/usr/bin/env bash
# check-manuals.sh FOLDER
# The manual pages are well formed, and name each other where they say "see also".
set -euo pipefail

command -v mandoc >/dev/null || { echo "skipped: mandoc is not installed" && exit 77; }
folder=$1
failures=0

fail() {
  printf 'FAILED: %s\n' "$*" >&2
  failures=$((failures + 1))
}

for page in "$folder"/*.[18]; do
  said=$(mandoc -Tlint -W warning "$page") || true
  [[ -z $said ]] || fail "$said"
  for other in "$folder"/*.[18]; do
    [[ $other != "$page" ]] || continue
    name=$(basename "${other%.*}") section=${other##*.}
    sed -n '/^\.SH SEE ALSO/,$p' "$page" | sed 's/\\//g' | grep -q "^\.BR $name ($section)" ||
      fail "$(basename "$page") does not lead to $name($section)"
  done
done
exit "$((failures > 0))"
