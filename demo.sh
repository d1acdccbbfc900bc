#!/usr/bin/env bash
# demo.sh [FILE.pdf]: prints a PDF the way CUPS would, as far as the printer's
# plug: through the system's own filters and the PPD into CUPS raster, through
# our filter into printer commands; and draws the paper: of the standard model in both
# placements of the dots, and of the Orlo model. Without a file it prints a page of its own.
set -euo pipefail

usage() { echo "usage: ./demo.sh [FILE.pdf]"; }

case "${1:-}" in
  -h | --help)
    usage
    exit 0
    ;;
esac
if (($# > 1)); then
  usage >&2
  exit 2
fi
# Opened from where the caller stands.
if (($# == 1)); then
  exec {given}<"$1" || exit 1
fi

cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=tools/common.sh
source tools/common.sh

output=demo-output
document=$output/document.pdf

# The document goes where the jobs find it: they have a /tmp of their own.
take_document() {
  cat <&"$given" >"$document.part" || die "cannot read $1"
  mv "$document.part" "$document"
}

make_document() {
  ps2pdf -sPAPERSIZE=a4 tools/demo-page.ps "$document" || die "Ghostscript could not make $document"
}

need_writable "$output"
mkdir -p "$output"
rm -f "$output"/*.png "$output"/*.log "$output"/*.escp
inks=any
if (($# == 1)); then take_document "$1"; fi
tools/install-packages.sh
build release rastovelka velkaview velka_ppds
if (($# == 0)); then
  make_document
  inks=both
fi
in_own_tmp tools/demo-job.sh "$document" "$inks"

show() {
  printf '%s\n' "$1"
  printf '  %s\n' "${@:2}"
}

say "The command stream is in $PWD/$output/commands.escp"
cat "$output/stats.txt"
echo "The logs of the filter (velka.log) and of the other filters are in $PWD/$output."
echo "The same page with DotPlacement=Exact is in $PWD/$output/exact.escp"
say "What comes out of a printer that takes its commands by the letter, drawn by velkaview"
show "Standard model, DotPlacement=Exact:" "$PWD/$output"/exact*.png
show "Standard model, as the original stream:" "$PWD/$output"/standard*.png
show "Orlo model:" "$PWD/$output"/orlo*.png
