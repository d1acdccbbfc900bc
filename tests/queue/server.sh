# A print server of the test's own: nothing of it lies outside $work, and it is
# reached through a socket there. Sourced; wants $build and $here.
# The parts of the test use each other's names.
# shellcheck shell=bash disable=SC2154,SC2034

# Short, because the name of a socket may not be long; readable for all, because the
# print service's user runs the filters.
work=$(mktemp -d /tmp/velka-queue.XXXXXX)
chmod 755 "$work"
prints=$work/prints
log=$work/error_log
server=
failures=0
# Names and job ids that no other server on this machine is likely to use: the PDF
# copies of jobs meet in /tmp.
first_job=$((100000000 + (RANDOM << 15) + RANDOM))
standard=velka-$first_job-standard
orlo=velka-$first_job-orlo
queues=("$standard" "$orlo")
# A log of the print service's user would be in the way of whoever prints next.
filter_log=/tmp/velka.log
had_filter_log=$([[ ! -e $filter_log ]] || echo yes)
# And that of another user would be in its way, which the server's log would be full of.
rm -rf "$filter_log" 2>/dev/null || true

fail() {
  printf 'FAILED: %s\n' "$*" >&2
  failures=$((failures + 1))
}

die() {
  printf 'error: %s\n' "$*" >&2
  [[ ! -s $log ]] || grep -v '^[dD] ' "$log" | tail -n 20 >&2
  exit 1
}

# wait_until WHAT COMMAND...: polls; a machine may be slow, but not for ever.
wait_until() {
  local what=$1 round
  shift
  for ((round = 0; round < ${rounds:-1500}; round++)); do
    if "$@"; then return; fi
    sleep 0.2
  done
  die "waited in vain until $what"
}

# Links to what the system's own folder holds beside ours.
link_system() {
  local from=$1 to=$2 entry
  mkdir -p "$to"
  for entry in "$from"/*; do
    [[ -e $to/${entry##*/} ]] || ln -s "$entry" "$to/"
  done
}

# Ours by the installer, the rest from the system.
make_folders() {
  local part bin data
  if grep -qE '^VELKA_CUPS_(SERVERBIN|DATADIR):STRING=/' "$build/CMakeCache.txt"; then
    die "configure with folders below the prefix to run this test"
  fi
  bin=$(cups-config --serverbin)
  data=$(cups-config --datadir)
  # Naming the component keeps the list that `uninstall` goes by as it is.
  cmake --install "$build" --prefix "$work/usr" --component Unspecified >"$work/install.log" 2>&1 ||
    die "installing failed: $(cat "$work/install.log")"
  for part in filter backend; do
    link_system "$bin/$part" "$work/usr/lib/cups/$part"
  done
  for part in drv ppdc mime; do
    link_system "$data/$part" "$work/usr/share/cups/$part"
  done
  link_system "$bin" "$work/usr/lib/cups"
  link_system "$data" "$work/usr/share/cups"
  install -m 755 "$here/velkastore" "$work/usr/lib/cups/backend/"
  mkdir -p "$work"/{etc,state,cache,spool/tmp,home}
  mkdir -m 1777 "$prints"
}

write_configuration() {
  # Where no blank is in its name.
  cp "$here/leak-suppressions.txt" "$work/"
  # What a server remembers of the jobs before it: the next one's number.
  echo "NextJobId $first_job" >"$work/cache/job.cache"
  cat >"$work/etc/cups-files.conf" <<TEXT
ServerRoot $work/etc
ServerBin $work/usr/lib/cups
DataDir $work/usr/share/cups
DocumentRoot $work/etc
StateDir $work/state
CacheDir $work/cache
RequestRoot $work/spool
TempDir $work/spool/tmp
ErrorLog $log
AccessLog $work/access_log
PageLog $work/page_log
Printcap $work/state/printcap
SystemGroup $(id -gn)
PassEnv ASAN_OPTIONS UBSAN_OPTIONS TSAN_OPTIONS LC_ALL LOCPATH
SetEnv LSAN_OPTIONS suppressions=$work/leak-suppressions.txt:print_suppressions=0
TEXT
  cat >"$work/etc/cupsd.conf" <<TEXT
LogLevel debug
PageLogFormat %p %j %P %C
MaxLogSize 0
ServerName localhost
Listen $work/socket
Browsing Off
WebInterface No
DefaultAuthType None
ErrorPolicy abort-job
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  JobPrivateAccess all
  JobPrivateValues none
  <Limit All>
    Order allow,deny
    Allow all
  </Limit>
</Policy>
TEXT
}

answers() { [[ $(lpstat -r 2>/dev/null) == "scheduler is running" ]]; }

start_server() {
  cupsd=$(PATH=$PATH:/usr/sbin:/sbin command -v cupsd) || die "there is no cupsd here"
  make_folders
  write_configuration
  # The commands' and the server's view of the world, whatever the caller's is.
  export CUPS_SERVER=$work/socket CUPS_SERVERROOT=$work/etc HOME=$work/home LC_ALL=C
  unset PPD PRINTER LPDEST CUPS_USER DESTDIR
  server_files=(-c "$work/etc/cupsd.conf" -s "$work/etc/cups-files.conf")
  "$cupsd" -t "${server_files[@]}" >"$work/cupsd.out" 2>&1 || die "$(cat "$work/cupsd.out")"
  # A copy, because security profiles that know the system's server by its path would
  # keep it from this folder.
  install -m 755 "$cupsd" "$work/cupsd"
  run_server
}

# Ends with this script, however that ends. VELKA_SERVER_LOCALE is its locale and that of
# what it starts, where the service manager sets one for the whole system.
run_server() {
  LC_ALL=${VELKA_SERVER_LOCALE:-C} setpriv --pdeathsig TERM "$work/cupsd" -f "${server_files[@]}" >"$work/cupsd.out" 2>&1 &
  server=$!
  wait_until "the server answers" server_is_up
}

server_is_up() {
  kill -0 "$server" 2>/dev/null || die "cupsd ended: $(cat "$work/cupsd.out")"
  answers
}

# add_queue NAME PPD-OF-THE-SERVER
add_queue() {
  lpadmin -p "$1" -E -v "velkastore:$prints" -m "$2" 2>>"$work/lpadmin.log" ||
    die "lpadmin could not add $1 with $2: $(cat "$work/lpadmin.log")"
}

add_queues() {
  add_queue "$standard" velka/velka-standard.ppd
  add_queue "$orlo" velka/velka-orlo.ppd
}

end_server() {
  [[ -n $server ]] || return 0
  kill "$server" 2>/dev/null || true
  wait "$server" 2>/dev/null || true
  server=
}

stop_server() {
  rm -f "$prints"/hold-*
  end_server
}

clean_up() {
  local status=$?
  stop_server
  if [[ -z $had_filter_log ]]; then rm -f "$filter_log"; fi
  if ((status != 0)) && [[ -n ${VELKA_KEEP:-} ]]; then
    cp -a "$work" "$build/" && echo "kept: $build/${work##*/}" >&2
  fi
  rm -rf "$work"
}
trap clean_up EXIT
