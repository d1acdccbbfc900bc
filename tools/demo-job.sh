#!/usr/bin/env bash
# demo-job.sh DOCUMENT INKS: the demo's jobs, which leave their traces in /tmp, so demo.sh
# gives them one of their own. Everything to be kept goes to demo-output. With INKS "both"
# the page must come out in both.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/common.sh
source tools/common.sh

document=$1 inks=$2
output=demo-output
stream=$output/commands.escp
exact=$output/exact.escp
filter=build/release/filter/rastovelka
velkaview=build/release/view/velkaview
log=$output/velka.log
# The one option whose default leaves no line in the log. 17 (0.51) is the choice
# next to the filter's own 0.50, so the print hardly changes.
option=LevelsRed=17
# CUPS counts its jobs from 1, so this one meets no real job's files.
job=(0 demo demo 1)
# The log's first words, the first page's report and every option as it was read.
log_lines=(
  "log4z thread started!" "Start Page 1 "
  "Init sHrzDir:" "Init sHrzOffset:" "Init sVtcDir:" "Init sVtcOffset:"
  "Init OutputColorType:" "Init ColorRangeUseFor:"
  "Init minColorOffset red:" "Init maxColorOffset red:"
  "Init SplitBlackRed:" "Init sRotation:"
  "Init nBrightness red:" "Init nBrightness black:"
  "Init Contrast red:" "Init Contrast black:"
  "Init sLevels red: 51" "Init sLevels black:"
)

find_filters() {
  local folder
  folder=$(cups-config --serverbin)/filter
  [[ -x $folder/pdftopdf ]] || die "no pdftopdf in $folder: is cups-filters-core-drivers whole?"
  [[ -x $folder/gstoraster ]] || die "no gstoraster in $folder: is cups-filters whole?"
  echo "$folder"
}

# print_document FILTERS OPTIONS STREAM: what each filter says stays in a log of its own.
print_document() {
  local filters=$1 options=$2 stream=$3 status
  export PPD=$PWD/build/release/ppd/velka-standard.ppd
  export CONTENT_TYPE=application/pdf FINAL_CONTENT_TYPE=application/vnd.cups-raster
  "$filters/pdftopdf" "${job[@]}" "$options" <"$document" 2>"$output/pdftopdf.log" |
    "$filters/gstoraster" "${job[@]}" "$options" 2>"$output/gstoraster.log" |
    "$filter" "${job[@]}" "$options" >"$stream" 2>"$output/rastovelka.log" && return
  status=("${PIPESTATUS[@]}")
  tail -n 5 "$output"/{pdftopdf,gstoraster,rastovelka}.log >&2
  die "the chain failed: pdftopdf ${status[0]}, gstoraster ${status[1]}, rastovelka ${status[2]};" \
    "their last words are above"
}

hex() { od -An -v -tx1 | tr -d ' \n'; }

value() { sed -n "s/^$1 *//p" "$output/stats.txt"; }

check_stream() {
  [[ $(head -c 6 "$stream" | hex) == 1b401b321b43 ]] ||
    die "$stream does not begin with the start-of-document commands"
  "$velkaview" --stats "$stream" >"$output/stats.txt" || die "$stream is no sound command stream"
  (($(value pages) > 0)) || die "no page of $document has any ink, so nothing was printed"
  [[ $(tail -c 3 "$stream" | hex) == 0c1b40 ]] ||
    die "$stream does not end with a form feed and the end-of-document command"
}

# Only blocks of an ink hold dots of it.
check_both_inks() {
  local ink
  for ink in black red; do
    (($(value "$ink dots") > 0)) || die "the demo page came out without any $ink"
  done
}

# view_page PICTURE ARGUMENT...
view_page() {
  local picture=$1
  shift
  "$velkaview" "$@" -o "$output/$picture" || die "velkaview could not draw $output/$picture"
}

# The Orlo model's job through velkaview's own chain, which ends in the same filter.
view_orlo() {
  local orlo=(--ppd build/release/ppd/velka-orlo.ppd)
  view_page orlo.png "${orlo[@]}" --from "$document"
  # The one in the README, small enough for it.
  view_page demo-page.png "${orlo[@]}" --from "$document" --page 1 --dpi 60
}

# The page in its exact placement, of which nothing is to be told.
view_exact() {
  local said=$output/exact.log result=0
  (view_page exact.png --ppd build/release/ppd/velka-standard.ppd "$exact") 2>"$said" || result=$?
  cat "$said" >&2
  ((result == 0)) || exit "$result"
  [[ $inks != both || ! -s $said ]] || die "the exact page has flaws: see $said"
  rm "$said"
}

check_log() {
  local line
  for line in "${log_lines[@]}"; do
    grep -qF -- "$line" "$log" || die "$log lacks the line '$line'"
  done
}

say "Printing $document (standard model, 180 x 180 dpi)"
echo "The job sets the option $option, so that the log names every option."
view_orlo
filters=$(find_filters)
print_document "$filters" "$option DotPlacement=Exact" "$exact"
# Last, because every job empties the log.
print_document "$filters" "$option" "$stream"
cp /tmp/velka.log "$log" || die "the filter left no readable log"
check_stream
[[ $inks != both ]] || check_both_inks
check_log
view_exact
view_page standard.png --ppd build/release/ppd/velka-standard.ppd "$stream"
