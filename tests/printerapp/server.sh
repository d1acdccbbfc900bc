# A printer application of the test's own: it listens to a port of its own on loopback, keeps
# all in $work, and its printers print to files there. Sourced; wants $build, $here.
# The parts of the test use each other's names.
# shellcheck shell=bash disable=SC2154,SC2034

app=${VELKA_APP:-$build/printerapp/velka-printer-app}
filter=$build/filter/rastovelka
work_form=/tmp/velka-app.XXXXXX
# shellcheck source=tests/support/checks.sh
source "$here/../support/checks.sh"
# shellcheck source=tests/support/servers.sh
source "$here/../support/servers.sh"
prints=$work/prints
log=$work/log
server=

skip() {
  echo "skipped: $*"
  exit 77
}

answers() {
  kill -0 "$server" 2>/dev/null || die "the server ended: $(cat "$work/server.out")"
  (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null
}

# preload LIBRARY: the applications that start from now on have it in front of their own. It is
# found by a name without blanks, at which the loader would cut it.
preload() {
  ln -sf "$1" "$work/preloaded.so"
  preloaded=$work/preloaded.so
}
preloaded=

# start_app [OPTION=VALUE...]
start_app() {
  local options=() option
  for option in "$@"; do options+=(-o "$option"); done
  mkdir -p "$work/home" "$work/tmp" "$prints"
  export HOME=$work/home TMPDIR=$work/tmp LC_ALL=C
  unset CUPS_SERVER PPD DESTDIR XDG_STATE_HOME
  : "${port:=}"
  [[ -n $port ]] || free_port
  setpriv --pdeathsig KILL env ${preloaded:+"LD_PRELOAD=$preloaded"} "$app" server -o server-port="$port" -o spool-directory="$work/spool" \
    -o log-file="$log" -o log-level=debug "${options[@]}" </dev/null >"$work/server.out" 2>&1 &
  server=$!
  wait_until "the server answers" answers
  [[ -z $preloaded ]] || grep -qF "$(readlink -f "$preloaded")" "/proc/$server/maps" ||
    die "the server runs without $preloaded"
}

# end_app [SIGNAL]
end_app() {
  [[ -n $server ]] || return 0
  kill "-${1:-TERM}" "$server" 2>/dev/null || true
  wait "$server" 2>/dev/null || true
  server=
}

clean_up() {
  local status=$?
  end_app KILL
  for helper in "${helpers[@]}"; do kill "$helper" 2>/dev/null || true; done
  if ((status != 0)) && [[ -n ${VELKA_KEEP:-} ]]; then cp -a "$work" "$VELKA_KEEP/"; fi
  rm -rf "$work"
}
trap clean_up EXIT

printer_uri() { echo "ipp://localhost:$port/ipp/print/$1"; }

# add_printer NAME DRIVER [DEVICE-URI]: its jobs become files of their names in $prints/NAME.
add_printer() {
  mkdir -p "$prints/$1"
  "$app" add -u "ipp://localhost:$port/ipp/system" -d "$1" -m "$2" \
    -v "${3:-file://$prints/$1}" >"$work/add.out" 2>&1 </dev/null ||
    die "cannot add $1: $(cat "$work/add.out")"
}

add_printers() {
  add_printer standard velka_standard
  add_printer orlo velka_orlo
}

ppd_of() { echo "$build/ppd/velka-$1.ppd"; }

# ask NAME OPERATION [ATTRIBUTE-LINE...]: the answer's attributes, one a line.
ask() {
  local name=$1 operation=$2
  shift 2
  {
    echo '{ VERSION 2.0' "OPERATION $operation" 'GROUP operation-attributes-tag'
    echo 'ATTR charset attributes-charset utf-8' 'ATTR language attributes-natural-language en'
    echo "ATTR uri printer-uri $(printer_uri "$name")" 'ATTR name requesting-user-name tester'
    printf '%s\n' "$@" '}'
  } >"$work/ask.test"
  ipptool -tv "$(printer_uri "$name")" "$work/ask.test" 2>&1
}

# job_state NAME JOB
job_state() {
  ask "$1" Get-Job-Attributes "ATTR integer job-id $2" |
    sed -n 's/^ *job-state (enum) = //p' | tail -n 1
}

# send NAME TYPE FILE TITLE [ATTRIBUTE-LINE...]: prints the job's number. The lines are
# job attributes as ipptool has them.
send() {
  local name=$1 type=$2 file=$3 title=$4 said
  shift 4
  said=$(ask "$name" Print-Job "ATTR name job-name \"$title\"" \
    "ATTR mimeMediaType document-format $type" 'GROUP job-attributes-tag' "$@" "FILE $file") || true
  job=$(sed -n 's/^ *job-id (integer) = //p' <<<"$said")
  [[ -n $job ]] || die "$name takes no $type: $said"
}

is_over() {
  state=$(job_state "$name" "$job")
  [[ $state == completed || $state == aborted || $state == canceled ]]
}

# print_job NAME TYPE FILE TITLE [ATTRIBUTE-LINE...]: sends it and waits for its end; its
# stream is $prints/NAME/TITLE.prn, its state $state.
print_job() {
  name=$1
  send "$@"
  wait_until "job $job of $name is over" is_over
}

# filtered MODEL OPTIONS RASTER OUTPUT: what the filter makes of a raster.
filtered() {
  PPD=$(ppd_of "$1") "$filter" 1 tester title 1 "$2" <"$3" >"$4" 2>/dev/null ||
    die "the filter failed"
}

# same_bytes WHAT GOT EXPECTED
same_bytes() {
  [[ -s $3 ]] || fail "$1: nothing to compare with"
  cmp "$2" "$3" || fail "$1: other bytes"
}

# pattern KIND WIDTH HEIGHT X Y PAGES NAME: NAME.pwg and NAME.ras in $work.
pattern() { "$rasters" "${@:1:6}" "$work/$7.pwg" "$work/$7.ras" || die "no raster"; }

# message NAME JOB: the job's own words on its state.
message() {
  ask "$1" Get-Job-Attributes "ATTR integer job-id $2" |
    sed -n 's/^ *job-state-message (textWithoutLanguage) = //p' | tail -n 1
}
