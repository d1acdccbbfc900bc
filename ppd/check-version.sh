#!/usr/bin/env bash
# check-version.sh PPDS: the PPDs have another version wherever they have other contents.
set -euo pipefail

ppds=$1
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tool=$here/../tools/ppd-version.sh
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../tests/support/checks.sh"

# digest SED-SCRIPT: of the PPDs after a change.
digest() {
  local said
  cp "$ppds"/*.ppd "$work"
  sed -i -E "$1" "$work"/*.ppd
  said=$("$tool" "$work")
  echo "${said#* }"
}

expected=$(digest '')
for change in 's/^(\*OutputColorType Black.*): "1"/\1: "2"/' 's/Nur Schwarz/Schwarz/' \
  's/^\*DefaultDotPlacement: .*/*DefaultDotPlacement: Exact/' '/^\*UIConstraints.*A3/d'; do
  [[ $(digest "$change") != "$expected" ]] || fail "not seen: $change"
done
for change in 's/^(\*FileVersion: ").*/\19.9"/' 's/PPD Compiler .*/PPD Compiler 9/'; do
  [[ $(digest "$change") == "$expected" ]] || fail "taken for contents: $change"
done

history=$(grep -v '^#' "$here/versions")
[[ $(cut -d' ' -f1 <<<"$history") == "$(cut -d' ' -f1 <<<"$history" | sort -uV)" ]] ||
  fail "ppd/versions does not ascend"
[[ $(cut -d' ' -f2 <<<"$history" | sort | uniq -d) == '' ]] ||
  fail "ppd/versions has the same contents twice"
[[ $(tail -n 1 <<<"$history") == "$("$tool" "$ppds")" ]] ||
  fail "The PPDs are not those that ppd/versions ends with. Where they were to change: raise
the last number of Version in ppd/velka.drv, build, and add this line to ppd/versions
$("$tool" "$ppds")"
((failures == 0))
