#!/usr/bin/env bash
# install-packages.sh [--lint | --browser | --bench | --cover | --mutants | --package | --other-release]:
# installs what this system is built, tested and shown with on Debian 12 and 13, and does
# nothing when all of it is there already.
set -euo pipefail

packages=(
  g++ cmake ninja-build pkg-config      # build
  libcups2-dev libcupsimage2-dev        # raster and PPD interfaces, cups-config
  cups-ppdc cups-client                 # ppdc, cupstestppd
  cups cups-filters ghostscript         # the chain in front of the filter, cupsd
  cups-filters-core-drivers             # pdftopdf, pdftoraster
  poppler-utils                         # pdftoppm, pdfinfo
  libcairo2-dev libpng-dev              # pictures of pages
  libmicrohttpd-dev nlohmann-json3-dev  # velkaview --serve
  libpappl-dev libpoppler-glib-dev      # the printer application
  cups-ipp-utils curl                   # its tests
  libgtest-dev libgmock-dev locales     # tests, some of them in German
  zbar-tools                            # zbarimg, for the tests of barcodes
  appstream mandoc                      # checks of the metainfo and the manual pages
  python3                               # drives the browser in the tests of --serve
)
# A browser is large: its tests say that they are skipped where there is none.
browser=(chromium chromium-driver)

case "${1:-}" in
  '') ;;
  --lint) packages+=(clang-format clang-tidy libbenchmark-dev) ;;
  --browser) packages=("${browser[@]}") ;;
  --bench)
    packages+=(
      "${browser[@]}"
      libbenchmark-dev valgrind
      printer-driver-gutenprint           # filters to measure beside ours
      lomiri-wallpapers-16.04             # photographs
    )
    ;;
  --cover) packages+=(gcovr) ;;
  --mutants) packages+=(python3) ;;
  --package) packages+=(build-essential debhelper devscripts fakeroot lintian) ;;
  --other-release) packages=(debootstrap) ;;
  *)
    echo "usage: $0 [--lint | --browser | --bench | --cover | --mutants | --package | --other-release]" >&2
    exit 2
    ;;
esac

die() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

is_installed() {
  [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
  die "this needs Debian's apt-get; elsewhere install by hand what these packages hold: ${packages[*]}"
fi

missing=()
for package in "${packages[@]}"; do
  is_installed "$package" || missing+=("$package")
done
if ((${#missing[@]} == 0)); then
  exit 0
fi

as_root=(env DEBIAN_FRONTEND=noninteractive)
if ((EUID != 0)); then
  command -v sudo >/dev/null ||
    die "not root and no sudo here; as root run: apt-get install ${missing[*]}"
  as_root=(sudo "${as_root[@]}")
fi

echo "Installing: ${missing[*]}"
# Lists may be absent (a fresh container) or old; when they cannot be fetched,
# the ones at hand may still do.
"${as_root[@]}" apt-get update ||
  echo "warning: apt-get update failed, going on with the package lists at hand" >&2
"${as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}" ||
  die "installing failed (see above); without these packages it cannot go on: ${missing[*]}"
