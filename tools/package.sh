#!/usr/bin/env bash
# package.sh build | check | reproduce: the Debian packages of the checked-out files.
#   build      makes them in build/package and has lintian look at them
#   check      installs them on a small Debian system, prints, upgrades from the package of
#              the commit before with a queue in place, removes and purges
#   reproduce  builds them once more, in another folder and on another day, and compares
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/common.sh
source tools/common.sh

folder=build/package
version=$(sed -n '1s/.*(\(.*\)).*/\1/p' debian/changelog)
release=${VELKA_PACKAGE_RELEASE:-$(. /etc/os-release && echo "$VERSION_CODENAME")}
notes=build/package.log
# shellcheck source=tools/system.sh
source tools/system.sh
root=$cache/$release-$(dpkg --print-architecture)-print

skip() {
  echo "skipped: the package was not tried: $*"
  exit 0
}

# make_in FOLDER [OPTION...]
make_in() {
  local to=$1/velka-$version
  shift
  rm -rf "${to%/*}"
  copy_sources "$to"
  (cd "$to" && dpkg-buildpackage -us -uc "$@") >"$to.log" 2>&1 ||
    die "dpkg-buildpackage failed, see $to.log: $(tail -n 5 "$to.log")"
}

# Everything it says beyond a hint is an error, or has an override with its reason. But for
# what differs from release to release: the tags that there are, and the newest policy.
look_at() {
  local said differs='alien-tag|out-of-date-standards-version'
  said=$(lintian -i -I --pedantic --fail-on none "$folder"/velka_*.changes 2>&1)
  printf '%s\n' "$said" | grep -E '^[EWI]: ' | grep -vE "$differs" && die "lintian has remarks"
  say "lintian has no remark"
}

build_packages() {
  tools/install-packages.sh --package
  say "Building the packages ($version)"
  make_in "$folder"
  look_at
  ls -l "$folder"/*.deb
}

# The newest commit before this one, with a version that sorts before.
build_before() {
  local before=build/package-before
  rm -rf "$before"
  git rev-parse -q --verify HEAD~1:debian/control >/dev/null || return 0
  mkdir -p "$before/velka"
  git archive HEAD~1 | tar -x -C "$before/velka"
  sed -i '1s/)/~before)/' "$before/velka/debian/changelog"
  say "Building the package of the commit before"
  (cd "$before/velka" && DEB_BUILD_OPTIONS=nocheck dpkg-buildpackage -us -uc -b) >"$before.log" 2>&1 ||
    die "dpkg-buildpackage failed, see $before.log: $(tail -n 5 "$before.log")"
}

reproduce() {
  local deb again=build/package-again
  say "Building once more"
  TZ=Pacific/Kiritimati make_in "$again" -b
  for deb in "$folder"/*.deb; do
    cmp "$deb" "$again/${deb##*/}" || die "not the same bytes: ${deb##*/}"
  done
  say "The same bytes again"
}

check() {
  compgen -G "$folder/*.deb" >/dev/null || build_packages
  use_system "$root"
  build_before
  rm -rf "$root/packages"
  mkdir -p "$root/packages/"{new,before,source}
  cp "$folder"/*.deb "$root/packages/new"
  cp build/package-before/*.deb "$root/packages/before" 2>/dev/null || true
  cp -r debian tools "$root/packages/source"
  say "Trying the packages on Debian $release ($(<"$root/etc/debian_version"))"
  in_system "$PWD/tools/package.sh" --inside "$root"
  say "Installed, printed with, upgraded, removed and purged"
}

case ${1:-build} in
  build) build_packages ;;
  check) check ;;
  reproduce) reproduce ;;
  --inside)
    enter_system "$2"
    exec /packages/source/tools/try-package.sh /packages
    ;;
  *) die "usage: $0 build | check | reproduce" ;;
esac
