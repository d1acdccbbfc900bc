# Sourced by tests that are scripts: a folder that goes with them, and failures that are told
# and counted. A test ends with ((failures == 0)).
# shellcheck shell=bash disable=SC2034
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
  printf 'FAILED: %s\n' "$*" >&2
  failures=$((failures + 1))
}
