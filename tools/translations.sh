#!/usr/bin/env bash
# translations.sh PPDS TRANSLATIONS: which texts of the PPDs in a folder the .po files of
# another lack, or have in a form that does not come through. Says nothing and succeeds
# where all is well.
set -euo pipefail

ppds=$1 translations=$2
# Lengths are in bytes.
export LC_ALL=C

# What a dialog shows of a PPD: groups, options, choices, presets, states; before each the bytes that
# a reader has for it. Numbers stay numbers.
texts() {
  sed -nE -e '/^\*(PageRegion|ImageableArea|PaperDimension) /d' \
    -e 's|^\*OpenGroup: [^/]*/(.*)$|40 \1|p' \
    -e 's|^\*[A-Z][A-Za-z]* [^ :/]*/([^:]*):.*|80 \1|p' \
    -e 's|^\*cupsIPPReason [^ :/]*/([^:]*):.*|80 \1|p' "$ppds"/*.ppd | grep '[A-Za-z]' | sort -u
}

# A reader takes a text to end at a colon.
faults() {
  texts | awk -v language="$1" '
    function say(what) { print language ": " what; faults = 1 }
    function quoted(line) { sub(/^[a-z]+ "/, "", line); sub(/"$/, "", line); return line }
    FNR == NR { limit[substr($0, 4)] = substr($0, 1, 2) + 0; next }
    /^#,.*fuzzy/ { fuzzy = 1 }
    /^msgid / { id = quoted($0) }
    /^msgstr / {
      text = quoted($0)
      if (id != "" && text != "" && !fuzzy) {
        if (id in limit && length(text) > limit[id]) say("longer than " limit[id] " bytes: " text)
        if (text ~ /:/ || (text ~ /\// && id !~ /\//)) say("a colon or a slash: " text)
        if (!(id in limit)) say("no PPD has: " id)
        known[id]
      }
      fuzzy = 0
    }
    END {
      for (id in limit) if (!(id in known)) say("missing: " id)
      exit faults
    }' - "$2" | sort
}

status=0
[[ -n $(texts) ]] || { echo "there are no PPDs in $ppds"; exit 1; }
for file in "$translations"/*.po; do
  language=${file##*/}
  faults "${language%.po}" "$file" || status=1
done
for language in $(sed -n 's/^\*cupsLanguages: "en \(.*\)"$/\1/p' "$ppds"/*.ppd | tr ' ' '\n' | sort -u); do
  [[ -e $translations/$language.po ]] || { echo "no $language.po" && status=1; }
done
exit "$status"
