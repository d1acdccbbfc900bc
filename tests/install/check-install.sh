#!/usr/bin/env bash
# check-install.sh BUILD-FOLDER
# What an installation puts where and with which modes, and that removing it takes
# away that and nothing else. Installs below a temporary folder only.
set -euo pipefail

build=$1
work=$(mktemp -d)
# The caller's own, if any, would send the files elsewhere.
unset DESTDIR
manifest=$build/install_manifest.txt
failures=0

# Absolute folders would take the files past the temporary ones.
if grep -E '^VELKA_CUPS_(SERVERBIN|DATADIR):STRING=/' "$build/CMakeCache.txt"; then
  echo "error: configure with folders below the prefix to run this test" >&2
  exit 1
fi

# The build folder is left as it was found.
[[ ! -e $manifest ]] || cp -p "$manifest" "$work/manifest"
trap 'rm -f "$manifest"; [[ ! -e $work/manifest ]] || cp -p "$work/manifest" "$manifest"
  rm -rf "$work"' EXIT

fail() {
  printf '%s\n' "$*" >&2
  failures=$((failures + 1))
}

equal() { [[ $2 == "$3" ]] || fail "$1:"$'\n'"$2"$'\n'"instead of"$'\n'"$3"; }

# Type, mode and name of all below a folder.
listing() { (cd "$1" && find . -mindepth 1 -printf '%y %04m %P\n' | LC_ALL=C sort -k 3); }

files_of() {
  local name
  for name in rastovelka velkapdfcopy velkaguard; do
    echo "f 0755 lib/cups/filter/$name"
  done
  echo "f 0755 bin/velkaview"
  [[ ! -e $build/printerapp/velka-printer-app ]] || {
    echo "f 0755 bin/velka-printer-app"
    echo "f 0644 lib/systemd/system/velka-printer-app.service"
  }
  echo "f 0755 sbin/velka-doctor"
  for name in orlo standard; do
    echo "f 0644 share/cups/model/velka/velka-$name.ppd"
  done
  for name in new-names update-queues; do
    echo "f 0755 share/velka/$name"
  done
  for name in README.md NEWS.md SECURITY.md; do
    echo "f 0644 share/doc/velka/$name"
  done
  for name in docs/*.md; do
    echo "f 0644 share/doc/velka/$name"
  done
  for name in docs/*.png; do
    echo "f 0644 share/doc/velka/$name"
  done
  for name in docs/*.[18]; do
    echo "f 0644 share/man/man${name: -1}/${name#docs/}"
  done
  echo "f 0644 share/metainfo/velka.metainfo.xml"
}

# The files with all folders above them, as listing() shows them.
expected() {
  local line folder
  files_of
  files_of | while read -r _ _ line; do
    folder=$(dirname "$line")
    while [[ $folder != . ]]; do
      echo "d 0755 $folder"
      folder=$(dirname "$folder")
    done
  done
}

sorted() { LC_ALL=C sort -u | LC_ALL=C sort -k 3; }

# The installers run where nobody else may read what they create.
installs() { (umask 077 && cmake --install "$build" "$@") >"$work/said" 2>&1 ||
  fail "installing failed: $(cat "$work/said")"; }

uninstalls() { cmake --build "$build" --target uninstall >"$work/said" 2>&1 ||
  fail "removing failed: $(cat "$work/said")"; }

check_prefix() {
  installs --prefix "$work/a prefix"
  equal "below a prefix" "$(listing "$work/a prefix")" "$(expected | sorted)"
  grep -q 'but CUPS looks for them in' "$work/said" || fail "a foreign prefix passed without a word"
  if ((EUID == 0)); then
    [[ -z $(find "$work/a prefix" -not -user root) ]] || fail "not all belongs to root"
  fi
  if find "$work/a prefix" -name '*.a' -o -name '*_test' | grep -q .; then
    fail "libraries or tests were installed"
  fi
}

check_removal_from_prefix() {
  uninstalls
  grep -q "removed $work/a prefix/lib/cups/filter/rastovelka" "$work/said" ||
    fail "what is removed is not said"
  [[ -z $(find "$work/a prefix" -type f -o -name velka) ]] ||
    fail "left behind: $(find "$work/a prefix")"
  uninstalls
  grep -q 'nothing to remove' "$work/said" || fail "a second removal: $(cat "$work/said")"
}

# As a package is made; files of others, in our folders too, are none of ours.
check_staging() {
  local stage=$work/stage foreign before
  foreign=$stage/usr/share/cups/model/velka/foreign.ppd
  mkdir -p "$(dirname "$foreign")" "$stage/usr/lib/cups/filter"
  echo foreign >"$foreign"
  echo foreign >"$stage/usr/lib/cups/filter/foreign"
  before=$(cd "$stage" && find . -type f | LC_ALL=C sort)
  DESTDIR=$stage installs --prefix /usr
  if grep -q 'CUPS looks' "$work/said"; then fail "a package is told where CUPS looks"; fi
  equal "staged files" \
    "$(cd "$stage/usr" && find . -type f -not -name 'foreign*' -printf 'f %04m %P\n' | sorted)" \
    "$(files_of | sorted)"
  DESTDIR=$stage uninstalls
  equal "files of others" "$(cd "$stage" && find . -type f | LC_ALL=C sort)" "$before"
  [[ ! -e $stage/usr/share/doc/velka ]] || fail "our own folder stayed"
}

# The list of what was installed knows no DESTDIR: without it again the system's own
# files would go.
check_removal_elsewhere() {
  DESTDIR=$work/stage2 installs --prefix /usr
  if cmake --build "$build" --target uninstall >"$work/said" 2>&1; then
    fail "what was staged is removed from the system"
  fi
  grep -q "DESTDIR=$work/stage2" "$work/said" || fail "not told where it was staged"
  [[ -x $work/stage2/usr/lib/cups/filter/rastovelka ]] || fail "the stage was touched"
}

check_odd_prefix() {
  local odd
  for odd in "$work/a;b" "$work/a[b"; do
    if (cd "$work" && cmake --install "$build" --prefix "$odd") >"$work/said" 2>&1; then
      fail "a prefix that cannot be removed again was taken: $odd"
    fi
    [[ ! -e $odd ]] || fail "$odd was made"
  done
}

# queue_ppd NAME VERSION MODEL-NUMBER FILTER: as the print server keeps it.
queue_ppd() {
  printf '*PPD-Adobe: "4.3"\n*FileVersion: "%s"\n*cupsModelNumber: %s\n' "$2" "$3" \
    >"$work/etc/ppd/$1.ppd"
  printf '*cupsFilter: "application/vnd.cups-raster 0 %s"\n' "$4" >>"$work/etc/ppd/$1.ppd"
}

# Queues keep the PPD they were made with, and one that does not start the copying filter
# is known to nobody else.
check_older_queues() {
  local version
  version=$(sed -n 's/^\*FileVersion: "\(.*\)"$/\1/p' "$build/ppd/velka-standard.ppd")
  mkdir -p "$work/etc/ppd"
  queue_ppd current "$version" 1 rastovelka
  queue_ppd 'older one' 0.1 1 rastovelka
  queue_ppd older-orlo "$version.1" 2 rastovelka
  queue_ppd foreign 0.1 1 rastertosomething
  CUPS_SERVERROOT=$work/etc installs --prefix "$work/queues"
  equal "queues with PPDs of another version" "$(grep -o 'lpadmin .*' "$work/said" | sort)" \
    "lpadmin -p 'older one' -m velka/velka-standard.ppd
lpadmin -p 'older-orlo' -m velka/velka-orlo.ppd"
  CUPS_SERVERROOT=$work/etc DESTDIR=$work/stage3 installs --prefix /usr
  if grep -q lpadmin "$work/said"; then fail "a package is told of this machine's queues"; fi
}

# Without a prefix of the user's own it is the one CUPS lives in.
check_default_prefix() {
  local folder
  folder=$(cups-config --serverbin)/filter
  DESTDIR=$work/default installs
  [[ -x $work/default$folder/rastovelka ]] || fail "by default nothing comes to $folder"
}

cd "$(dirname "${BASH_SOURCE[0]}")/../.."
check_prefix
check_removal_from_prefix
check_staging
check_removal_elsewhere
check_odd_prefix
check_older_queues
if grep -q '^CMAKE_INSTALL_PREFIX:PATH=/usr$' "$build/CMakeCache.txt"; then
  check_default_prefix
else
  echo "note: the build folder has a prefix of its own, so the default one is not looked at"
fi
((failures == 0))
