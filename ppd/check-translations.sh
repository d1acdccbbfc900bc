#!/usr/bin/env bash
# check-translations.sh PPDS: every text of the PPDs is there in every language, and the
# tool that says so finds what is not.
set -euo pipefail

ppds=$1
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tool=$here/../tools/translations.sh
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../tests/support/checks.sh"

# found WANTED-TEXT SED-SCRIPT: the German texts, spoiled by a script.
found() {
  local said
  cp "$here"/po/*.po "$work"
  sed -i -E "$2" "$work/de.po"
  if said=$("$tool" "$ppds" "$work"); then fail "$2 passed"; fi
  [[ $said == "$1" ]] || fail "$2: $said"
}

for ppd in "$ppds"/*.ppd; do
  grep -qx '\*cupsLanguages: "en de es fr it ja pl pt ru zh_CN"' "$ppd" ||
    fail "$ppd: $(grep '^\*cupsLanguages' "$ppd")"
  # What a text does not come through is seen by its absence, too.
  cupstestppd -q -I filters -W sizes "$ppd" || fail "$ppd: a reader complains"
done
"$tool" "$ppds" "$here/po" || fail 'texts are missing'

long=$(printf 'a%.0s' {1..81})
found 'de: missing: Black only' '/^msgid "Black only"$/,+1d'
found 'de: missing: Black only' '/^msgid "Black only"$/{n;s/".*"/""/}'
found 'de: missing: Black only' '/^msgid "Black only"$/i #, fuzzy'
found 'de: missing: Black only
de: no PPD has: Green only' 's/^msgid "Black only"$/msgid "Green only"/'
found "de: longer than 80 bytes: $long" "/^msgid \"Black only\"\$/{n;s/\".*\"/\"$long\"/}"
found 'de: longer than 40 bytes: Farben Farben Farben Farben Farben Farben' \
  's/^msgstr "Farben"$/msgstr "Farben Farben Farben Farben Farben Farben"/'
found 'de: a colon or a slash: nur: Schwarz' '/^msgid "Black only"$/{n;s/".*"/"nur: Schwarz"/}'
((failures == 0))
