#!/usr/bin/env bash
# check-placement.sh VELKAVIEW READING PPDS PAGE.ps: the placement page, printed in both
# placements through the whole chain, tells them apart on the standard model and not on
# the Orlo model; and who looks at the streams alone is told of the original's flaws only.
set -euo pipefail

velkaview=$1
reading=$2
ppds=$3
page=$4
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
export TMPDIR=$work/tmp
mkdir "$TMPDIR"
cd "$work"

check_file() {
  local facts
  "$velkaview" --calibration placement
  "$velkaview" --calibration placement -o - >again.pdf
  cmp placement.pdf again.pdf || fail 'the page is another one each time'
  facts=$(pdfinfo placement.pdf)
  grep -q '^Pages: *1$' <<<"$facts" || fail "not one page: $facts"
  grep -q '^Page size: *226.772 x 566.929 pts' <<<"$facts" || fail "not 80 x 200 mm: $facts"
}

# print_page MODEL PLACEMENT OPTIONS: leaves a stream.prn
print_page() {
  "$velkaview" --from placement.pdf --ppd "$ppds/velka-$1.ppd" --stats --save stream.prn \
    --options "DotPlacement=$2 $3" >/dev/null 2>&1 || fail "$*: not printed"
}

# reads MODEL PLACEMENT WANTED [OPTIONS]: what the fields say, line by line.
reads() {
  local said decoder=standard
  [[ $1 == standard ]] || decoder=orlo-back
  print_page "$1" "$2" "${4:-PageSize=80x200mm}"
  said=$("$reading" "$decoder" stream.prn) || fail "$*: cannot be read"
  [[ ${4:-} == '' ]] || said=$(cut -d' ' -f1-2 <<<"$said")
  [[ $said == "$3" ]] || fail "$*: reads $said"
}

check_fields() {
  # 28 rows are 3.95 mm; the ladder has 24 bands, and loses a row at each of 23 steps.
  reads standard 0 $'1 B 28\n2 B 1\n3 B 553'
  reads standard 1 $'1 A 0\n2 A 2\n3 A 576'
  reads orlo 0 $'1 A 0\n2 A 2\n3 A 576'
  reads orlo 1 $'1 A 0\n2 A 2\n3 A 576'
}

# Where the paper is another, edges fall into dots; the letters stay.
check_other_paper() {
  local size
  for size in A4 Letter A5; do
    reads standard 0 $'1 B\n2 B\n3 B' "PageSize=$size"
    reads standard 1 $'1 A\n2 A\n3 A' "PageSize=$size"
  done
}

# warned STREAM MODEL: what is said of its pages.
warned() { "$velkaview" --model "$2" -o page.png "$1" 2>&1; }

# tells OPTIONS DOCUMENT WANTED: of the stream alone, in the original placement one line;
# in the exact one none.
tells() {
  local said model=standard
  "$velkaview" --from "$2" --ppd "$ppds/velka-standard.ppd" --stats --save 0.prn \
    --options "DotPlacement=0 $1" >/dev/null 2>&1
  "$velkaview" --from "$2" --ppd "$ppds/velka-standard.ppd" --stats --save 1.prn \
    --options "DotPlacement=1 $1" >exact.txt 2>&1
  said=$(warned 0.prn "$model")
  [[ $said == "velkaview: 0.prn: page 1 (offset 0): "*"$3"* && $(wc -l <<<"$said") == 1 ]] ||
    fail "$2 $1: '$said'"
  said=$(warned 1.prn "$model")
  [[ -z $said ]] || fail "$2 $1, exact: '$said'"
  ! grep '^velkaview:' exact.txt || fail "$2 $1, exact: told while printing"
}

# Black to the page's end behind a red line: the way that red made drives it off the form.
make_long_page() {
  cat >long.ps <<'PS'
%!PS
<< /PageSize [595 842] >> setpagedevice
60 700 400 30 rectfill
1 0 0 setrgbcolor 60 300 400 20 rectfill
0 setgray 60 30 400 200 rectfill
showpage
PS
  ps2pdf long.ps long.pdf
}

check_warnings() {
  ps2pdf -sPAPERSIZE=a4 "$page" demo.pdf
  make_long_page
  tells PageSize=80x200mm placement.pdf 'a gap in the print, 3.95 mm at'
  tells '' demo.pdf 'printed over others'
  tells Resolution=360dpi demo.pdf 'gaps in the print'
  tells '' long.pdf 'beyond its form of 296.3 mm'
  # On the Orlo model the page loses nothing.
  print_page orlo 0 PageSize=80x200mm
  [[ -z $(warned stream.prn orlo-back) ]] || fail "Orlo: $(warned stream.prn orlo-back)"
}

check_file
check_fields
check_other_paper
check_warnings
((failures == 0))
