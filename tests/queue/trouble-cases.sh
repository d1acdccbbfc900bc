# Jobs that are cancelled or cannot be printed, and queues that print at once. Sourced.
# The parts of the test use each other's names.
# shellcheck shell=bash disable=SC2154

hold() { : >"$prints/hold-$1"; }

release() { rm -f "$prints/hold-$1"; }

is_held() { [[ -e $prints/held-$1-$2 ]]; }

wait_until_held() { wait_until "job $2 is half-way" is_held "$1" "$2"; }

# Half-way is where the printer has taken the first bytes and no more: the filter
# waits in the middle of a page that is longer than its pipe.
check_cancel() {
  local queue source job before cancelled=()
  for queue in "${queues[@]}"; do
    before=$(print "$queue" "$work/two-inch.pdf")
    for source in no yes; do
      hold "$queue"
      job=$(submit "$queue" "$work/grey.pdf" -o Resolution=360dpi -o PdfPreprocess=$source)
      cancelled+=("$job")
      wait_until_held "$queue" "$job"
      runs rastovelka "$queue" || fail "$queue: the filter of job $job does not run half-way"
      cancel "$job" || fail "$queue: job $job could not be cancelled"
      wait_for_job "$queue" "$job"
      release "$queue"
      expect_nothing_left "$queue" "$job"
      wait_until "the server has seen the filter of job $job end well" ended_well "$job"
      [[ ! -e $(stream_of "$queue" "$job") ]] || fail "$queue: the cancelled job was printed"
      expect_same "$queue, after a cancelled job" "$before" \
        "$(print "$queue" "$work/two-inch.pdf")"
    done
  done
  # The filters in front of ours may die of being cancelled.
  expect_no_complaints "${cancelled[@]}"
}

# The log names the broken job as one that failed, and no other.
check_broken_document() {
  local queue source job broken=()
  for queue in "${queues[@]}"; do
    for source in no yes; do
      job=$(submit "$queue" "$work/broken.pdf" -o PdfPreprocess=$source)
      broken+=("$job")
      wait_for_job "$queue" "$job"
      is_stopped "$job" || fail "$queue: the broken document is not told apart"
      expect_nothing_left "$queue" "$job"
      expect_counts "$queue, after a broken document" \
        "$(print "$queue" "$work/two-inch.pdf")" 1 "$(dots 2)" "$(dots 2)"
    done
  done
  expect_no_complaints "${broken[@]}"
}

# Both printers hold their jobs until both are half-way.
check_two_at_once() {
  local source queue
  for source in no yes; do
    local alone=() jobs=()
    for queue in "${queues[@]}"; do
      alone+=("$(print "$queue" "$work/three.pdf" -o PdfPreprocess=$source)")
      hold "$queue"
    done
    for queue in "${queues[@]}"; do
      jobs+=("$(submit "$queue" "$work/three.pdf" -o PdfPreprocess=$source)")
    done
    wait_until_held "${queues[0]}" "${jobs[0]}"
    wait_until_held "${queues[1]}" "${jobs[1]}"
    release "${queues[0]}"
    release "${queues[1]}"
    expect_same_as_alone "${alone[@]}" "${jobs[@]}"
  done
  expect_no_complaints
}

# expect_same_as_alone STREAM STREAM JOB JOB: in the order of the queues.
expect_same_as_alone() {
  local i queue job
  for i in 0 1; do
    queue=${queues[i]}
    job=${*:i+3:1}
    wait_for_job "$queue" "$job"
    expect_same "$queue, at once with the other" "${*:i+1:1}" "$(stream_of "$queue" "$job")"
    expect_nothing_left "$queue" "$job"
  done
}
