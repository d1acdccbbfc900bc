#!/usr/bin/env bash
# check-app.sh BUILD-FOLDER HELPERS CASE: jobs through the printer application. HELPERS is
# the folder of the programs that make raster and stand in for printers.
set -euo pipefail

build=$1 rasters=$2/app_raster case=$3
# shellcheck disable=SC2034  # for the cases
printers=$2/app_printer slowly=$2/libapp_slowly.so absent=$2/libapp_absent.so
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
helpers=()
"case_$case"
((failures == 0))
