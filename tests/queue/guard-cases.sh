# What the server knows of a job's pages: its accounts, its progress, the printer's state.
# Sourced.
# The parts of the test use each other's names.
# shellcheck shell=bash disable=SC2154

# job_attribute JOB NAME: as the server tells anybody who asks.
job_attribute() {
  "$build/tests/queue/queue-attributes" "$1" >"$work/attributes" || die "no attributes of job $1"
  sed -n "s/^$2=//p" "$work/attributes"
}

# reasons_of QUEUE: our own reasons of the printer's state, in order.
reasons_of() {
  lpstat -l -p "$1" | sed -n 's/^[[:space:]]*Alerts: //p' | tr ' ,' '\n' | grep '^velka-' | sort | tr '\n' ' '
}

expect_reasons() { [[ $(reasons_of "$2") == "$3" ]] || fail "$1: reasons $(reasons_of "$2"), not $3"; }

# accounts JOB: pages and copies, as the server was told.
accounts() {
  sed -n "s/^.*\[Job $1\] PAGE: \([0-9]* [0-9]*\)$/\1/p" "$log" | tr '\n' ';'
}

# page_log QUEUE JOB: what its line there says of the pages.
page_log() { sed -n "s/^$1 $2 //p" "$work/page_log" 2>/dev/null || true; }

is_in_page_log() { [[ -n $(page_log "$@") ]]; }

# expect_accounts NAME QUEUE JOB ACCOUNTS SHEETS: a cancelled job counts as over before its
# filters are, and its line in the page log comes behind them.
expect_accounts() {
  wait_until "the page log has job $3" is_in_page_log "$2" "$3"
  [[ $(accounts "$3") == "$4" ]] || fail "$1: accounts $(accounts "$3"), not $4"
  [[ $(page_log "$2" "$3") == "total $5" ]] || fail "$1: the page log has $(page_log "$2" "$3")"
  [[ $(job_attribute "$3" job-media-sheets-completed) == "$5" ]] ||
    fail "$1: $(job_attribute "$3" job-media-sheets-completed) sheets, not $5"
}

# print_job QUEUE FILE [LP-ARGUMENT...]: the job's number, once it is over.
print_job() {
  local job
  job=$(submit "$@")
  wait_for_job "$1" "$job"
  echo "$job"
}

make_rasters() {
  "$build/tests/queue/queue-rasters" "$work" || die "cannot make the rasters"
  chmod 644 "$work"/*.ras
}

check_accounts() {
  local queue job copies
  make_rasters
  for queue in "${queues[@]}"; do
    job=$(print_job "$queue" "$work/three.pdf")
    expect_accounts "$queue, three pages" "$queue" "$job" '1 1;2 1;3 1;' 3
    grep -q "\[Job $job\] Printing page 3" "$log" || fail "$queue: page 3 is not told"
    grep -q "\[Job $job\] ATTR: job-media-progress=100" "$log" || fail "$queue: no progress"
    job=$(print_job "$queue" "$work/three.pdf" -P 1-2 -o PdfPreprocess=yes)
    expect_accounts "$queue, two pages of the copy" "$queue" "$job" '1 1;2 1;' 2
    # Sets are made by the system; single pages by the standard model itself.
    job=$(print_job "$queue" "$work/three.pdf" -P 1-2 -n 3 -o collate=true)
    expect_accounts "$queue, collated" "$queue" "$job" '1 1;2 1;3 1;4 1;5 1;6 1;' 6
    copies='1 3;2 3;'
    [[ $queue == "$standard" ]] || copies='1 1;2 1;3 1;4 1;5 1;6 1;'
    job=$(print_job "$queue" "$work/three.pdf" -P 1-2 -n 3 -o collate=false)
    expect_accounts "$queue, not collated" "$queue" "$job" "$copies" 6
    expect_reasons "$queue, good jobs" "$queue" ''
  done
  # A raster that says so has the standard model make the sets.
  job=$(print_job "$standard" "$work/sets.ras")
  expect_accounts "sets of a raster" "$standard" "$job" '1 1;2 1;1 2;2 2;' 6
  expect_counts "sets of a raster" "$(stream_of "$standard" "$job")" 6 - 0
  expect_no_complaints
}

# A quota counts what the accounts count.
check_quota() {
  local job
  lpadmin -p "$standard" -o job-k-limit=0 -o job-page-limit=4 -o job-quota-period=3600
  job=$(print_job "$standard" "$work/three.pdf" -n 2)
  expect_accounts "within the quota" "$standard" "$job" '1 2;2 2;3 2;' 6
  if lp -d "$standard" "$work/three.pdf" >"$work/said" 2>&1; then
    fail "a job beyond the quota is taken: $(<"$work/said")"
  fi
  expect_no_complaints
}

has_progress() {
  local progress
  progress=$(job_attribute "$1" job-media-progress)
  [[ ${progress:-0} -ge 10 ]]
}

# Half-way the first page of three has gone to the filter and no further.
check_accounts_of_cancelled() {
  local queue job cancelled=()
  for queue in "${queues[@]}"; do
    hold "$queue"
    job=$(submit "$queue" "$work/grey3.pdf" -o Resolution=360dpi)
    cancelled+=("$job")
    wait_until_held "$queue" "$job"
    wait_until "job $job shows progress" has_progress "$job"
    cancel "$job"
    wait_for_job "$queue" "$job"
    release "$queue"
    expect_nothing_left "$queue" "$job"
    expect_accounts "$queue, cancelled in page 2" "$queue" "$job" '1 1;' 1
    expect_reasons "$queue, cancelled" "$queue" ''
  done
  expect_no_complaints "${cancelled[@]}"
}

# refused QUEUE FILE REASON TEXT [LP-ARGUMENT...]: the job stops, and says so everywhere.
refused() {
  local queue=$1 file=$2 reason=$3 text=$4 job message
  shift 4
  job=$(print_job "$queue" "$work/$file" "$@")
  refused_jobs+=("$job")
  is_stopped "$job" || fail "$queue, $file: the job does not stop"
  grep -q "^E .*\[Job $job\] $text" "$log" || fail "$queue, $file: the log has no $text"
  expect_reasons "$queue, $file" "$queue" "$reason "
  [[ ! -s $(stream_of "$queue" "$job") ]] || fail "$queue, $file: something was printed"
  [[ -z $(accounts "$job") ]] || fail "$queue, $file: accounts $(accounts "$job")"
  message=$(job_attribute "$job" job-printer-state-message)
  # A server that has read the words before it learns of the filter's end puts its own over them.
  [[ $message == $text* || $message == 'Filter failed' ]] ||
    fail "$queue, $file: the message is $message"
}

check_refused_rasters() {
  local queue job refused_jobs=()
  make_rasters
  for queue in "${queues[@]}"; do
    refused "$queue" grey.ras velka-colors-error 'Page 1 cannot be printed: it has 8 bits'
    refused "$queue" 300dpi.ras velka-resolution-error \
      'Page 1 cannot be printed: the head has no mode for 300 x 300 dpi'
    # A raster leaves no copy.
    refused "$queue" good.ras velka-pdf-copy-error 'There is no PDF copy of the job at' \
      -o PdfPreprocess=yes
    # The next job that is well takes the reasons back.
    job=$(print_job "$queue" "$work/good.ras")
    expect_accounts "$queue, a good raster" "$queue" "$job" '1 1;' 1
    expect_counts "$queue, a good raster" "$(stream_of "$queue" "$job")" 1 - 0
    expect_reasons "$queue, a good raster" "$queue" ''
    # Too long a page prints, and is told of.
    job=$(print_job "$queue" "$work/long.ras")
    expect_accounts "$queue, a long page" "$queue" "$job" '1 1;' 1
    expect_reasons "$queue, a long page" "$queue" 'velka-page-length-warning '
  done
  expect_no_complaints "${refused_jobs[@]}"
}
