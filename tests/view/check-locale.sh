#!/usr/bin/env bash
# check-locale.sh VELKAVIEW PPDS PAGE.ps: all that reads or writes numbers does so with
# a point where the user's language has a comma. Skipped (77) where no such locale can
# be had.
set -euo pipefail

velkaview=$1
ppds=$2
page=$3
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
export TMPDIR=$work/tmp
mkdir "$TMPDIR"
cd "$work"

# The locale is made for this test alone, unless the system has it.
make_locale() {
  unset LC_ALL LANGUAGE
  export LANG=de_DE.UTF-8
  [[ $(locale decimal_point 2>/dev/null) == , ]] && return
  mkdir locales
  if command -v localedef >/dev/null &&
    localedef -i de_DE -f UTF-8 "$work/locales/de_DE.UTF-8" 2>said.txt; then
    export LOCPATH=$work/locales
    # The C library itself forgets to free what it makes of LOCPATH.
    export ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0
  fi
  [[ $(locale decimal_point 2>/dev/null) == , ]] && return
  echo "skipped: no locale de_DE.UTF-8, and none could be made: $(cat said.txt 2>/dev/null)"
  exit 77
}

in_english() { env -u LOCPATH LC_ALL=C.UTF-8 "$@"; }

# same NAME ARGUMENT...: what is told and written is the same in both.
same() {
  local name=$1
  shift
  "$velkaview" "$@" -o german.png >german.txt 2>german.err || fail "$name: status $?, $(<german.err)"
  in_english "$velkaview" "$@" -o english.png >english.txt 2>english.err || fail "$name: in English"
  sed -i s/german.png/english.png/ german.txt
  cmp german.txt english.txt || fail "$name: other numbers"
  cmp german.err english.err || fail "$name: other messages"
  cmp german.png english.png || fail "$name: another picture"
}

same_text() {
  "$velkaview" "$@" >german.txt 2>german.err || fail "$*: status $?, $(<german.err)"
  in_english "$velkaview" "$@" >english.txt 2>english.err || fail "$*: in English"
  grep -q '[0-9]\.[0-9]' german.txt || fail "$*: no number with a point"
  cmp german.txt english.txt || fail "$*: other numbers"
  cmp german.err english.err || fail "$*: other messages"
}

make_locale
ps2pdf -sPAPERSIZE=a4 "$page" page.pdf
for _ in $(seq 30); do echo 'Ein Text mit Umlauten: äöü, 3,50 EUR.'; done >letter.txt
from=(--from page.pdf --ppd "$ppds/velka-standard.ppd")
same 'a page' "${from[@]}" --dpi 62.5 --width 209.5
same 'a page of another size' "${from[@]}" --options 'PageSize=Custom.100.5x200.25mm' --scale 0.35
same 'pins' "${from[@]}" --pins --dpi 90.5
same 'a text' --from letter.txt --ppd "$ppds/velka-orlo.ppd" --dpi 60
same 'a sheet' "${from[@]}" --sheet LevelsRed=10..20/5 --dpi 30.5
"$velkaview" "${from[@]}" --save job.prn -o x.pdf 2>/dev/null
in_english "$velkaview" --ppd "$ppds/velka-standard.ppd" job.prn -o y.pdf 2>/dev/null
[[ $(pdfinfo x.pdf | grep 'Page size') == $(pdfinfo y.pdf | grep 'Page size') ]] || fail 'a PDF'
same_text --stats --head-speed 123.5 --feed-speed 99.5 --model standard job.prn
same_text --list --model standard job.prn
same_text --diff --tone --model standard job.prn job.prn
# A comma is no point, whatever the language.
status=0
"$velkaview" --dpi 62,5 job.prn 2>german.err || status=$?
[[ $status == 2 ]] || fail "62,5 dpi: status $status"
((failures == 0))
