#!/usr/bin/env bash
# check-ppd.sh PPD MODEL-NUMBER RED-MINIMUM MANUAL-COPIES
# Checks a compiled PPD: it conforms, it carries the model's numbers, and each
# option the filter reads is there with number codes and the built-in default.
set -euo pipefail

ppd=$1 model=$2 red_minimum=$3 manual_copies=$4
failures=0

fail() {
  echo "$ppd: $*" >&2
  failures=$((failures + 1))
}

has_line() {
  grep -qxF -- "$1" "$ppd" || fail "no line $1"
}

# equal WHAT GOT EXPECTED
equal() { [[ $2 == "$3" ]] || fail "$1: $2, not $3"; }

# option KEYWORD DEFAULT-CODE: what the filter reads when the user chose nothing.
option() {
  local keyword=$1 expected=$2 choice code
  grep -q "^\*OrderDependency: 10 AnySetup \*$keyword\$" "$ppd" ||
    fail "$keyword is absent or stands outside AnySetup"
  if sed -n "s/^\*$keyword [^:]*: \"\(.*\)\"\$/\1/p" "$ppd" | grep -vxE -- '-1|[0-9]+(\.[0-9]+)?'; then
    fail "$keyword has a code that is no number"
  fi
  choice=$(sed -n "s/^\*Default$keyword: //p" "$ppd")
  code=$(sed -n "s|^\*$keyword $choice/.*: \"\(.*\)\"\$|\1|p" "$ppd")
  [[ $code == "$expected" ]] || fail "$keyword: the default choice $choice has code '$code', not $expected"
}

# The filter need not be installed yet; zero margins are deliberate, and sizes
# keep their common names all the same.
cupstestppd -q -I filters -W sizes "$ppd" || fail "cupstestppd reports errors:
$(cupstestppd -I filters -W sizes "$ppd" || true)"

has_line "*cupsModelNumber: $model"
has_line "*cupsManualCopies: $manual_copies"
has_line '*cupsFilter: "application/vnd.cups-raster 0 rastovelka"'
has_line '*cupsPreFilter: "application/vnd.cups-pdf 0 velkapdfcopy"'
has_line '*cupsPreFilter: "image/png 0 velkapdfcopy"'
has_line '*cupsPreFilter: "application/vnd.cups-raster 0 velkaguard"'
equal "reasons of the printer's state" "$(grep -c '^\*cupsIPPReason velka-[a-z-]*/[^:]*: ""$' "$ppd")" 5
has_line '*HWMargins: 0 0 0 0'
has_line '*MaxMediaWidth: "1080"'
has_line '*MaxMediaHeight: "3060"'
has_line '*ParamCustomPageSize Width: 1 points 72 1080'
has_line '*ParamCustomPageSize Height: 2 points 36 3060'

# Each size has its four lines, and all the paper prints.
for keyword in PageSize PageRegion ImageableArea PaperDimension; do
  equal "entries of $keyword" "$(grep -c "^\*$keyword [^ ]*/" "$ppd")" 34
done
sizes_of() { sed -n "s|^\*$1 \([^/]*\)/[^:]*: \"$2\(.*\)\"|\1 \3|p" "$ppd"; }
equal "printable areas" "$(sizes_of ImageableArea '\(0 0 \)')" "$(sizes_of PaperDimension '\(\)')"
has_line '*PaperDimension 240x140mm/Fanfold 240 x 140 mm (5 1/2 in): "680.315002441406 396"'
# The Orlo model takes neither error diffusion's two numbers nor the paper-end rule.
options=29
((model != 1)) || options=34
equal options "$(grep -c '^\*OpenUI ' "$ppd")" "$options"
equal resolutions "$(grep -c '^\*Resolution ' "$ppd")" 10

option PdfPreprocess 0
grep -q '^\*PdfPreprocess yes/.*: "1"$' "$ppd" || fail "PdfPreprocess has no choice yes"
for keyword in HorizontalOffset HorizontalOffsetValue VerticalOffset VerticalOffsetValue \
  AnticlockwiseRotate GreenMinValue BlueMinValue SplitBlackRed DotPlacement; do
  option "$keyword" 0
done
has_line '*DotPlacement Original/As the original stream: "0"'
grep -qE '^\*DotPlacement Exact/Exact.*: "1"$' "$ppd" || fail "DotPlacement has no exact choice"
option OutputColorType 3
option ColorRangeUseFor 2
option RedMinValue "$red_minimum"
for keyword in RedMaxValue GreenMaxValue BlueMaxValue; do
  option "$keyword" 255
done
for keyword in BrightnessRed BrightnessBlack ContrastRed ContrastBlack; do
  option "$keyword" 100
done
option LevelsBlack 10
option LevelsRed -1
for keyword in HalftoneBlack HalftoneRed; do
  option "$keyword" -1
  # Each by two names.
  equal "modes of $keyword" "$(grep -c "^\*$keyword [^ ]*/" "$ppd")" 12
done
if ((model == 1)); then
  for keyword in DiffusionThreshold DotWeight PaperEnd PaperEndFirstPages PaperEndSecondPages; do
    option "$keyword" -1
  done
fi

# choice KEYWORD NAME: its text and code, in one line.
choice() { sed -n "s|^\*$1 $2/\([^:]*: \".*\"\)\$|\1|p" "$ppd"; }

# was KEYWORD NAME OLD-NAME CODE: jobs and queues that use the old name get the same; what
# dialogs show has it once.
was() {
  [[ $(choice "$1" "$2") == *": \"$4\"" ]] || fail "$1=$2 has not the code $4"
  equal "$1=$3" "$(choice "$1" "$3")" "$(choice "$1" "$2")"
  has_line "*UIConstraints: *$1 $3 *OldNames False"
  has_line "*UIConstraints: *OldNames False *$1 $3"
  old_names=$((old_names + 1))
}
old_names=0
has_line '*OpenGroup: InstallableOptions/Installable Options'
has_line '*DefaultOldNames: False'
was OutputColorType BlackAndRed 3 3
was OutputColorType Black 1 1
was OutputColorType Red 2 2
was ColorRangeUseFor Black 1 1
was ColorRangeUseFor Red 2 2
was HorizontalOffset Right 0 0
was HorizontalOffset Left 1 1
was VerticalOffset Down 0 0
was VerticalOffset Up 1 1
was AnticlockwiseRotate 90 1 1
was AnticlockwiseRotate 180 2 2
was AnticlockwiseRotate 270 3 3
was DotPlacement Original 0 0
was DotPlacement Exact 1 1
was SplitBlackRed Together 0 0
was SplitBlackRed BlackFirst 1 1
for keyword in HalftoneBlack HalftoneRed; do
  was "$keyword" ErrorDiffusion PrinterDefault -1
  was "$keyword" Threshold 1 1
  was "$keyword" Screen6x6 3 3
  was "$keyword" Screen8x8 4 4
  was "$keyword" Screen12x12 5 5
  was "$keyword" Screen16x16 6 6
done
if ((model == 1)); then
  was PaperEnd None PrinterDefault -1
  was PaperEnd T0 0 0
  was PaperEnd T1 1 1
  was PaperEnd T0First 2 2
  was PaperEnd T1Second 3 3
fi
equal "old names" "$(grep -c '^\*UIConstraints: \*OldNames False' "$ppd")" "$old_names"

for resolution in '180 180' '60 180' '90 180' '120 180' '360 180' '360 360' \
  '60 60' '80 60' '90 60' '120 60'; do
  grep -q "/HWResolution\[$resolution\]" "$ppd" || fail "no resolution $resolution"
done

((failures == 0))
