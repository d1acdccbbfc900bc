#!/usr/bin/env bash
# check-chain.sh RASTOVELKA VELKAVIEW PPD PAGE.ps
# Options given to a job reach the filter through the system's own filters, with
# the values of their choices, and leave the raster as it was; copies are made once.
set -euo pipefail

filter=$1
velkaview=$2
export PPD=$3
page=$4
filters=$(cups-config --serverbin)/filter
export CONTENT_TYPE=application/pdf FINAL_CONTENT_TYPE=application/vnd.cups-raster
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"

options="HorizontalOffset=1 HorizontalOffsetValue=2.5 VerticalOffset=1 VerticalOffsetValue=10"
options+=" AnticlockwiseRotate=2 OutputColorType=1 ColorRangeUseFor=1 RedMinValue=90"
options+=" GreenMinValue=5 BlueMinValue=10 RedMaxValue=250 GreenMaxValue=200 BlueMaxValue=100"
options+=" SplitBlackRed=1 BrightnessRed=120 BrightnessBlack=80 ContrastRed=110"
options+=" ContrastBlack=90 LevelsRed=20 LevelsBlack=40"
expected=(
  "Init sHrzDir: 1" "Init sHrzOffset: 25" "Init sVtcDir: 1" "Init sVtcOffset: 100"
  "Init OutputColorType: 1" "Init ColorRangeUseFor: 1"
  "Init minColorOffset red: 90, green: 5, blue: 10"
  "Init maxColorOffset red: 250, green: 200, blue: 100"
  "Init SplitBlackRed: 1" "Init sRotation: 2"
  "Init nBrightness red: 40" "Init nBrightness black: -40"
  "Init Contrast red: 20" "Init Contrast black: -20"
  "Init sLevels red: 60" "Init sLevels black: 120"
  "cupsBitsPerColor = 8" "cupsBitsPerPixel = 24" "cupsColorOrder = 0"
)

# raster RASTERISER OPTIONS OUTPUT [COPIES]
raster() {
  "$filters/pdftopdf" 0 test test "${4:-1}" "$2" <"$work/page.pdf" 2>>"$work/filters.log" |
    "$filters/$1" 0 test test "${4:-1}" "$2" >"$3" 2>>"$work/filters.log"
}

# Whoever makes them, the filters before ours or ours: three are three. (Only with
# the print system's first choice; the other rasteriser loses a copy count that it
# is to hand on.)
check_copies() {
  local name=$1 collate pages
  for collate in Collate=False Collate=True; do
    raster "$name" "$collate" "$work/copies.ras" 3
    "$filter" 0 test test 3 "$collate" "$work/copies.ras" >"$work/out" 2>/dev/null
    pages=$("$velkaview" --stats "$work/out" | sed -n 's/^pages *//p')
    [[ $pages == 3 ]] || fail "$name: 3 copies with $collate came out as $pages"
  done
}

check_rasteriser() {
  local name=$1 line
  raster "$name" "" "$work/plain.ras"
  raster "$name" "$options" "$work/options.ras"
  cmp -s "$work/plain.ras" "$work/options.ras" || fail "$name: the options changed the raster"
  "$filter" 0 test test 1 "$options" "$work/options.ras" >"$work/out" 2>"$work/errors"
  [[ $(cat "$work/errors") == "Finish print operation." ]] || fail "$name: $(cat "$work/errors")"
  for line in "${expected[@]}"; do
    grep -qF -- "$line " /tmp/velka.log || fail "$name: the log lacks '$line'"
  done
  [[ $(head -c 6 "$work/out" | od -An -tx1 | tr -d ' \n') == 1b401b321b43 ]] ||
    fail "$name: the stream has no start"
}

ps2pdf -sPAPERSIZE=a4 "$page" "$work/page.pdf"
for rasteriser in gstoraster pdftoraster; do
  if [[ -x $filters/$rasteriser ]]; then
    check_rasteriser "$rasteriser"
  else
    fail "no $rasteriser in $filters"
  fi
done
check_copies gstoraster
if ((failures > 0)); then
  tail -n 5 "$work/filters.log" >&2
  exit 1
fi
