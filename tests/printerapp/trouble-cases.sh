# What printers, people and clients do in the middle of a job.
# shellcheck shell=bash disable=SC2154,SC2034

# start_printer NAME: one behind a socket; what it gets last is $work/NAME.prn, and it is told
# what to do by $work/NAME.hold and $work/NAME.drop.
start_printer() {
  setpriv --pdeathsig KILL "$printers" "${device_port[$1]}" "$work/$1.prn" "$work/$1" &
  helpers+=("$!")
  wait_until "the printer is there" listens "${device_port[$1]}"
}

# add_device NAME DRIVER: a queue for such a printer, which need not be there yet.
add_device() {
  local own=$port
  free_port
  device_port[$1]=$port
  port=$own
  add_printer "$1" "$2" "socket://127.0.0.1:${device_port[$1]}"
}

declare -A device_port

reasons() {
  ask "$1" Get-Printer-Attributes 'ATTR keyword requested-attributes printer-state-reasons' |
    sed -n 's/^ *printer-state-reasons ([^)]*) = //p' | tail -n 1
}

is_offline() { [[ $(reasons "$1") == *offline* ]]; }
is_not_offline() { ! is_offline "$1"; }

# More than what waits on the way to a printer.
long_document() {
  document 15 595 842 0.7 >"$work/long.pdf"
  draw <"$work/long.pdf" >"$work/long.ras" || die "no pages are drawn"
}

# send_to_held MODEL: a printer that takes nothing, and a long job for it.
send_to_held() {
  add_device "$1" "velka_$1"
  touch "$work/$1.hold"
  start_printer "$1"
  name=$1
  send "$1" application/pdf "$work/long.pdf" long
}

case_out_of_paper() {
  long_document
  start_app
  send_to_held standard
  wait_until "the printer is said to be off line" is_offline standard
  rm "$work/standard.hold"
  wait_until "the job is over" is_over
  [[ $state == completed ]] || fail "the job is $state"
  wait_until "the printer is well again" is_not_offline standard
  filtered standard '' "$work/long.ras" "$work/expected"
  wait_until "the printer has all" cmp -s "$work/standard.prn" "$work/expected"
}

case_switched_off() {
  long_document
  start_app
  send_to_held orlo
  wait_until "the printer takes nothing" is_offline orlo
  touch "$work/orlo.drop"
  rm "$work/orlo.hold"
  wait_until "the job sees it" grep -q 'The printer is gone' "$log"
  is_offline orlo || fail "a printer that is gone is said to be $(reasons orlo)"
  rm "$work/orlo.drop"
  wait_until "the job is over" is_over
  [[ $state == completed ]] || fail "the job is $state"
  filtered orlo '' "$work/long.ras" "$work/expected"
  wait_until "the printer has all of it, from the beginning" cmp -s "$work/orlo.prn" "$work/expected"
}

children() { cat /proc/"$server"/task/*/children 2>/dev/null; }

# The form in progress is ended: the stream ends as that of a whole job.
case_cancel() {
  local model said
  long_document
  start_app
  for model in standard orlo; do
    send_to_held "$model"
    wait_until "the printer takes nothing" is_offline "$model"
    said=$(ask "$model" Cancel-Job "ATTR integer job-id $job") || fail "it cannot be cancelled: $said"
    rm "$work/$model.hold"
    wait_until "the job is over" is_over
    [[ $state == canceled ]] || fail "the job is $state"
    filtered "$model" '' "$work/long.ras" "$work/expected"
    [[ -s $work/$model.prn && $(stat -c %s "$work/$model.prn") -lt $(stat -c %s "$work/expected") ]] ||
      fail "$model printed nothing or all"
    # A form feed and the end of the document.
    [[ $(tail -c 3 "$work/$model.prn" | od -An -tx1) == ' 0c 1b 40' ]] ||
      fail "$model: the form is not ended"
    wait_until "the filter is gone" no_children
    print_job "$model" application/pdf "$work/long.pdf" next
    [[ $state == completed ]] || fail "the next job is $state"
    wait_until "the next job is there" cmp -s "$work/$model.prn" "$work/expected"
  done
}

no_children() { [[ -z $(children) ]]; }

filter_of_server() {
  local child
  for child in $(children); do
    if [[ $(readlink "/proc/$child/exe") == "$filter" ]]; then echo "$child"; fi
  done
}

case_filter_dies() {
  long_document
  start_app
  send_to_held standard
  wait_until "the printer takes nothing" is_offline standard
  kill -KILL "$(filter_of_server)"
  rm "$work/standard.hold"
  wait_until "the job is over" is_over
  [[ $state == aborted ]] || fail "the job is $state"
  [[ $(message standard "$job") == *'rastovelka was ended by signal 9'* ]] ||
    fail "it says $(message standard "$job")"
}

case_two_at_once() {
  local model jobs=()
  long_document
  start_app
  for model in standard orlo; do
    send_to_held "$model"
    jobs+=("$job")
  done
  wait_until "one waits in the middle" is_offline standard
  wait_until "so does the other" is_offline orlo
  rm "$work"/*.hold
  for model in standard orlo; do
    filtered "$model" '' "$work/long.ras" "$work/expected"
    wait_until "$model has printed" cmp -s "$work/$model.prn" "$work/expected"
  done
}

# Jobs wait for a printer that is not there while the application is ended by force, the first
# one begun already, and are printed with their own options by the next one.
case_restart() {
  local first options
  document >"$work/letter.pdf"
  draw <"$work/letter.pdf" >"$work/letter.ras"
  start_app
  add_device standard velka_standard
  name=standard
  send standard application/pdf "$work/letter.pdf" first 'ATTR keyword RedMinValue 90'
  first=$job
  wait_until "the printer is missed" is_offline standard
  send standard application/pdf "$work/letter.pdf" second 'ATTR keyword HalftoneRed Screen6x6'
  wait_until "the state is saved" grep -q 'name="*second' "$work/spool/state"
  end_app KILL
  touch "$work/standard.hold"
  start_printer standard
  start_app
  rm "$work/standard.hold"
  for job in "$first" "$job"; do
    wait_until "job $job is over" is_over
    [[ $state == completed ]] || fail "after a restart job $job is $state"
  done
  for options in RedMinValue=90 HalftoneRed=Screen6x6; do
    filtered standard "$options" "$work/letter.ras" "$work/next"
    cat "$work/next" >>"$work/expected"
  done
  wait_until "both are printed" cmp -s "$work/standard.prn" "$work/expected"
}

case_limits() {
  start_app max-pages=2 max-dots=4000000
  add_printers
  document 3 >"$work/three.pdf"
  print_job standard application/pdf "$work/three.pdf" three
  [[ $state == aborted && $(message standard "$job") == *'3 pages, and 2 are the most'* ]] ||
    fail "three pages: $state, $(message standard "$job")"
  pattern srgb 3000 2000 180 180 3 three
  print_job orlo image/pwg-raster "$work/three.pwg" raster
  [[ $state == aborted && $(message orlo "$job") == *'more than 2 pages'* ]] ||
    fail "three pages of raster: $state, $(message orlo "$job")"
  document 1 >"$work/one.pdf"
  print_job standard application/pdf "$work/one.pdf" large 'ATTR enum print-quality 5'
  [[ $state == aborted && $(message standard "$job") == *'4000000 are the most'* ]] ||
    fail "a large page: $state, $(message standard "$job")"
  print_job standard application/pdf "$work/one.pdf" small
  [[ $state == completed ]] || fail "a page within the limits is $state"
}

case_broken_documents() {
  start_app
  add_printers
  printf '%%PDF-1.4\nnothing\n' >"$work/broken.pdf"
  print_job standard application/pdf "$work/broken.pdf" broken
  [[ $state == aborted && $(message standard "$job") == *'cannot be read'* ]] ||
    fail "a broken PDF: $state, $(message standard "$job")"
  document 1 >"$work/one.pdf"
  print_job standard application/pdf "$work/one.pdf" none 'ATTR rangeOfInteger page-ranges 7-9'
  [[ $state == aborted && $(message standard "$job") == *'none of the pages'* ]] ||
    fail "no page: $state, $(message standard "$job")"
  pattern srgb 3000 2000 180 180 1 small
  head -c 5000 "$work/small.pwg" >"$work/cut.pwg"
  print_job orlo image/pwg-raster "$work/cut.pwg" cut
  print_job orlo image/pwg-raster "$work/small.pwg" whole
  [[ $state == completed ]] || fail "the job behind a broken one is $state"
}

# Others can neither read what waits nor reach the server from outside.
case_private() {
  local addresses
  document >"$work/letter.pdf"
  start_app
  add_device standard velka_standard
  send standard application/pdf "$work/letter.pdf" letter
  wait_until "the job waits" is_offline standard
  [[ $(stat -c %a "$work/spool") == 700 ]] || fail "the spool folder is open"
  [[ -n $(find "$work/spool" -name '*.pdf') ]] || fail "no document is spooled"
  [[ -z $(find "$work/spool" -type f -perm /077) ]] ||
    fail "others may read $(find "$work/spool" -type f -perm /077)"
  addresses=$(awk -v port="$(printf '%04X' "$port")" '$4 == "0A" {
    split($2, local, ":"); if (local[2] == port) print local[1] }' /proc/net/tcp /proc/net/tcp6)
  [[ -n $addresses ]] || fail "nobody listens"
  ! grep -vE '^(0100007F|00000000000000000000000001000000)$' <<<"$addresses" ||
    fail "it listens to $addresses"
}
