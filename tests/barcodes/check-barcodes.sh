#!/usr/bin/env bash
# check-barcodes.sh VELKAVIEW PPD reads|fails [ink=COLOUR] [dots=N] OPTION...
# Prints two barcodes, N dots a module, through the system's filters and ours with the job
# options given, draws the paper with velkaview, and has zbarimg read them. Exits with 0
# where it reads both or fails as was said, 1 where not, 77 where something that the test
# needs is absent.
set -euo pipefail

velkaview=$1 ppd=$2 outcome=$3
shift 3
ink='0 0 0' dots=3
while (($# > 0)); do
  case $1 in
    ink=red) ink='1 0 0' ;;
    ink=grey) ink='0.3 0.3 0.3' ;;
    ink=blue) ink='0 0 1' ;;
    dots=*) dots=${1#dots=} ;;
    *) break ;;
  esac
  shift
done

for tool in zbarimg gs; do
  command -v "$tool" >/dev/null || {
    echo "skipped: no $tool here"
    exit 77
  }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
read -r red green blue <<<"$ink"
gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pdfwrite -dDOTS="$dots" -dRED="$red" \
  -dGREEN="$green" -dBLUE="$blue" -o "$work/barcodes.pdf" "$(dirname "$0")/barcodes.ps"
"$velkaview" --from "$work/barcodes.pdf" --ppd "$ppd" --options "$*" -o "$work/paper.png"
zbarimg --quiet --raw -Sdisable -Scode128.enable -Sean13.enable "$work/paper.png" >"$work/read" ||
  true
[[ -s $work/paper.png ]]
got=reads
diff <(sort "$work/read") <(printf '%s\n' '4006381333931' 'Velka 128') || got=fails
if [[ $got != "$outcome" ]]; then
  echo "zbarimg $got, not $outcome, with: $*" >&2
  exit 1
fi
