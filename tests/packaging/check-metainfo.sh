#!/usr/bin/env bash
# check-metainfo.sh FILE
# The owner has chosen no licence and nobody knows the printers' hardware ids, so the
# validator must remark on those, and on nothing else of weight. That there is no home page
# is a warning to newer ones only.
set -euo pipefail

command -v appstreamcli >/dev/null || { echo "skipped: appstreamcli is not installed" && exit 77; }
wanted=$'driver-no-modalias warning\nmetadata-license-missing error'
found=$( (appstreamcli validate --no-net --format=yaml "$1" || true) |
  awk '/^- tag:/ { tag = $3 } /^  severity:/ && $2 != "info" && $2 != "pedantic" { print tag, $2 }' |
  grep -vx 'url-homepage-missing warning' |
  LC_ALL=C sort)
if [[ $found != "$wanted" ]]; then
  printf '%s\ninstead of\n%s\n' "$found" "$wanted" >&2
  exit 1
fi
