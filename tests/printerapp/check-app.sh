#!/usr/bin/env bash
# check-app.sh BUILD-FOLDER RASTERS CASE: jobs through the printer application. RASTERS is
# the program that makes raster for them.
set -euo pipefail

build=$1 rasters=$2 case=$3
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=tests/printerapp/server.sh
source "$here/server.sh"
# shellcheck source=tests/printerapp/documents.sh
source "$here/documents.sh"
for cases in "$here"/*-cases.sh; do
  # shellcheck source=/dev/null
  source "$cases"
done

command -v ipptool >/dev/null || skip "ipptool is not here (package cups-ipp-utils)"
"case_$case"
((failures == 0))
