#!/usr/bin/env bash
# compile.sh PPDC SOURCES FOLDER: compiles the PPDs of both models into a folder. SOURCES
# is the folder of velka.drv.
# ppdc leaves out what it does not understand, says so and reports success, so a word
# from it is an error. It also reads and writes numbers the way the locale does.
set -euo pipefail

ppdc=$1 sources=$2 folder=$3
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d "$folder/ppdc.XXXXXX")
trap 'rm -rf "$work"' EXIT

"$here/expand.sh" "$sources" "$work"
status=0
said=$(LC_ALL=C "$ppdc" -d "$work" "$work/velka.drv" 2>&1) || status=$?
if ((status != 0)) || [[ -n $said ]]; then
  printf 'error: %s does not compile (status %s):\n%s\n' "$sources/velka.drv" "$status" "$said" >&2
  exit 1
fi
# ppdc names its output by the 8.3 name that a PPD has to carry inside, in lower case.
sed -i -E -f "$here/trim.sed" "$work/velkastd.ppd" "$work/velkaorl.ppd"
mv "$work/velkastd.ppd" "$folder/velka-standard.ppd"
mv "$work/velkaorl.ppd" "$folder/velka-orlo.ppd"
