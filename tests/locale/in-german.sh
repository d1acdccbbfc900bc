#!/usr/bin/env bash
# in-german.sh COMMAND [ARGUMENT...]: runs a command in a German locale, where numbers have
# a decimal comma and CUPS speaks German. Where the system has none, one is made below
# /tmp; where none can be made, the test is skipped.
set -euo pipefail

name=de_DE.UTF-8

skip() {
  echo "skipped: $*"
  exit 77
}

if ! locale -a 2>/dev/null | grep -qixE 'de_DE\.utf-?8'; then
  [[ -e /usr/share/i18n/locales/de_DE ]] || skip "no German locale, nor its source (package locales)"
  LOCPATH=$(mktemp -d /tmp/velka-locale.XXXXXX)
  export LOCPATH
  chmod 755 "$LOCPATH"
  # It warns of what C.UTF-8 lacks and still succeeds.
  said=$(localedef -i de_DE -f UTF-8 "$LOCPATH/$name" 2>&1) ||
    skip "a German locale could not be made: $said"
fi
unset LANG LANGUAGE
export LC_ALL=$name
[[ $(locale decimal_point) == , ]] || skip "the German locale has no decimal comma here"
exec "$@"
