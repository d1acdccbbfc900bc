# Sourced by tests that are scripts: a folder that goes with them, $work, and failures that
# are told and counted. A test ends with ((failures == 0)).
# shellcheck shell=bash disable=SC2034
# $work_form, where set, is its name as mktemp takes it.
work=$(mktemp -d ${work_form:+"$work_form"})
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
  printf 'FAILED: %s\n' "$*" >&2
  failures=$((failures + 1))
}
