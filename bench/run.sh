#!/usr/bin/env bash
# run.sh BUILD-FOLDER [jobs|stages|instructions|serve]: measures the built filter and
# prints tables. VELKA_BENCH_ARGUMENTS goes to velka-bench-jobs (--only pages, --runs 9).
# VELKA_BENCH_PHOTOGRAPHS names JPEG files to measure with, one a line; without it some of
# Debian's wallpapers are taken.
# Whole jobs have a /tmp of their own where that can be had: a tmpfs, which the job log
# is synced to line by line without a disk.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/common.sh
source tools/common.sh
# Numbers go from tool to tool and into tables.
export LC_ALL=C

build=$1
part=${2:-all}
filter=$build/filter/rastovelka
standard=$build/ppd/velka-standard.ppd
orlo=$build/ppd/velka-orlo.ppd

# The PPDs of other filters to measure beside ours, where their drivers are.
make_peers() {
  ppdc -d "$1" bench/peers.drv
  /usr/lib/cups/driver/gutenprint.5.3 cat "gutenprint.5.3://escp2-740/expert" >"$1/gutenprint.ppd" ||
    die "no gutenprint: install printer-driver-gutenprint"
}

photographs=${VELKA_BENCH_PHOTOGRAPHS:-$(printf '/usr/share/backgrounds/%s.jpg\n' \
  Bridge_by_Sander_Klootwijk Dragonfly_by_Bolly life_by_Aitzol_Berasategi Wine_by_Jakkub_Mede)}

# rasterised JPEG RASTER: as a person prints it, filling an A4 page at 360 x 360 dpi.
rasterised() {
  local filters options='PageSize=A4 Resolution=360dpi print-scaling=fill'
  filters=$(cups-config --serverbin)/filter
  (
    export PPD=$standard CONTENT_TYPE=image/jpeg
    "$filters/imagetopdf" 1 bench bench 1 "$options" "$1" |
      "$filters/pdftopdf" 1 bench bench 1 "$options" |
      "$filters/gstoraster" 1 bench bench 1 "$options" >"$2"
  ) 2>"$work/filters.log" || {
    cat "$work/filters.log" >&2
    die "cannot rasterise $1"
  }
}

# make_photos FOLDER: a raster of each photograph that is there.
make_photos() {
  local photograph name
  while read -r photograph; do
    name=$(basename "$photograph" .jpg)
    if [[ -e $photograph ]]; then
      rasterised "$photograph" "$1/${name//_/ }.ras"
    else
      say "no photograph $photograph: install lomiri-wallpapers-16.04"
    fi
  done <<<"$photographs"
}

whole_jobs() {
  mkdir "$work/peers" "$work/photos"
  make_peers "$work/peers"
  make_photos "$work/photos"
  "$build/bench/velka-bench-jobs" --filter "$filter" --reader "$build/bench/velka-bench-readonly" \
    --standard "$standard" --orlo "$orlo" --peers "$work/peers" --photos "$work/photos" \
    --cups-filters "$(cups-config --serverbin)/filter" --folder "$work" "${VELKA_BENCH_JOBS[@]}"
}

# counted PPD RASTER OPTIONS: instructions and wrongly foreseen branches of a whole job.
counted() {
  PPD=$1 valgrind --tool=callgrind --branch-sim=yes --callgrind-out-file="$work/callgrind.out" \
    "$filter" 1 bench bench 1 "$3" "$2" 2>&1 >/dev/null |
    sed -n 's/.*I *refs: *\([0-9,]*\).*/\1/p; s/.*Mispredicts: *\([0-9,]*\).*/\1/p' | tr -d ,
}

# instructions_row LABEL PPD KIND|RASTER [OPTIONS]: of a page beyond the first.
instructions_row() {
  local name=$3 one several
  one=$work/one.ras
  several=$work/several.ras
  if [[ -e $3 ]]; then
    name=$(basename "$3" .ras)
    "$build/bench/velka-bench-raster" --repeat "$3" 1 "$one"
    "$build/bench/velka-bench-raster" --repeat "$3" 2 "$several"
  else
    "$build/bench/velka-bench-raster" "$3" 360 360 1 "$one"
    "$build/bench/velka-bench-raster" "$3" 360 360 2 "$several"
  fi
  { counted "$2" "$one" "${4:-}"; counted "$2" "$several" "${4:-}"; } | xargs |
    awk -v label="$name | $1${4:+, $4}" '{
      pixels = 2976 * 4209
      printf "| %s | %.1f | %.1f | %.1f |\n", label, ($3 - $1) / pixels,
        ($4 - $2) * 1000 / pixels, $1 / 1e6 }'
}

instructions() {
  local page
  mkdir -p "$work/photos"
  make_photos "$work/photos"
  printf '\n### Instructions, A4 at 360 x 360 dpi\n\n'
  printf '| page | job | a pixel, second page | branches foreseen wrongly, a thousand pixels '
  printf '| millions, job of one page |\n|---|---|---|---|---|\n'
  for page in text receipt photo camera white "$work"/photos/*.ras; do
    if [[ $page == /* && ! -e $page ]]; then continue; fi
    instructions_row standard "$standard" "$page"
    instructions_row Orlo "$orlo" "$page"
  done
  for turn in 1 2 3; do
    instructions_row standard "$standard" text "AnticlockwiseRotate=$turn"
  done
}

stages() {
  printf '\n### Stages\n\n'
  "$build/bench/velka-bench-stages" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
}

# From a slider of the page in the browser to its picture, beside the filter alone.
page() {
  printf '\n### The page in the browser\n\n'
  PYTHONPATH=tests/serve python3 -B bench/serve.py "$build"
}

if [[ -z ${VELKA_BENCH_OWN_TMP:-} ]]; then
  export VELKA_BENCH_OWN_TMP=yes
  has_own_tmp || true
  exec tools/own-tmp.sh "$PWD" "$build" -- "$PWD/bench/run.sh" "$@"
fi

read -ra VELKA_BENCH_JOBS <<<"${VELKA_BENCH_ARGUMENTS:-}"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
grep -m1 'model name' /proc/cpuinfo || true
case $part in
  jobs) whole_jobs ;;
  stages) stages ;;
  instructions) instructions ;;
  serve) page ;;
  all)
    stages
    whole_jobs
    instructions
    page
    ;;
  *) die "no part $part: jobs, stages, instructions or serve" ;;
esac
