#!/usr/bin/env bash
# check-doctor.sh BUILD-FOLDER
# Provokes each finding of velka-doctor on a system below a folder, and finds nothing on a
# sound one.
set -euo pipefail

build=$1
doctor=$build/doctor/velka-doctor
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
root=$work/root

if ((EUID != 0)); then
  echo "skipped: files of root can only be made by root"
  exit 77
fi

# A sound system with a queue of each model.
make_system() {
  local model name
  rm -rf "$root"
  mkdir -p "$root"/etc/cups/ppd "$root"/usr/{bin,lib/cups/filter,share/cups/model/velka} \
    "$root"/{tmp,var/log,sys/kernel/security/apparmor}
  chmod 1777 "$root/tmp"
  for name in rastovelka velkapdfcopy velkaguard; do
    install -m 755 /bin/true "$root/usr/lib/cups/filter/$name"
  done
  for name in pdfinfo pdftoppm; do install -m 755 /bin/true "$root/usr/bin/$name"; done
  for model in standard orlo; do
    install -m 644 "$build/ppd/velka-$model.ppd" "$root/usr/share/cups/model/velka/"
    install -m 640 "$build/ppd/velka-$model.ppd" "$root/etc/cups/ppd/$model.ppd"
  done
  echo "User $(id -un)" >"$root/etc/cups/cups-files.conf"
  echo '/usr/sbin/cupsd (enforce)' >"$root/sys/kernel/security/apparmor/profiles"
  echo 'DEBUG a page' >"$root/tmp/velka.log"
}

# finds TEXT REMEDY: one finding, which says both.
finds() {
  local status=0
  "$doctor" --root "$root" >"$work/said" 2>&1 || status=$?
  if ((status != 1)); then fail "status $status where this is wrong: $1"; fi
  grep -F WRONG "$work/said" | grep -qE -- "$1" || fail "not found: $1: $(<"$work/said")"
  grep -A 1 -E -- "WRONG.*$1" "$work/said" | grep -qE -- "do: .*$2" || fail "no remedy for: $1"
  grep -qx '1 found to be wrong.' "$work/said" || fail "not alone: $1: $(grep WRONG "$work/said")"
  make_system
}

finds_nothing() {
  "$doctor" --root "$root" >"$work/said" 2>&1 || fail "a sound system: $(<"$work/said")"
}

make_system
before=$(find "$root" -printf '%p %m %s %T@\n' | sort)
finds_nothing
[[ $(find "$root" -printf '%p %m %s %T@\n' | sort) == "$before" ]] || fail "it changed something"

rm "$root/usr/lib/cups/filter/rastovelka"
finds 'filter/rastovelka is not there' 'install the package'
chmod 775 "$root/usr/lib/cups/filter/velkapdfcopy"
finds 'velkapdfcopy may be written by others' 'chmod 755'
chmod 700 "$root/usr/lib/cups/filter/rastovelka"
finds 'rastovelka may not be started by everybody' 'chmod 755'
rm "$root/usr/lib/cups/filter/velkaguard"
finds 'filter/velkaguard is not there' 'install the package'
chmod 664 "$root/usr/lib/cups/filter/velkaguard"
finds 'velkaguard may be written by others' 'chmod 755'
chown 1 "$root/usr/lib/cups/filter/velkaguard"
finds 'velkaguard does not belong to root' 'chown root'
chown 1 "$root/usr/lib/cups/filter/rastovelka"
finds 'does not belong to root' 'chown root'
rm "$root/usr/bin/pdftoppm"
finds 'pdftoppm is not in' 'apt-get install poppler-utils'
rm "$root/usr/share/cups/model/velka/velka-orlo.ppd"
finds 'velka-orlo.ppd is not there' 'install the package'
sed -i 's/^\*FileVersion:.*/*FileVersion: "0.1"/' "$root/etc/cups/ppd/orlo.ppd"
finds 'queue orlo has the PPD of version 0.1' 'lpadmin -p orlo -m velka/velka-orlo.ppd'
sed -i 's/^\*cupsModelNumber:.*/*cupsModelNumber: 7/' "$root/etc/cups/ppd/standard.ppd"
finds 'queue standard has a PPD of no model' 'lpadmin -p standard'
sed -i '/velkapdfcopy/d' "$root/etc/cups/ppd/standard.ppd"
finds 'queue standard starts no velkapdfcopy' 'lpadmin -p standard -m velka/velka-standard.ppd'
sed -i '/velkaguard/d' "$root/etc/cups/ppd/orlo.ppd"
finds 'queue orlo starts no velkaguard' 'lpadmin -p orlo -m velka/velka-orlo.ppd'
printf '<%s>\nState %s\n</Printer>\n' 'DefaultPrinter standard' Idle 'Printer orlo' Stopped \
  >"$root/etc/cups/printers.conf"
finds 'queue orlo is stopped' 'cupsenable orlo'
rm "$root"/etc/cups/ppd/*.ppd
finds 'no queue has one of our PPDs' 'lpadmin -p NAME'
rm -r "$root/etc/cups/ppd"
finds 'etc/cups/ppd cannot be read' 'as root'
chmod 755 "$root/tmp"
finds 'has mode 755' 'chmod 1777'
rm -r "$root/tmp"
finds 'tmp is no folder' 'mkdir'
VELKA_DOCTOR_LEAST_MIB=999999999 finds 'MiB are free' 'make room'
touch -d '3 days ago' "$root/tmp/VK_TEMP_CUPS_12.pdf"
finds 'copies of jobs that ended long ago: VK_TEMP_CUPS_12.pdf' 'rm '
rm "$root/tmp/velka.log" && ln -s /etc/passwd "$root/tmp/velka.log"
finds 'is no file of its own' 'rm '
chown 1 "$root/tmp/velka.log"
finds 'velka.log belongs to' 'rm '
echo 'DEBUG page 3 is not printed: no memory for its bands' >>"$root/tmp/velka.log"
finds 'lost something: DEBUG page 3 is not printed' 'velka.log'
echo 'audit: apparmor="DENIED" operation="open" comm="velkapdfcopy"' >"$root/var/log/kern.log"
finds 'denied something to our filters' 'apparmor.d/local'

status=0
"$doctor" --nonsense >"$work/said" 2>&1 || status=$?
((status == 2)) || fail "a wrong option has status $status"
((failures == 0))
