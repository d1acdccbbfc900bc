#!/usr/bin/env bash
# check-compile.sh PPDC PPDS: a compiler that complains stops the build, and leaves no
# PPD; one that has nothing to say makes those that are built.
set -euo pipefail

ppdc=$1 ppds=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../tests/support/checks.sh"

# refused NAME SAID PPDC SOURCE
refused() {
  local said
  mkdir "$work/out"
  if said=$("$here/compile.sh" "$3" "$4" "$work/out" 2>&1); then fail "$1 passed"; fi
  [[ $said == *"$2"* ]] || fail "$1 is not said: $said"
  [[ -z $(ls -A "$work/out") ]] || fail "$1 left $(ls -A "$work/out")"
  rmdir "$work/out"
}

# broken NAME: the sources, one of which is about to be spoiled.
broken() {
  mkdir "$work/$1"
  cp -r "$here/velka.drv" "$here/velka" "$here/po" "$work/$1"
}

broken size
echo 'MediaSize Nonsuch' >>"$work/size/velka/paper.defs"
refused "an unknown size" 'Unknown media size "Nonsuch"' "$ppdc" "$work/size"
broken run
echo '  Choice from 0 to 9 by 2' >>"$work/run/velka/limit.defs"
refused "a run that misses its end" 'do not end on the last number' "$ppdc" "$work/run"

printf '#!/bin/sh\n%q "$@" && echo a remark\n' "$ppdc" >"$work/talkative"
printf '#!/bin/sh\n%q "$@"; exit 3\n' "$ppdc" >"$work/failing"
chmod +x "$work/talkative" "$work/failing"
refused "a remark" "a remark" "$work/talkative" "$here"
refused "a failure" "status 3" "$work/failing" "$here"

mkdir "$work/sound" "$work/hand"
"$here/compile.sh" "$ppdc" "$here" "$work/sound" || fail "the sources do not compile"
# Sites compile a description of their own by hand, in any locale.
"$here/expand.sh" "$here" "$work/hand"
"$ppdc" -d "$work/hand" "$work/hand/velka.drv" || fail "the sources do not compile by hand"
sed -i -E -f "$here/trim.sed" "$work"/hand/*.ppd
cmp "$work/hand/velkastd.ppd" "$ppds/velka-standard.ppd" || fail "standard: other by hand"
cmp "$work/hand/velkaorl.ppd" "$ppds/velka-orlo.ppd" || fail "orlo: other by hand"
for model in standard orlo; do
  cmp "$work/sound/velka-$model.ppd" "$ppds/velka-$model.ppd" || fail "$model: not what is built"
done
((failures == 0))
