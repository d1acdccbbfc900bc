#!/usr/bin/env bash
# other-release.sh [RELEASE]: both commands of the README on another release of Debian
# (trixie where none is named), the way a new user has it: an account with sudo, a folder
# with a blank in its name, a German locale. The system is bootstrapped from this machine's
# own mirror into a cache folder and used again. What is missing for that is no failure:
# one line says what.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/common.sh
source tools/common.sh

release=${1:-trixie}
cache=${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/velka
root=$cache/$release-$(dpkg --print-architecture 2>/dev/null || uname -m)
user=velka
folder="/home/$user/print filter"
notes=build/other-release.log

skip() {
  echo "skipped: nothing was tried on Debian $release: $*"
  exit 0
}

# The distribution's own mirrors, as apt knows them; they may not have every release.
mirrors() {
  # shellcheck disable=SC2016
  apt-get indextargets --format '$(LABEL) $(REPO_URI)' 'Created-By: Packages' |
    sed -n 's/^Debian //p' | LC_ALL=C sort -u
}

find_mirror() {
  local mirror
  [[ -n $(mirrors) ]] || apt-get update >>"$notes" 2>&1 || true
  for mirror in $(mirrors); do
    if /usr/lib/apt/apt-helper download-file "${mirror}dists/$release/Release" \
      "$notes.release" >>"$notes" 2>&1; then
      echo "$mirror"
      return
    fi
  done
  return 1
}

# How this machine gets through to its mirror.
fetching_options() { apt-config dump | grep -E '^Acquire::(https?|ftp|Retries|Check-)' || true; }

bootstrap() {
  local mirror http_proxy=${http_proxy:-}
  mirror=$(find_mirror) || skip "no mirror of this machine has it (see $notes)"
  eval "$(apt-config shell http_proxy Acquire::http::Proxy)"
  export http_proxy
  say "Bootstrapping Debian $release from $mirror"
  rm -rf --one-file-system "$root.new"
  debootstrap --variant=minbase --include=sudo,locales "$release" "$root.new" "$mirror" \
    >>"$notes" 2>&1 || skip "debootstrap failed: $(tail -n 1 "$notes")"
  fetching_options >"$root.new/etc/apt/apt.conf.d/90fetching"
  chroot "$root.new" localedef -i de_DE -f UTF-8 de_DE.UTF-8 >>"$notes" 2>&1 ||
    skip "no German locale could be made there (see $notes)"
  mv "$root.new" "$root"
}

# A new account, and what a running system has of the machine's network.
prepare() {
  local home=$root/home/$user
  rm -rf "$home"
  chroot "$root" id "$user" >/dev/null 2>&1 || chroot "$root" useradd --shell /bin/bash "$user"
  echo "$user ALL=(ALL) NOPASSWD: ALL" >"$root/etc/sudoers.d/$user"
  cp -L /etc/resolv.conf "$root/etc/resolv.conf"
  echo "127.0.0.1 localhost $(uname -n)" >"$root/etc/hosts"
  rm -f "$root"/var/cache/apt/archives/*.deb
  find "$root/tmp" -mindepth 1 -delete
  mkdir -p "$root$folder"
  tar -c --exclude=./build --exclude=./demo-output --exclude=./.git . | tar -x -C "$root$folder"
  chroot "$root" chown -R "$user:" "/home/$user"
}

# Inside namespaces of its own, which take the mounts with them. The root is changed for
# good, not by chroot, in which a user may have no namespaces.
enter() {
  mount --bind "$root" "$root"
  cd "$root"
  mount -t proc proc proc
  mount --rbind /dev dev
  pivot_root . mnt
  umount -l /mnt
  cd "$folder"
  exec env -i PATH=/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin HOME="/home/$user" USER="$user" \
    LANG=de_DE.UTF-8 VELKA_WERROR="${VELKA_WERROR:-}" VELKA_TEST_JOBS="${VELKA_TEST_JOBS:-}" \
    setpriv --reuid "$user" --regid "$user" --init-groups "$@"
}

try_commands() {
  local left
  sudo apt-get -qq update && sudo DEBIAN_FRONTEND=noninteractive apt-get -qq dist-upgrade ||
    echo "note: the system stays as old as it is"
  ./demo.sh
  ./test.sh --quick
  left=$(find /tmp -mindepth 1)
  [[ -z $left ]] || die "left in /tmp: $left"
}

if [[ ${1:-} == --inside ]]; then
  release=$2 root=$3
  enter bash -c "set -euo pipefail; $(declare -f die try_commands); try_commands"
fi

((EUID == 0)) || skip "it takes root"
if ! command -v apt-get >/dev/null; then skip "it takes apt"; fi
tools/install-packages.sh --other-release || skip "debootstrap could not be installed"
unshare --mount --pid --fork true 2>/dev/null || skip "no mount namespaces here"
need_writable build
mkdir -p build "$cache"
# It holds programs that run with the rights of root.
chmod 700 "$cache"
: >"$notes"
exec {lock}>"$cache/lock"
flock "$lock"
[[ -d $root ]] || bootstrap
prepare
say "Trying the README's commands on Debian $release ($(<"$root/etc/debian_version"))"
unshare --mount --pid --fork --kill-child "$BASH" "$PWD/tools/other-release.sh" \
  --inside "$release" "$root"
say "Both commands pass on Debian $release"
