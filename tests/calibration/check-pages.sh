#!/usr/bin/env bash
# check-pages.sh VELKAVIEW READING PPDS: the calibration pages, printed through the whole
# chain: every mark is on its place to a dot, and settings that are off by so much read as
# the page says.
set -euo pipefail

velkaview=$1
reading=$2
ppds=$3
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
export TMPDIR=$work/tmp
mkdir "$TMPDIR"
cd "$work"

decoder() { if [[ $1 == standard ]]; then echo standard; else echo orlo-back; fi; }

# print_page KIND MODEL OPTIONS [FILE]: leaves FILE, stream.prn where not stated.
print_page() {
  "$velkaview" --from "$1.pdf" --ppd "$ppds/velka-$2.ppd" --stats --save "${4:-stream.prn}" \
    --options "$3" >/dev/null 2>&1 || fail "$*: not printed"
}

# on_place KIND MODEL OPTIONS [PAGE-OPTIONS]: all marks where the page has them; page and
# print are made with PAGE-OPTIONS where stated.
on_place() {
  local said
  print_page "$1" "$2" "${4:-PageSize=80x200mm} $3"
  said=$("$reading" marks "$1" "$(decoder "$2")" stream.prn ${4:+"$ppds/velka-$2.ppd" "$4"} 2>&1) ||
    fail "$1 $2 $3 ${4:-}: $said"
}

# says WANTED COMMAND...
says() {
  local wanted=$1 said
  shift
  said=$("$reading" "$@" 2>&1) || fail "$*: $said"
  [[ $said == "$wanted" ]] || fail "$*: $said, not $wanted"
}

make_pages() {
  local kind
  for kind in registration position tones colours; do
    "$velkaview" --calibration "$kind"
    "$velkaview" --calibration "$kind" --ppd "$ppds/velka-standard.ppd" \
      --options PageSize=80x200mm -o ppd.pdf
    cmp <(pdftoppm -r 180 "$kind.pdf") <(pdftoppm -r 180 ppd.pdf) ||
      fail "$kind: the PPD's defaults are not those of no PPD"
    pdfinfo "$kind.pdf" | grep -q '^Page size: *226.7[0-9]* x 566.9[0-9]* pts' ||
      fail "$kind: not 80 x 200 mm"
  done
}

# refuses WANTED OPTIONS: a page that would tell nothing.
refuses() {
  local said status=0
  said=$("$velkaview" --calibration tones --ppd "$ppds/velka-orlo.ppd" --options "$2" \
    -o refused.pdf 2>&1) || status=$?
  [[ $status == 2 && $said == *"$1"* && ! -e refused.pdf ]] || fail "$2: $status, $said"
}

check_refusals() {
  refuses '57x200mm is too small for this page' PageSize=57x200mm
  refuses 'one of the inks does not print' OutputColorType=Black
  refuses 'did you mean RedMinValue?' RedMinValu=90
}

check_registration() {
  on_place registration standard 'Resolution=360dpi DotPlacement=Exact'
  says 'all numbers are right' registration standard stream.prn
  print_page registration standard 'Resolution=360dpi DotPlacement=Exact'
  says 'all numbers are right' registration standard stream.prn
  on_place registration orlo 'Resolution=360dpi DotPlacement=Exact'
  says 'all numbers are right' registration orlo-back stream.prn
}

# Offsets of so many tenths read as what takes them back.
check_position() {
  local placement
  on_place position standard 'DotPlacement=Exact'
  says '0 0' position standard stream.prn
  on_place position orlo ''
  "$velkaview" --calibration position --ppd "$ppds/velka-orlo.ppd" --options PageSize=A4
  on_place position orlo DotPlacement=Exact PageSize=A4
  "$velkaview" --calibration position
  for placement in Original Exact; do
    print_page position standard "PageSize=80x200mm DotPlacement=$placement HorizontalOffset=Left
      HorizontalOffsetValue=2.5 VerticalOffsetValue=1"
    says '25 -10' position standard stream.prn
  done
  print_page position orlo 'PageSize=80x200mm HorizontalOffsetValue=1 VerticalOffset=Up
    VerticalOffsetValue=4.5'
  says '-10 45' position orlo-back stream.prn
}

# What a patch promises is what its value prints, on the original stream too.
check_tones() {
  local placement=DotPlacement=Exact
  on_place tones standard "$placement"
  cp stream.prn before.prn
  print_page tones standard "PageSize=80x200mm $placement BrightnessBlack=125 LevelsRed=30" after.prn
  "$reading" tones standard BrightnessBlack 125 before.prn after.prn || fail 'BrightnessBlack'
  "$reading" tones standard LevelsRed 30 before.prn after.prn || fail 'LevelsRed'
  print_page tones standard 'PageSize=80x200mm'
  print_page tones standard 'PageSize=80x200mm LevelsBlack=20 ContrastRed=60' after.prn
  "$reading" tones standard LevelsBlack 20 stream.prn after.prn || fail 'LevelsBlack'
  "$reading" tones standard ContrastRed 60 stream.prn after.prn || fail 'ContrastRed'
  "$reading" tones standard ContrastRed 140 stream.prn after.prn 2>/dev/null &&
    fail 'another value passes, too'
  return 0
}

# Bounds other than those that the page is made for read as they are.
check_colours() {
  on_place colours standard 'DotPlacement=Exact'
  says 'RedMinValue=130 GreenMaxValue=225 BlueMaxValue=225' colours standard stream.prn
  print_page colours standard 'PageSize=80x200mm DotPlacement=Exact RedMinValue=160
    GreenMaxValue=100 BlueMaxValue=50'
  says 'RedMinValue=160 GreenMaxValue=100 BlueMaxValue=50' colours standard stream.prn
  "$velkaview" --calibration colours --ppd "$ppds/velka-orlo.ppd" \
    --options 'PageSize=A4 GreenMaxValue=150'
  on_place colours orlo '' 'PageSize=A4 GreenMaxValue=150'
}

make_pages
check_refusals
check_registration
check_position
check_tones
check_colours
((failures == 0))
