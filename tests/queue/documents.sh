# The documents that are printed, made by Ghostscript below $work. Page N of each has
# a black box of N inches by one and below it a red one, on whole inches from the top
# left corner of the paper, so that their dots are known at any resolution. Sourced.
# The parts of the test use each other's names.
# shellcheck shell=bash disable=SC2154

boxes() {
  cat <<'TEXT'
%!PS
<< /PageSize [595 842] >> setpagedevice
% inches from the left, from the top, across, down
/box { /h exch def /w exch def /y exch def /x exch def
  x 72 mul 842 y h add 72 mul sub w 72 mul h 72 mul rectfill } def
/page { /n exch def 0 setgray 1 1 n 1 box 1 0 0 setrgbcolor 1 3 n 1 box showpage } def
TEXT
  printf '%d page\n' "$@"
}

# ghostscript DEVICE OUTPUT [ARGUMENT...]: PostScript from standard input.
ghostscript() {
  local device=$1 output=$2
  shift 2
  gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE="$device" "$@" -o "$output" - >"$work/gs.log" ||
    die "Ghostscript could not make $output: $(cat "$work/gs.log")"
}

# A page of grey from edge to edge: more bytes than all pipes of a job hold.
grey_page() {
  cat <<'TEXT'
%!PS
<< /PageSize [595 842] >> setpagedevice
0.5 setgray 0 0 595 842 rectfill showpage
TEXT
}

make_documents() {
  boxes 1 2 3 >"$work/three.ps"
  ghostscript pdfwrite "$work/three.pdf" <"$work/three.ps"
  boxes 2 | ghostscript pdfwrite "$work/two-inch.pdf"
  boxes 2 | ghostscript png16m "$work/two-inch.png" -r180
  boxes 2 | ghostscript jpeg "$work/two-inch.jpg" -r180
  grey_page | ghostscript pdfwrite "$work/grey.pdf"
  { grey_page && grey_page && grey_page; } | ghostscript pdfwrite "$work/grey3.pdf"
  # Not white, and of three pages of 60 lines at most.
  seq -f 'line %g of a plain text' 150 >"$work/lines.txt"
  head -c 300 "$work/three.pdf" >"$work/broken.pdf"
  chmod 644 "$work"/*.pdf "$work"/*.ps "$work"/*.png "$work"/*.jpg "$work"/*.txt
}
