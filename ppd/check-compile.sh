#!/usr/bin/env bash
# check-compile.sh PPDC PPDS: a compiler that complains stops the build, and leaves no
# PPD; one that has nothing to say makes those that are built.
set -euo pipefail

ppdc=$1 ppds=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
  echo "$*" >&2
  failures=$((failures + 1))
}

# refused NAME SAID PPDC SOURCE
refused() {
  local said
  mkdir "$work/out"
  if said=$("$here/compile.sh" "$3" "$4" "$work/out" 2>&1); then fail "$1 passed"; fi
  [[ $said == *"$2"* ]] || fail "$1 is not said: $said"
  [[ -z $(ls -A "$work/out") ]] || fail "$1 left $(ls -A "$work/out")"
  rmdir "$work/out"
}

cp -r "$here/velka.drv" "$here/velka" "$work"
cat >>"$work/velka/paper.defs" <<'TEXT'
MediaSize Nonsuch
TEXT
refused "an unknown size" 'Unknown media size "Nonsuch"' "$ppdc" "$work/velka.drv"

printf '#!/bin/sh\n%q "$@" && echo a remark\n' "$ppdc" >"$work/talkative"
printf '#!/bin/sh\n%q "$@"; exit 3\n' "$ppdc" >"$work/failing"
chmod +x "$work/talkative" "$work/failing"
refused "a remark" "a remark" "$work/talkative" "$here/velka.drv"
refused "a failure" "status 3" "$work/failing" "$here/velka.drv"

mkdir "$work/sound"
"$here/compile.sh" "$ppdc" "$here/velka.drv" "$work/sound" || fail "the sources do not compile"
# Sites compile a description of their own by hand, in any locale.
"$ppdc" -d "$work" "$here/velka.drv" || fail "the sources do not compile by hand"
cmp "$work/velkastd.ppd" "$ppds/velka-standard.ppd" || fail "standard: other by hand"
cmp "$work/velkaorl.ppd" "$ppds/velka-orlo.ppd" || fail "orlo: other by hand"
for model in standard orlo; do
  cmp "$work/sound/velka-$model.ppd" "$ppds/velka-$model.ppd" || fail "$model: not what is built"
done
((failures == 0))
