#!/usr/bin/env bash
# try-package.sh FOLDER: for a system that may be spoilt, as root. Installs the packages in
# FOLDER/new, prints with them, upgrades from those in FOLDER/before with a queue in place,
# removes and purges; nothing of ours may stay.
set -euo pipefail

folder=$1
export DEBIAN_FRONTEND=noninteractive
unset CUPS_SERVER
ours=(velka-printer-app printer-driver-velka velka-tools)
socket=/run/cups/cups.sock

step() { printf '\n-- %s\n' "$*"; }

die() {
  echo "error: $*" >&2
  tail -n 20 /var/log/cups/error_log 2>/dev/null >&2 || true
  exit 1
}

packages_in() { find "$1" -name '*.deb' -not -name '*dbgsym*'; }

install_from() {
  local files
  mapfile -t files < <(packages_in "$1")
  apt-get -qq install -y --no-install-recommends --allow-downgrades "${files[@]}" >/tmp/apt.log 2>&1 ||
    die "installing failed: $(tail -n 5 /tmp/apt.log)"
}

start_server() {
  mkdir -p /run/cups
  /usr/sbin/cupsd
  for ((i = 0; i < 600; i++)); do
    if lpstat -h "$socket" -r >/dev/null 2>&1; then return; fi
    sleep 0.1
  done
  die "the print server does not start"
}

stop_server() {
  pkill -x cupsd || true
  while pgrep -x cupsd >/dev/null; do sleep 0.1; done
}

# The PPD of the queue, and what it says.
value() { sed -n "s/^\\*$1: *\"\\?\\([^\"]*\\)\"\\?\$/\\1/p" "$2" | head -n 1; }

prepare() {
  apt-get -qq update || echo "note: the lists of packages stay as they are"
  apt-get -qq install -y --no-install-recommends cups cups-client ghostscript procps >/tmp/apt.log 2>&1 ||
    die "cups cannot be installed: $(tail -n 5 /tmp/apt.log)"
  remove_all
}

remove_all() { dpkg --purge "${ours[@]}" >/dev/null 2>&1 || true; }

prints() {
  step "Printing with the installed package"
  "$folder/source/debian/tests/print"
}

upgrades() {
  local installed=/usr/share/cups/model/velka/velka-standard.ppd queue=/etc/cups/ppd/counter.ppd
  [[ -n $(packages_in "$folder/before") ]] || { echo "skipped: no package of a commit before" && return; }
  step "Upgrading with a queue in place"
  install_from "$folder/before"
  start_server
  lpadmin -h "$socket" -p counter -E -v file:/dev/null -m velka/velka-standard.ppd
  lpadmin -h "$socket" -p counter -o RedMinValue=90
  # As if the PPDs had changed: the updater tells them apart by their contents, not by this.
  sed -i 's/^\*FileVersion: .*/*FileVersion: "0.0"/' "$queue"
  install_from "$folder/new"
  [[ $(value FileVersion "$queue") == "$(value FileVersion "$installed")" ]] ||
    die "the queue has the PPD of version $(value FileVersion "$queue")"
  [[ $(value DefaultRedMinValue "$queue") == 90 ]] ||
    die "the queue's default is $(value DefaultRedMinValue "$queue")"
  echo "the queue has PPD $(value FileVersion "$queue") and kept RedMinValue=90"
  lpadmin -h "$socket" -x counter
  stop_server
}

leaves() {
  local left
  step "Removing and purging"
  dpkg -L "${ours[@]}" | LC_ALL=C sort -u >/tmp/ours
  apt-get -qq remove -y "${ours[@]}" >/dev/null
  # Nothing is left for apt to know it by.
  dpkg --purge "${ours[@]}" >/dev/null 2>&1
  left=$(find / -xdev \( -path "$folder" -o -path /proc -o -path /tmp/ours \) -prune -o \
    -iname '*velka*' -print)
  [[ -z $left ]] || die "left behind: $left"
  left=$(while read -r path; do [[ -f $path ]] && echo "$path"; done </tmp/ours || true)
  [[ -z $left ]] || die "left behind: $left"
}

# Whether systemd would start the application, and what that would keep.
serves() {
  local state=/var/lib/private/velka-printer-app
  step "The application's unit"
  [[ -L /etc/systemd/system/multi-user.target.wants/velka-printer-app.service ]] ||
    die "the unit of velka-printer-app is not enabled"
  mkdir -p "$state/spool"
  ln -sfn "$state" /var/lib/velka-printer-app
}

prepare
step "Installing"
install_from "$folder/new"
prints
remove_all
upgrades
install_from "$folder/new"
serves
leaves
