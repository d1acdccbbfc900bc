# Sourced by tests that run a server, beside checks.sh: they wait for it, and show the end of
# its log, $log, where they cannot go on.
# shellcheck shell=bash disable=SC2154

die() {
  printf 'error: %s\n' "$*" >&2
  [[ ! -s $log ]] || grep -v '^[dD] ' "$log" | tail -n 25 >&2
  exit 1
}

# wait_until WHAT COMMAND...: polls; a machine may be slow, but not for ever. What was waited
# for is told before the test's own time is over: $patience is in seconds, 180 where not set.
wait_until() {
  local what=$1 end=$((SECONDS + ${patience:-180}))
  shift
  while ((SECONDS < end)); do
    if "$@"; then return; fi
    sleep 0.2
  done
  die "waited in vain until $what"
}

# listens PORT: seen without a connection, which a printer has only one of.
listens() {
  awk -v port="$(printf %04X "$1")" '
    $4 == "0A" && $2 ~ ":" port "$" { found = 1 }
    END { exit !found }' < <(cat /proc/net/tcp /proc/net/tcp6 2>/dev/null)
}

# Sets $port to one that nobody listens to, here or in a test beside this one.
free_port() {
  local try
  for ((try = 0; try < 200; try++)); do
    port=$((20000 + RANDOM % 12000))
    if ! listens "$port"; then return; fi
  done
  die "no port is free"
}
