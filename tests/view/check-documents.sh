#!/usr/bin/env bash
# check-documents.sh VELKAVIEW PPDS PAGE.ps: whatever the print system takes becomes a
# stream; which of its pages; where the stream is kept; whose PPDs; which tools.
set -euo pipefail

velkaview=$1
ppds=$2
page=$3
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
export TMPDIR=$work/tmp
mkdir "$TMPDIR"
cd "$work"

orlo() { "$velkaview" --ppd "$ppds/velka-orlo.ppd" "$@"; }

value() { sed -n "s/^$1 *//p" <<<"$2"; }

# Six pages with their numbers; the third lies on its side, the fourth is white.
make_pages() {
  cat >pages.ps <<'PS'
%!PS
/Helvetica findfont 80 scalefont setfont
1 1 6 {
  /n exch def
  << /PageSize n 3 eq { [842 595] } { [595 842] } ifelse >> setpagedevice
  n 4 ne {
    100 300 moveto (page ) show n 10 string cvs show
    1 0 0 setrgbcolor n 30 mul 100 60 60 rectfill
  } if
  showpage
} for
PS
  ps2pdf pages.ps pages.pdf
}

# A document prints black at least, and leaves nothing behind.
prints() {
  local said
  said=$(orlo --stats --from "$@" 2>errors) || fail "$1: status $?, $(<errors)"
  (($(value 'black dots' "$said") > 1000)) || fail "$1: '$said'"
  [[ -z $(ls -A "$TMPDIR") ]] || fail "$1 left $(ls "$TMPDIR")"
  [[ -z $(find /tmp -maxdepth 1 -name 'VK_TEMP_CUPS_velkaview-*') ]] || fail "$1 left its copy"
}

check_kinds() {
  ps2pdf -sPAPERSIZE=a4 "$page" page.pdf
  pdftoppm -r 90 -png -singlefile page.pdf picture
  pdftoppm -r 90 -jpeg -singlefile page.pdf picture
  cp picture.png 'a picture without an ending'
  cp "$page" page.ps
  for _ in $(seq 40); do echo 'The quick brown fox jumps over the lazy dog.'; done >letter.txt
  gzip -k page.pdf
  # So small that the print system does not see that it is compressed.
  printf '%%!PS\n100 300 100 100 rectfill showpage\n' | gzip >small.ps.gz
  local kind
  for kind in page.pdf page.ps picture.png picture.jpg 'a picture without an ending' letter.txt \
    page.pdf.gz small.ps.gz; do
    prints "$kind"
  done
  prints picture.png --options PdfPreprocess=yes
  prints page.ps --options PdfPreprocess=yes
  prints letter.txt --options document-format=text/plain
  prints - <letter.txt
}

# The same stream as from the PDF it was made of.
check_raster() {
  local filters
  filters=$(cups-config --serverbin)/filter
  PPD=$ppds/velka-orlo.ppd "$filters/pdftopdf" 1 u t 1 '' <pages.pdf 2>/dev/null |
    PPD=$ppds/velka-orlo.ppd FINAL_CONTENT_TYPE=application/vnd.cups-raster \
      "$filters/gstoraster" 1 u t 1 '' >pages.ras 2>/dev/null
  orlo --list --from pages.pdf --page 2 >from-pdf.txt
  orlo --list --from pages.ras --page 2 >from-raster.txt
  cmp from-pdf.txt from-raster.txt || fail 'page 2 of a raster is not that of its PDF'
  refused 1 'there is no page 9; the document as it is printed has 6' --from pages.ras --page 9
}

# refused STATUS WANTED-TEXT OPTION...
refused() {
  local status=0 said
  said=$(orlo -o refused.png "${@:3}" 2>&1) || status=$?
  [[ $status == "$1" && $said == *"$2"* && ! -e refused.png ]] ||
    fail "${*:3}: status $status, '$said'"
}

check_pages() {
  # Nothing but the page that is wanted is drawn.
  orlo --from pages.pdf --page 3 --progress -o three.png 2>said.txt
  [[ $(grep -c gstoraster said.txt) == 1 && -s three.png ]] || fail "page 3: $(<said.txt)"
  orlo --from pages.pdf --page 5- 2>/dev/null
  [[ -s pages-5.png && -s pages-6.png && ! -e pages-1.png && ! -e pages-7.png ]] ||
    fail "pages 5 on: $(ls)"
  orlo --from pages.pdf -o all.png 2>/dev/null
  # A page alone is the page of the whole; the white one counts, too.
  cmp pages-6.png all-6.png || fail 'page 6 alone is another picture'
  orlo --from pages.pdf --options 'number-up=2 PageSize=A5' --page 2 -o two.png 2>/dev/null
  orlo --from pages.pdf --options 'number-up=2 PageSize=A5' -o sheets.png 2>/dev/null
  cmp two.png sheets-2.png || fail 'the second sheet of two pages alone is another picture'
  refused 1 'there is no page 9' --from pages.pdf --page 9
  # Of the standard model, which sends no white page.
  local status=0 said
  said=$("$velkaview" --ppd "$ppds/velka-standard.ppd" --from pages.pdf --page 4 2>&1) || status=$?
  [[ $status == 1 && $said == *'a page without ink is not sent'* ]] || fail "white: $status, $said"
}

check_save() {
  orlo --from page.pdf --save kept.prn -o kept.png 2>/dev/null
  orlo kept.prn -o again.png 2>/dev/null
  cmp kept.png again.png || fail 'the stream that was kept draws another page'
  orlo --from page.pdf --stats --save second.prn >/dev/null 2>&1
  cmp kept.prn second.prn || fail 'the same page gave another stream'
  cmp kept.prn <(orlo --from page.pdf --save - -o other.png 2>/dev/null) || fail 'to standard output'
}

check_unknown() {
  printf '\001\002\377\003%.0s' $(seq 500) >junk
  refused 1 'junk: cupsfilter failed with status 1: cupsfilter: Unable to determine MIME type of "junk"' \
    --from junk
  : >empty
  refused 1 'empty: ' --from empty
}

check_maker() {
  sed -e 's/^\*Manufacturer:.*/*Manufacturer: "Epson"/' -e 's/rastovelka/rastertoepson/' \
    "$ppds/velka-orlo.ppd" >other.ppd
  local status=0 said
  for use in '--from page.pdf' kept.prn '--stats kept.prn'; do
    status=0
    # shellcheck disable=SC2086
    said=$("$velkaview" --ppd other.ppd $use 2>&1) || status=$?
    [[ $status == 2 && $said == *"other.ppd is Epson's PPD"*--any-ppd* ]] ||
      fail "another maker's PPD, $use: $status, '$said'"
  done
  "$velkaview" --ppd other.ppd --any-ppd --stats kept.prn >/dev/null 2>&1 || fail '--any-ppd'
}

# Nothing but one of the two tools is missing.
check_tools() {
  local tool
  mkdir bin
  for tool in /usr/bin/*; do ln -s "$tool" bin/; done
  for tool in pdftoppm pdfinfo; do
    rm bin/$tool
    PATH=$work/bin refused 1 "$tool is not on the PATH" --from page.pdf --options PdfPreprocess=yes
    ln -s /usr/bin/$tool bin/
  done
}

check_sheet() {
  local said
  said=$(orlo --from pages.pdf --page 6 --sheet BrightnessRed=60..140/40 --by OutputColorType=Black,BlackAndRed \
    --options LevelsRed=17 --dpi 30 -o grid.png 2>/dev/null)
  [[ $(head -n 1 <<<"$said") == 'grid.png: pages.pdf, page 6, velka-orlo.ppd' ]] || fail "said: $said"
  [[ $(wc -l <<<"$said") == 7 ]] || fail "no six variants: $said"
  grep -q '^BrightnessRed=100 (default) OutputColorType=BlackAndRed (default): black [0-9.]* %, red [0-9.]* %' \
    <<<"$said" || fail "no default: $said"
  # Without red its brightness changes nothing.
  [[ $(grep -c 'OutputColorType=Black: .*; the same as BrightnessRed=60 OutputColorType=Black$' <<<"$said") == 2 ]] ||
    fail "not told as the same: $said"
  orlo --from pages.pdf --sheet OutputColorType=Black,BlackAndRed -o - >out.png 2>said.txt
  [[ $(head -c 4 out.png | tail -c 3) == PNG ]] || fail 'a sheet to standard output'
  grep -q '^standard output: pages.pdf, page 1' said.txt || fail "not said: $(<said.txt)"
}

make_pages
check_kinds
check_raster
check_pages
check_save
check_unknown
check_maker
check_tools
check_sheet
((failures == 0))
