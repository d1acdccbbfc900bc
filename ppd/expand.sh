#!/bin/sh
# expand.sh SOURCES FOLDER: copies the PPDs' description to a folder that exists and writes
# out its runs of numbers, because ppdc has no loops. A run is a line of a .defs file,
#   Choice from 0 to 80 by 5
# and means Choice 0 "0", Choice 5 "5" and so on to 80.
set -eu

sources=$1 folder=$2
mkdir -p "$folder/velka"
cp "$sources/velka.drv" "$folder"
for file in "$sources"/velka/*.defs; do
  # Numbers have a decimal point whatever the locale.
  LC_ALL=C awk '
    function refuse(what) {
      printf "%s:%d: %s: %s\n", FILENAME, FNR, what, $0 >"/dev/stderr"
      exit 1
    }
    $2 != "from" { print; next }
    {
      if ($4 != "to" || $6 != "by" || $7 <= 0) refuse("not a run of numbers")
      steps = ($5 - $3) / $7
      if (steps < 0 || steps != int(steps)) refuse("the steps do not end on the last number")
      for (i = 0; i <= steps; i++) {
        number = $3 + i * $7
        text = number
        if ($8 == "as") { format = $9; gsub(/_/, " ", format); text = number "/" sprintf(format, number * $10 + $11) }
        printf "  %s \"%s\" \"%s\"\n", $1, text, number
      }
    }' "$file" >"$folder/velka/${file##*/}"
done
