#!/usr/bin/env bash
# check-from.sh VELKAVIEW PPDS PAGE.ps: a PDF through the whole chain to pictures.
set -euo pipefail

velkaview=$1
ppds=$2
page=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TMPDIR=$work/tmp
mkdir "$TMPDIR"
failures=0

fail() {
  echo "$*" >&2
  failures=$((failures + 1))
}

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

check_sheet() {
  (cd "$work" && "$velkaview" --from page.pdf --ppd "$ppds/velka-standard.ppd" --dpi 30 \
    --sheet OutputColorType=1,2,3)
  [[ $(head -c 4 "$work/page-sheet.png" | tail -c 3) == PNG ]] || fail "no contact sheet"
  check_clean 'a sheet'
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
check_sheet
check_failure
((failures == 0))
