# How jobs begin: each at its time, and each once.
# shellcheck shell=bash disable=SC2154,SC2034

# starts NAME: how often the library has begun with a job of this printer.
starts() { grep -c "\[Printer $1\] Starting job" "$log"; }

type_of() { if [[ $1 == pdf ]]; then echo application/pdf; else echo "image/$1"; fi; }

# The library looks for a job to begin now and then, and takes one that it has begun for one
# that waits, until that has come to itself.
case_begun_once() {
  local kind kinds=(pdf)
  document 1 >"$work/one.pdf"
  draw <"$work/one.pdf" >"$work/one.ras" || die "no pages are drawn"
  if command -v gs >/dev/null; then
    gs -q -dBATCH -dNOPAUSE -r60 -sDEVICE=png16m -o "$work/one.png" "$work/one.pdf"
    kinds+=(png)
  fi
  preload "$slowly"
  start_app
  add_printers
  print_job orlo application/pdf "$work/one.pdf" alone
  [[ $state == completed ]] || fail "a job alone is $state"
  (($(starts orlo) == 1)) || fail "a job alone was begun $(starts orlo) times"
  name=standard
  for kind in "${kinds[@]}"; do
    send standard "$(type_of "$kind")" "$work/one.$kind" "$kind"
    ask standard Resume-Printer >"$work/said" || fail "it does not resume: $(<"$work/said")"
    wait_until "the $kind is over" is_over
    [[ $state == completed ]] || fail "a $kind: $state: $(message standard "$job")"
    [[ -s $prints/standard/$kind.prn ]] || fail "nothing of the $kind is printed"
  done
  filtered standard '' "$work/one.ras" "$work/expected"
  same_bytes "a PDF" "$prints/standard/pdf.prn" "$work/expected"
  # Nothing comes after it.
  print_job standard application/pdf "$work/one.pdf" next
  same_bytes "the next one" "$prints/standard/next.prn" "$work/expected"
  (($(grep -c 'rastovelka gets' "$log") == 2 + ${#kinds[@]})) ||
    fail "$(grep -c 'rastovelka gets' "$log") jobs were printed"
}

# Two jobs that come at the same moment are begun at the same moment, and printed one behind the
# other, through the one connection that the printer takes.
case_two_in_one_moment() {
  local first
  long_document
  preload "$slowly"
  start_app
  send_to_held standard
  first=$job
  send standard application/pdf "$work/long.pdf" second
  rm "$work/standard.hold"
  wait_until "the second job is over" is_over
  [[ $state == completed ]] || fail "the second job is $state"
  job=$first
  wait_until "the first job is over" is_over
  [[ $state == completed ]] || fail "the first job is $state"
  filtered standard '' "$work/long.ras" "$work/once"
  cat "$work/once" "$work/once" >"$work/expected"
  wait_until "both are printed" cmp -s "$work/standard.prn" "$work/expected"
}

# send_three MODEL: documents of one, two and three pages; what becomes of them in this order is
# added to $work/expected.
send_three() {
  local pages
  for pages in 1 2 3; do
    document "$pages" >"$work/$pages.pdf"
    draw <"$work/$pages.pdf" >"$work/$pages.ras" || die "no pages are drawn"
    filtered "$1" '' "$work/$pages.ras" "$work/$pages.prn"
    cat "$work/$pages.prn" >>"$work/expected"
    send "$1" application/pdf "$work/$pages.pdf" "$pages"
  done
}

# What waits for a printer is printed in the order in which it came.
case_in_order() {
  local model number
  long_document
  start_app
  for model in standard orlo; do
    send_to_held "$model"
    wait_until "the printer takes nothing" is_offline "$model"
    filtered "$model" '' "$work/long.ras" "$work/expected"
    send_three "$model"
    rm "$work/$model.hold"
    for number in 2 3 4; do
      job=$number
      wait_until "job $job is over" is_over
      [[ $state == completed ]] || fail "$model: job $job is $state"
    done
    wait_until "$model has printed them in order" cmp -s "$work/$model.prn" "$work/expected"
  done
}

is_state() { [[ $(job_state "$name" "$1") == "$2" ]]; }

# Those that were held back for that wait as before where no next one begins.
case_paused() {
  long_document
  start_app
  send_to_held standard
  wait_until "the printer takes nothing" is_offline standard
  send_three standard
  ask standard Pause-Printer >"$work/said" || fail "it does not pause: $(<"$work/said")"
  rm "$work/standard.hold"
  wait_until "the first job is over" is_state 1 completed
  wait_until "the last one waits" is_state 4 pending
  [[ $(job_state standard 2) == pending ]] || fail "the second job is $(job_state standard 2)"
  ask standard Resume-Printer >"$work/said" || fail "it does not resume: $(<"$work/said")"
  for job in 2 3 4; do
    wait_until "job $job is over" is_over
    [[ $state == completed ]] || fail "job $job is $state"
  done
}

attempts() { (($(grep -c 'Opening device for job' "$log") >= $1)); }

# While one printer is looked for, which takes long, those of the others are answered.
case_away() {
  document 1 >"$work/one.pdf"
  preload "$absent"
  start_app
  add_printer standard velka_standard socket://absent.invalid:9100
  add_printer orlo velka_orlo
  send standard application/pdf "$work/one.pdf" one
  wait_until "it is looked for again" attempts 2
  sleep 2
  reasons orlo >"$work/said"
  ! grep -q 'Still unable to open' "$log" || fail "the other printer waited for that to end"
  [[ $(<"$work/said") == none ]] || fail "the other printer is $(<"$work/said")"
}
