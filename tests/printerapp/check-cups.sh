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
application=
trap 'kill -KILL $application 2>/dev/null || true; clean_up' EXIT

port=$((20000 + RANDOM % 12000))
uri=ipp://localhost:$port/ipp

start_server
mkdir -p "$work/app" "$work/tmp"
TMPDIR=$work/tmp setpriv --pdeathsig KILL "$app" server -o server-port="$port" \
  -o spool-directory="$work/app/spool" -o log-file="$work/app/log" -o log-level=debug \
  </dev/null >"$work/app/out" 2>&1 &
application=$!
is_there() { (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; }
wait_until "the application answers" is_there

# A page of paper for each of the document.
document 2 >"$work/letter.pdf"
sent=0
for model in standard orlo; do
  mkdir "$work/app/$model"
  "$app" add -u "$uri/system" -d "$model" -m "velka_$model" -v "file://$work/app/$model" </dev/null ||
    die "no printer $model"
  lpadmin -p "$model" -E -v "$uri/print/$model" -m everywhere 2>"$work/lpadmin.log" ||
    die "no driverless queue $model: $(cat "$work/lpadmin.log")"
  lp -d "$model" -t letter -o media=iso_a4_210x297mm "$work/letter.pdf" >/dev/null
  sent=$((sent + 1))
  printed=
  has_printed() {
    (($(grep -c "Completed, job-impressions-completed" "$work/app/log") == sent)) &&
      printed=$(find "$work/app/$model" -type f -size +0) && [[ -n $printed ]] &&
      [[ -z $(lpstat -W not-completed -o "$model") ]]
  }
  wait_until "$model has printed" has_printed
  "$build/view/velkaview" --stats "$printed" >"$work/stats" 2>"$work/told" || fail "$model: no stream"
  stat_of() { sed -n "s/^$1  *//p" "$work/stats"; }
  [[ $(stat_of pages) == 2 ]] || fail "$model: $(stat_of pages) pages"
  # Whether red is among them is up to the client, see docs/printerapp.md.
  (($(stat_of "black dots") > 1000)) || fail "$model: $(stat_of "black dots") black dots"
done
((failures == 0))
