# Sourced by tests that run a server, beside checks.sh: they wait for it, and show the end of
# its log, $log, where they cannot go on.
# shellcheck shell=bash disable=SC2154

die() {
  printf 'error: %s\n' "$*" >&2
  [[ ! -s $log ]] || grep -v '^[dD] ' "$log" | tail -n 25 >&2
  exit 1
}

# wait_until WHAT COMMAND...: polls; a machine may be slow, but not for ever.
# $rounds, where set, is how often.
wait_until() {
  local what=$1 round
  shift
  for ((round = 0; round < ${rounds:-1500}; round++)); do
    if "$@"; then return; fi
    sleep 0.2
  done
  die "waited in vain until $what"
}
