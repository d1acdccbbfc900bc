# Sourced: a small Debian system in a cache folder, bootstrapped from this machine's own
# mirror and used again. Wants $release and $notes, a file for what its tools say; says
# through skip(), which its user defines, what is missing for it.
# shellcheck shell=bash disable=SC2154

cache=${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/velka

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

# bootstrap ROOT PACKAGE...
bootstrap() {
  local root=$1 mirror http_proxy=${http_proxy:-}
  shift
  mirror=$(find_mirror) || skip "no mirror of this machine has it (see $notes)"
  eval "$(apt-config shell http_proxy Acquire::http::Proxy)"
  export http_proxy
  say "Bootstrapping Debian $release from $mirror"
  rm -rf --one-file-system "$root.new"
  debootstrap --variant=minbase ${1:+"--include=$(IFS=, && echo "$*")"} "$release" "$root.new" \
    "$mirror" >>"$notes" 2>&1 || skip "debootstrap failed: $(tail -n 1 "$notes")"
  fetching_options >"$root.new/etc/apt/apt.conf.d/90fetching"
  mv "$root.new" "$root"
}

# use_system ROOT [PACKAGE...]: makes it where there is none; one user at a time.
use_system() {
  local root=$1
  shift
  ((EUID == 0)) || skip "it takes root"
  if ! command -v apt-get >/dev/null; then skip "it takes apt"; fi
  tools/install-packages.sh --other-release || skip "debootstrap could not be installed"
  unshare --mount --pid --fork true 2>/dev/null || skip "no mount namespaces here"
  need_writable build
  mkdir -p build "$cache"
  # It holds programs that run with the rights of root.
  chmod 700 "$cache"
  : >"$notes"
  exec {system_lock}>"$root.lock"
  flock "$system_lock"
  [[ -d $root ]] || bootstrap "$root" "$@"
  # What a running system has of the machine's network.
  cp -L /etc/resolv.conf "$root/etc/resolv.conf"
  echo "127.0.0.1 localhost $(uname -n)" >"$root/etc/hosts"
  rm -f "$root"/var/cache/apt/archives/*.deb
  find "$root/tmp" -mindepth 1 -delete
}

# in_system SCRIPT ARGUMENT...: runs it in namespaces that go with it.
in_system() { unshare --mount --pid --fork --kill-child "$BASH" "$@"; }

# enter_system ROOT: for a script that in_system started. The root is changed for good, not
# by chroot, in which a user may have no namespaces.
enter_system() {
  mount --bind "$1" "$1"
  cd "$1" || exit
  mount -t proc proc proc
  mount --rbind /dev dev
  pivot_root . mnt
  umount -l /mnt
  cd /
  export PATH=/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin
}
