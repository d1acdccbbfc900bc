#!/usr/bin/env bash
# check-manuals.sh FOLDER
# The manual pages are well formed, and name each other where they say "see also".
set -euo pipefail

command -v mandoc >/dev/null || { echo "skipped: mandoc is not installed" && exit 77; }
folder=$1
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"

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
((failures == 0))
