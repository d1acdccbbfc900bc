#!/bin/sh
# expand.sh SOURCES FOLDER: copies the PPDs' description to a folder that exists and writes
# out what ppdc has no words for. A run of numbers is a line of a .defs file,
#   Choice from 0 to 80 by 5
# and means Choice 0 "0", Choice 5 "5" and so on to 80. A choice that had another name,
#   Choice "Black/Black only" "1" was 1
# keeps that one, too; see oldnames.defs.
set -eu

sources=$1 folder=$2
mkdir -p "$folder/velka"
cp -r "$sources/velka.drv" "$sources/po" "$folder"
for file in "$sources"/velka/*.defs; do
  # Numbers have a decimal point whatever the locale.
  LC_ALL=C awk '
    function refuse(what) {
      printf "%s:%d: %s: %s\n", FILENAME, FNR, what, $0 >"/dev/stderr"
      exit 1
    }
    $1 == "Option" { split($2, option, /["\/]/) }
    NF > 2 && $(NF - 1) == "was" {
      was = $NF
      sub(/ was [^ ]*$/, "")
      print
      sub(/^ *\*?Choice "[^\/]*\//, "  Choice \"" was "/")
      print
      print "  UIConstraints \"*OldNames False *" option[2] " " was "\""
      next
    }
    $2 != "from" { print; next }
    {
      if ($4 != "to" || $6 != "by" || $7 <= 0) refuse("not a run of numbers")
      steps = ($5 - $3) / $7
      if (steps < 0 || steps != int(steps)) refuse("the steps do not end on the last number")
      for (i = 0; i <= steps; i++) {
        number = $3 + i * $7
        printf "  %s %s \"%s\"\n", $1, number, number
      }
    }' "$file" >"$folder/velka/${file##*/}"
done
