#!/usr/bin/env bash
# other-release.sh [RELEASE]: the README's commands, the packages' too, on another release of
# Debian (trixie where none is named), the way a new user has it: an account with sudo, a folder
# with a blank in its name, a German locale. The system is bootstrapped from this machine's
# own mirror into a cache folder and used again. What is missing for that is no failure:
# one line says what.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/common.sh
source tools/common.sh

release=${1:-trixie}
notes=build/other-release.log
# shellcheck source=tools/system.sh
source tools/system.sh
root=$cache/$release-$(dpkg --print-architecture 2>/dev/null || uname -m)
user=velka
folder="/home/$user/print filter"

skip() {
  echo "skipped: nothing was tried on Debian $release: $*"
  exit 0
}

# A new account with a checkout.
prepare() {
  local home=$root/home/$user
  chroot "$root" localedef -i de_DE -f UTF-8 de_DE.UTF-8 >>"$notes" 2>&1 ||
    skip "no German locale could be made there (see $notes)"
  rm -rf "$home"
  chroot "$root" id "$user" >/dev/null 2>&1 || chroot "$root" useradd --shell /bin/bash "$user"
  echo "$user ALL=(ALL) NOPASSWD: ALL" >"$root/etc/sudoers.d/$user"
  copy_sources "$root$folder"
  chroot "$root" chown -R "$user:" "/home/$user"
}

as_user() {
  exec env -i PATH="$PATH" HOME="/home/$user" USER="$user" LANG=de_DE.UTF-8 \
    VELKA_WERROR="${VELKA_WERROR:-}" VELKA_TEST_JOBS="${VELKA_TEST_JOBS:-}" \
    setpriv --reuid "$user" --regid "$user" --init-groups "$@"
}

try_commands() {
  local left
  sudo apt-get -qq update && sudo DEBIAN_FRONTEND=noninteractive apt-get -qq dist-upgrade ||
    echo "note: the system stays as old as it is"
  ./demo.sh
  ./test.sh --quick
  # Its tests are those that have just run.
  DEB_BUILD_OPTIONS=nocheck ./dev package
  left=$(find /tmp -mindepth 1)
  [[ -z $left ]] || die "left in /tmp: $left"
}

if [[ ${1:-} == --inside ]]; then
  release=$2 root=$3
  enter_system "$root"
  cd "$folder"
  as_user bash -c "set -euo pipefail; $(declare -f die try_commands); try_commands"
fi

use_system "$root" sudo locales
prepare
say "Trying the README's commands on Debian $release ($(<"$root/etc/debian_version"))"
in_system "$PWD/tools/other-release.sh" --inside "$release" "$root"
say "The commands pass on Debian $release"
