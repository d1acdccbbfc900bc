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

# put_rasteriser SCRIPT: in the place of the system's.
put_rasteriser() {
  rm "$work/usr/lib/cups/filter/gstoraster"
  printf '#!/bin/sh\n%s\n' "$1" >"$work/usr/lib/cups/filter/gstoraster"
  chmod 755 "$work/usr/lib/cups/filter/gstoraster"
}

put_rasteriser_back() {
  rm "$work/usr/lib/cups/filter/gstoraster"
  ln -s "$(cups-config --serverbin)/filter/gstoraster" "$work/usr/lib/cups/filter/"
}

has_copy() { [[ -e /tmp/VK_TEMP_CUPS_$1.pdf ]]; }

# Before the first byte of raster, when the copier has ended. The rasteriser outlives the
# filter: where it goes first, the filter has a failed start, which cleans nothing up.
check_early_cancel() {
  local queue job cancelled=() flag=$prints/rasterising
  put_rasteriser "trap : TERM; cat >/dev/null; : >$flag
while [ -e $flag ]; do sleep 0.1; done"
  for queue in "${queues[@]}"; do
    job=$(submit "$queue" "$work/three.pdf" -o PdfPreprocess=yes)
    cancelled+=("$job")
    wait_until "job $job is rasterised" test -e "$flag"
    has_copy "$job" || fail "$queue: no copy while job $job is rasterised"
    wait_until "the filter of job $job listens" listens rastovelka "$queue"
    cancel "$job"
    wait_until "the filter of job $job is gone" is_gone rastovelka "$queue"
    rm "$flag"
    wait_for_job "$queue" "$job"
    expect_nothing_left "$queue" "$job"
  done
  put_rasteriser_back
  expect_no_complaints "${cancelled[@]}"
}

is_gone() { ! runs "$@"; }

# keeps_marks: whether the file system of /tmp lets a copy be told from other files;
# else a job whose copy was left is not printed again.
keeps_marks() {
  local id=$first_job.marks status=0
  for _ in 1 2; do
    status=0
    CUPS_SERVERBIN=$work PPD=$work/etc/ppd/$standard.ppd "$build/pdfcopy/velkapdfcopy" "$id" \
      u t 1 PdfPreprocess=yes "$work/three.pdf" >/dev/null 2>&1 || status=1
  done
  rm -f "/tmp/VK_TEMP_CUPS_$id.pdf"
  return "$status"
}

# A server that is stopped while a job prints starts that job anew when it comes back.
check_server_restart() {
  local queue source job jobs=()
  if ! keeps_marks; then
    echo "note: /tmp keeps no attributes, so a copy that was left stops its job"
    return
  fi
  for source in no yes; do
    for queue in "${queues[@]}"; do
      hold "$queue"
      job=$(submit "$queue" "$work/grey.pdf" -o Resolution=360dpi -o PdfPreprocess=$source)
      jobs+=("$job")
      wait_until_held "$queue" "$job"
      end_server
      release "$queue"
      run_server
      wait_for_job "$queue" "$job"
      expect_counts "$queue, printed anew, $source" "$(stream_of "$queue" "$job")" 1 - 0
      expect_nothing_left "$queue" "$job"
    done
  done
  expect_no_complaints "${jobs[@]}"
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

# A job whose log cannot be opened prints, and the server's log says so once.
check_unwritable_log() {
  local queue job said warned=()
  for queue in "${queues[@]}"; do
    rm -rf "$filter_log"
    (umask 077 && : >"$filter_log")
    chmod 000 "$filter_log"
    job=$(submit "$queue" "$work/three.pdf")
    warned+=("$job")
    wait_for_job "$queue" "$job"
    expect_counts "$queue, without a log" "$(stream_of "$queue" "$job")" 3 - -
    said=$(grep -c "^W .*\[Job $job\] The job log $filter_log cannot be opened: Permission denied" \
      "$log") || true
    ((said == 1)) || fail "$queue: the server's log says $said times that there is no job log"
    expect_same "$queue, without a log" "$(stream_of "$queue" "$job")" \
      "$(rm -f "$filter_log" && print "$queue" "$work/three.pdf")"
  done
  expect_no_complaints "${warned[@]}"
}

# A queue that an earlier version was set up for: its jobs stop with what to do, and
# doing that helps.
check_older_ppd() {
  local queue job advice before stopped=()
  for queue in "${queues[@]}"; do
    before=$(print "$queue" "$work/two-inch.pdf" -o PdfPreprocess=yes)
    sed 's/^\*FileVersion: .*/*FileVersion: "0.1"/' "$work/etc/ppd/$queue.ppd" >"$work/older.ppd"
    lpadmin -p "$queue" -P "$work/older.ppd" 2>>"$work/lpadmin.log" ||
      die "lpadmin does not take the older PPD: $(cat "$work/lpadmin.log")"
    job=$(submit "$queue" "$work/two-inch.pdf" -o PdfPreprocess=yes)
    stopped+=("$job")
    wait_for_job "$queue" "$job"
    is_stopped "$job" || fail "$queue: the older PPD is not told"
    expect_nothing_left "$queue" "$job"
    advice=$(sed -n "s/^E.*\[Job $job\].*after: \(lpadmin .*\)/\1/p" "$log" | head -n 1)
    [[ $advice == "lpadmin -p $queue -m velka/velka-"* ]] || fail "$queue: no advice, $advice"
    $advice 2>>"$work/lpadmin.log" || fail "$queue: bad advice, $advice"
    expect_same "$queue, after the advice" "$before" \
      "$(print "$queue" "$work/two-inch.pdf" -o PdfPreprocess=yes)"
  done
  expect_no_complaints "${stopped[@]}"
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
