#!/usr/bin/env bash
# ppd-version.sh PPDS: the version of the PPDs in a folder and a digest of what they say, in
# one line, as ppd/versions keeps it. Queues tell PPDs apart by their version, so that it
# must change with the contents; the name of the compiler and its fonts are none of those.
set -euo pipefail

ppds=$1

contents() {
  LC_ALL=C sed -E -e '/^\*%/d' -e '/^\*(Font|FileVersion|NickName)[ :]/d' \
    -e '/^\*[a-z]{2}(_[A-Z]{2})?\.Translation NickName/d' \
    "$ppds/velka-standard.ppd" "$ppds/velka-orlo.ppd"
}

version=$(sed -n 's/^\*FileVersion: "\(.*\)"$/\1/p' "$ppds"/velka-{standard,orlo}.ppd | sort -u)
[[ $version =~ ^[0-9.]+$ ]] || { echo "no version, or not one: $version" >&2; exit 1; }
digest=$(contents | sha256sum)
echo "$version ${digest%% *}"
