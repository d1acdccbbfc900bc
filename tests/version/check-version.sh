#!/usr/bin/env bash
# check-version.sh SOURCES VERSION PROGRAM...
# One version in all that users, packagers and catalogues read.
set -euo pipefail

sources=$1 version=$2
shift 2
failures=0

equal() {
  [[ $2 == "$3" ]] && return
  printf '%s: %s instead of %s\n' "$1" "$2" "$3" >&2
  failures=$((failures + 1))
}

for program; do
  name=$(basename "$program")
  equal "$name --version" "$("$program" --version 2>&1)" "$name (Velka) $version"
done
equal "newest of NEWS.md" "$(sed -n 's/^## \([0-9.]*\).*/\1/p' "$sources/NEWS.md" | head -n 1)" \
  "$version"
equal "newest of debian/changelog" \
  "$(sed -n '1s/^velka (\([0-9.]*\)).*/\1/p' "$sources/debian/changelog")" "$version"
equal "newest of the metainfo" \
  "$(sed -n 's/.*<release version="\([0-9.]*\)".*/\1/p' "$sources/packaging/velka.metainfo.xml" |
    head -n 1)" "$version"
for page in "$sources"/docs/*.[18]; do
  equal "$(basename "$page")" "$(sed -n '1s/.*"Velka \([0-9.]*\)".*/\1/p' "$page")" "$version"
done
exit "$((failures > 0))"
