#!/usr/bin/env bash
# check-cups.sh BUILD-FOLDER: CUPS's own driverless client in front of the application, from a
# document to the stream in the printer, with a print server of the test's own.
set -euo pipefail

build=$1
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/../queue" && pwd)
# shellcheck source=tests/queue/server.sh
source "$here/server.sh"
# shellcheck source=tests/printerapp/documents.sh
source "$here/../printerapp/documents.sh"
app=$build/printerapp/velka-printer-app
streams=$work/streams
application=

end_application() {
  [[ -n $application ]] || return 0
  kill -KILL "$application" 2>/dev/null || true
  wait "$application" 2>/dev/null || true
}
trap 'end_application; clean_up' EXIT

# A client that gets no answer would wait for ever.
in_time() { timeout 180 "$@"; }

start_application() {
  local port
  free_port
  uri=ipp://localhost:$port/ipp
  mkdir -p "$work/app" "$work/tmp" "$streams"
  TMPDIR=$work/tmp setpriv --pdeathsig KILL "$app" server -o server-port="$port" \
    -o spool-directory="$work/app/spool" -o log-file="$work/app/log" -o log-level=debug \
    </dev/null >"$work/app/out" 2>&1 &
  application=$!
  is_there() { (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; }
  wait_until "the application answers" is_there
}

is_open() { [[ $(in_time lpstat -a "$1" 2>/dev/null) == "$1 accepting"* ]]; }

# add_driverless MODEL: its printer, and a queue of the same name. CUPS opens the queue when it
# knows the printer; -E would open it before, as that of a printer without colour.
add_driverless() {
  mkdir "$streams/$1"
  in_time "$app" add -u "$uri/system" -d "$1" -m "velka_$1" -v "file://$streams/$1" </dev/null ||
    die "no printer $1"
  in_time lpadmin -p "$1" -v "$uri/print/$1" -m everywhere 2>"$work/lpadmin.log" ||
    die "no driverless queue $1: $(cat "$work/lpadmin.log")"
  wait_until "the queue $1 is open" is_open "$1"
}

is_printed() {
  local left
  left=$(in_time lpstat -W not-completed -o "$1") && [[ -z $left && -s $streams/$1/$2.prn ]]
}

# print_inks INKS QUEUE TITLE [LP-OPTION...]: two pages that have black, and red where INKS
# is "both".
print_inks() {
  local inks=$1 queue=$2 title=$3 stats red
  shift 3
  in_time lp -d "$queue" -t "$title" -o media=iso_a4_210x297mm "$@" "$work/letter.pdf" >/dev/null ||
    die "$queue takes no job"
  wait_until "$title of $queue is printed" is_printed "$queue" "$title"
  stats=$("$build/view/velkaview" --stats "$streams/$queue/$title.prn" 2>/dev/null) ||
    fail "$title of $queue: no stream"
  stat_of() { sed -n "s/^$1  *//p" <<<"$stats"; }
  [[ $(stat_of pages) == 2 ]] || fail "$title of $queue: $(stat_of pages) pages"
  (($(stat_of "black dots") > 1000)) || fail "$title of $queue: $(stat_of "black dots") black dots"
  red=$(stat_of "red dots")
  if [[ $inks == both ]]; then ((red > 1000)); else ((red == 0)); fi ||
    fail "$title of $queue: $red red dots"
}

start_server
start_application
document 2 >"$work/letter.pdf"
for model in standard orlo; do
  add_driverless "$model"
  print_inks both "$model" unasked
  print_inks black "$model" monochrome -o print-color-mode=monochrome
  print_inks black "$model" grey -o ColorModel=Gray
  in_time lpadmin -p "$model" -o print-color-mode-default=monochrome
  print_inks black "$model" as-the-queue
  print_inks both "$model" colour -o print-color-mode=color
done
((failures == 0))
