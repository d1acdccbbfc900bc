#!/usr/bin/env bash
# check-from.sh VELKAVIEW PPDS PAGE.ps RASTOVELKA FILTERS: a PDF through the whole chain
# to pictures. FILTERS is the way from an installation's commands to its filters.
set -euo pipefail

velkaview=$1
ppds=$2
page=$3
rastovelka=$4
filters=$5
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
export TMPDIR=$work/tmp
mkdir "$TMPDIR"

value() { sed -n "s/^$1 *//p" <<<"$2"; }

stats() { "$velkaview" --stats --from "$work/page.pdf" --ppd "$ppds/$1.ppd" --options "$2"; }

# Nothing of a run may be left behind, in its folder or beside it.
check_clean() {
  [[ -z $(ls -A "$TMPDIR") ]] || fail "$1 left $(ls "$TMPDIR")"
  local copies
  copies=$(find /tmp -maxdepth 1 -name 'VK_TEMP_CUPS_velkaview-*' 2>/dev/null)
  [[ -z $copies ]] || fail "$1 left $copies"
}

check_model() {
  local said
  said=$(stats "$1" '')
  [[ $(value model "$said") == "$2" ]] || fail "$1: $said"
  [[ $(value pages "$said") == 1 ]] || fail "$1: $said"
  (($(value 'red dots' "$said") > 0)) || fail "$1: no red: $said"
  check_clean "$1"
}

check_options() {
  local said
  said=$(stats velka-standard 'OutputColorType=1')
  [[ $(value 'red dots' "$said") == 0 ]] || fail "black only came out with red: $said"
  # From the PDF copy: the page is drawn by another program, but holds both inks.
  said=$(stats velka-standard 'PdfPreprocess=yes')
  (($(value 'black dots' "$said") > 0)) || fail "from the PDF copy: $said"
  check_clean 'a run with options'
}

# The paper of a page that is turned by a quarter, by either name of the choice.
check_turned() {
  local turn
  echo '%!PS
72 400 36 36 rectfill showpage' | ps2pdf -sPAPERSIZE=a4 - "$work/box.pdf"
  for turn in 90 1; do
    "$velkaview" --from "$work/box.pdf" --ppd "$ppds/velka-standard.ppd" \
      --options "AnticlockwiseRotate=$turn" -o "$work/turned-$turn.png"
  done
  cmp "$work/turned-90.png" "$work/turned-1.png" || fail 'a turned page has two pictures'
}

# Pixels of a picture that are red, in its left and in its right half.
red_halves() {
  local width
  width=$(head -c 20 "$1" | sed -n '2s/ .*//p')
  tail -n +4 "$1" | od -An -v -tu1 -w3 | awk -v width="$width" '
    $1 - $2 > 60 && $1 - $3 > 60 { if ((NR - 1) % width < width / 2) left++; else right++ }
    END { print left + 0, right + 0 }'
}

# Black alone on the left, red alone on the right.
check_sheet() {
  local left right
  "$velkaview" --from - --ppd "$ppds/velka-standard.ppd" --sheet OutputColorType=1,2 \
    -o "$work/sheet.pdf" <"$work/page.pdf"
  pdftoppm -r 90 -singlefile "$work/sheet.pdf" "$work/sheet"
  read -r left right < <(red_halves "$work/sheet.ppm")
  ((left == 0 && right > 1000)) || fail "red on the sheet: $left pixels left, $right right"
  check_clean 'a sheet'
}

# refused WANTED-TEXT OPTION...
refused() {
  local status=0 said
  said=$("$velkaview" --from "$work/page.pdf" --ppd "$ppds/velka-standard.ppd" \
    -o "$work/refused.png" "${@:2}" 2>&1) || status=$?
  [[ $status == 2 && $said == *"$1"* && $said != *"BlackAndRed, 3"* && ! -e $work/refused.png ]] ||
    fail "${*:2}: status $status, '$said'"
}

check_misspelt() {
  local said
  refused "RedMinValue has no choice '91'; it has 0, 5, 10" --options RedMinValue=91
  refused "OutputColorType has no choice 'Blue'; it has BlackAndRed, Black, Red" \
    --options OutputColorType=Blue
  refused "RedMinValue has no choice '77777'" --sheet RedMinValue=90,77777
  refused "no option Nope; it has " --sheet Nope=1,2
  refused "no option RedMinValeu; did you mean RedMinValue? It has " --sheet RedMinValeu=90
  refused "knows the option RedMinValeu; did you mean RedMinValue?" --options RedMinValeu=90
  refused "knows the option numberup; did you mean number-up?" --options 'RedMinValue=90 numberup=2'
  # What is no slip may be some other filter's.
  said=$(stats velka-standard 'Zebra=90 number-up=2 PageSize=Custom.100x200mm' 2>&1 >"$work/numbers")
  grep -q "knows the option Zebra$" <<<"$said" || fail "not warned of: '$said'"
  [[ $said != *number-up* ]] || fail "warned: '$said'"
  [[ $(value pages "$(<"$work/numbers")") == 1 ]] || fail "a warning stopped the run"
}

# Installed under any prefix, the filter beside the command is the one that runs.
check_installed() {
  mkdir -p "$work/tree/bin"
  cp "$velkaview" "$work/tree/bin/velkaview"
  [[ $filters != /* ]] || return 0
  mkdir -p "$work/tree/bin/$filters"
  printf '#!/bin/sh\necho used >%q\nexec %q "$@"\n' "$work/used" "$rastovelka" \
    >"$work/tree/bin/$filters/rastovelka"
  chmod +x "$work/tree/bin/$filters/rastovelka"
  velkaview=$work/tree/bin/velkaview stats velka-standard '' >/dev/null
  [[ -e $work/used ]] || fail 'an installed velkaview passed its own filter over'
}

# The failing step is named, and no picture is left.
check_failure() {
  local status=0 said
  echo 'no PDF' >"$work/text.pdf"
  said=$(cd "$work" && "$velkaview" --from text.pdf --ppd "$ppds/velka-standard.ppd" 2>&1) || status=$?
  [[ $status == 1 && $said == *text.pdf* ]] || fail "a text: status $status, '$said'"
  [[ ! -e $work/text-1.png ]] || fail 'a text came out as a picture'
  status=0
  said=$("$velkaview" --from "$work/none.pdf" --ppd "$ppds/velka-standard.ppd" 2>&1) || status=$?
  [[ $status == 1 && $said == *"none.pdf: No such file"* ]] || fail "no file: $status, '$said'"
  check_clean 'a failure'
}

ps2pdf -sPAPERSIZE=a4 "$page" "$work/page.pdf"
check_model velka-standard standard
check_model velka-orlo orlo-back
check_options
check_turned
check_sheet
check_misspelt
check_installed
check_failure
((failures == 0))
