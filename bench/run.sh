#!/usr/bin/env bash
# run.sh BUILD-FOLDER [jobs|stages|instructions]: measures the built filter and
# prints tables. VELKA_BENCH_ARGUMENTS goes to velka-bench-jobs (--only pages, --runs 9).
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

whole_jobs() {
  mkdir "$work/peers"
  make_peers "$work/peers"
  "$build/bench/velka-bench-jobs" --filter "$filter" --reader "$build/bench/velka-bench-readonly" \
    --standard "$standard" --orlo "$orlo" --peers "$work/peers" \
    --cups-filters "$(cups-config --serverbin)/filter" --folder "$work" "${VELKA_BENCH_JOBS[@]}"
}

# counted PPD PAGES KIND OPTIONS: the instructions of a whole job.
counted() {
  "$build/bench/velka-bench-raster" "$3" 360 360 "$2" "$work/count.ras"
  PPD=$1 valgrind --tool=callgrind --callgrind-out-file="$work/callgrind.out" \
    "$filter" 1 bench bench 1 "$4" "$work/count.ras" 2>&1 >/dev/null |
    sed -n 's/.*Collected : *\([0-9]*\).*/\1/p'
}

instructions_row() {
  local one two
  one=$(counted "$2" 1 "$3" "${4:-}")
  two=$(counted "$2" 2 "$3" "${4:-}")
  awk -v one="$one" -v two="$two" -v label="$3 | $1${4:+, $4}" \
    'BEGIN { printf "| %s | %.2f | %.1f |\n", label, (two - one) / (2976 * 4209), one / 1e6 }'
}

instructions() {
  local kind
  printf '\n### Instructions, A4 at 360 x 360 dpi\n\n'
  printf '| page | job | a pixel, second page | millions, job of one page |\n|---|---|---|---|\n'
  for kind in text receipt photo white; do
    instructions_row standard "$standard" "$kind"
    instructions_row Orlo "$orlo" "$kind"
  done
  for turn in 1 2 3; do
    instructions_row standard "$standard" text "AnticlockwiseRotate=$turn"
  done
}

stages() {
  printf '\n### Stages\n\n'
  "$build/bench/velka-bench-stages" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
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
  all)
    stages
    whole_jobs
    instructions
    ;;
  *) die "no part $part: jobs, stages or instructions" ;;
esac
