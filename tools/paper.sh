#!/usr/bin/env bash
# paper.sh BUILD-FOLDER FILE.md: prints documents of the system's packages and of our own
# through the system's filters and ours, as the original stream and exactly, and writes to
# FILE how much of the pages the paper then holds. Beside VELKA_PAPER_DOCUMENTS (files of
# any kind, one a line) where that is set, instead of those of the packages.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/common.sh
source tools/common.sh

build=$1 table=$2
measure=$PWD/$build/tests/paper/velka-paper
ppd=$PWD/$build/ppd/velka-standard.ppd
filters=$(cups-config --serverbin)/filter
pairs=(180dpi 360dpi 60x180dpi 90x180dpi 120x180dpi 360x180dpi 60dpi 80x60dpi 90x60dpi 120x60dpi)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

data=/usr/share/cups/data
packaged=("$data"/{default-testpage,form_english,form_russian,classified}.pdf
  /usr/share/common-licenses/BSD /usr/share/backgrounds/Bridge_by_Sander_Klootwijk.jpg
  /usr/share/backgrounds/Dragonfly_by_Bolly.jpg)
if [[ -n ${VELKA_PAPER_DOCUMENTS:-} ]]; then mapfile -t packaged <<<"$VELKA_PAPER_DOCUMENTS"; fi
own=(tools/demo-page.ps tests/paper/documents/*.ps)

run() {
  local filter=$1 type=$2
  shift 2
  PPD=$ppd CONTENT_TYPE=$type "$filters/$filter" 1 paper paper 1 "$@" 2>>"$work/log"
}

# pdf_of DOCUMENT PDF: as the print system would make it.
pdf_of() {
  case $1 in
    *.pdf) cat "$1" ;;
    *.ps) gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pdfwrite -sOutputFile=- "$1" ;;
    *.jpg | *.png) run imagetopdf "image/${1##*.}" 'PageSize=A4 print-scaling=fill' "$1" ;;
    *) run texttopdf text/plain PageSize=A4 "$1" ;;
  esac >"$2"
}

# Two pages of a document are enough.
rasterise() {
  run pdftopdf application/pdf "Resolution=$2 page-ranges=1-2" "$1" |
    run gstoraster application/vnd.cups-pdf "Resolution=$2" >"$3"
}

# measure_all NAME PDF: a line of numbers for each model and pair.
measure_all() {
  local pair model
  for pair in "${pairs[@]}"; do
    rasterise "$2" "$pair" "$work/page.ras"
    for model in 1 2; do
      printf '%s\t%s\t%s\t' "$1" "$model" "$pair"
      "$measure" "$model" "$work/page.ras" || die "$1 at $pair: $(tail -n 3 "$work/log")"
    done
  done
}

# Columns: 1 document, 2 model, 3 pair, 4 dots, then 9 numbers for each stream.
table_of() {
  awk -F'\t' -v want="$1" '
    function percent(part, whole) { return whole == 0 ? "-" : sprintf("%.1f %%", int(1000 * part / whole) / 10) }
    function ratio(a, b) { return b == 0 ? "-" : sprintf("%.2f", a / b) }
    { key = want == "pairs" ? $2 "\t" $3 : $1
      if (want == "documents" && $3 != "180dpi") next
      if (!(key in dots)) order[++n] = key
      dots[key] += $4
      for (i = 5; i <= 22; ++i) sum[key, i] += $i }
    END {
      for (k = 1; k <= n; ++k) {
        key = order[k]
        label = key
        if (want == "pairs") { split(key, p, "\t"); label = (p[1] == 1 ? "standard" : "Orlo") ", " p[2] }
        printf "| %s | %d | %s | %s | %d | %d | %d | %d | %d of %d | %d of %d | %s | %s | %s |\n", label,
          dots[key], percent(sum[key, 5], dots[key]), percent(sum[key, 14], dots[key]),
          sum[key, 6], sum[key, 15], sum[key, 7], sum[key, 16],
          sum[key, 9], sum[key, 8], sum[key, 18], sum[key, 17],
          ratio(sum[key, 19], sum[key, 10]), ratio(sum[key, 20], sum[key, 11]), ratio(sum[key, 21], sum[key, 12])
      } }' "$work/numbers"
}

head_of() {
  printf '| %s | dots | on their place: original | exact | struck again: original | exact | elsewhere: original | exact | pages past their form: original | exact | bytes, exact / original | head passes | paper moves |\n' "$1"
  printf '|---|---|---|---|---|---|---|---|---|---|---|---|---|\n'
}

for document in "${packaged[@]}" "${own[@]}"; do
  name=$(basename "$document")
  if [[ ! -e $document ]]; then
    say "no $document here: left out"
    continue
  fi
  say "$name"
  pdf_of "$document" "$work/document.pdf"
  measure_all "$name" "$work/document.pdf" | tee -a "$work/numbers"
done

{
  sed -n '1,/^<!-- figures/p' "$table"
  printf '\n## By model and resolution, all documents\n\n'
  head_of 'model, resolution'
  table_of pairs
  printf '\n## By document, 180 x 180 dpi, both models\n\n'
  head_of document
  table_of documents
} >"$work/table.md"
cp "$work/table.md" "$table"
say "The table is in $table"
