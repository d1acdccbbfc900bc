#!/usr/bin/env bash
# check-own-tmp.sh OWN-TMP.sh: what a command sees and leaves that runs with a /tmp of its
# own, and that runs without where there is none to be had.
set -euo pipefail

own_tmp=$1
# shellcheck source=tests/support/checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"

equal() { [[ $2 == "$3" ]] || fail "$1: '$2', not '$3'"; }

status_of() {
  local status=0
  "$@" || status=$?
  echo "$status"
}

rights() { grep -E '^(Cap(Inh|Prm|Eff|Amb)|Uid|Gid):' /proc/self/status; }

check_own() {
  local said
  said=$("$own_tmp" -- sh -c 'ls -A /tmp; echo mine >/tmp/velka.log; ls -A /tmp')
  equal "an empty /tmp" "$said" velka.log
  [[ ! -e /tmp/velka.log ]] || fail "what the command wrote is in the common /tmp"
  equal "status" "$(status_of "$own_tmp" -- sh -c 'exit 7')" 7
  equal "rights" "$("$own_tmp" -- bash -c "$(declare -f rights); rights")" "$(rights)"
  equal "temporary files" "$(TMPDIR=$work "$own_tmp" -- mktemp -d | head -c 5)" /tmp/
}

# As where the sources lie in /tmp.
check_folders() {
  local said
  mkdir -p "$work/a tree/build"
  echo seen >"$work/a tree/file"
  said=$(cd "$work/a tree" && "$own_tmp" . build -- sh -c 'cat file; touch build/made; pwd')
  equal "a folder in /tmp" "$said" $'seen\n'"$work/a tree"
  [[ -e "$work/a tree/build/made" ]] || fail "what was made in the folder is gone"
}

# Where the system grants no namespace: an `unshare` that is refused.
check_common() {
  local said
  mkdir "$work/bin"
  printf '#!/bin/sh\necho refused >&2\nexit 1\n' >"$work/bin/unshare"
  chmod +x "$work/bin/unshare"
  local PATH=$work/bin:$PATH
  if said=$("$own_tmp" --check); then fail "a /tmp of one's own without a namespace"; fi
  equal "the reason" "$said" "note: no mount namespaces here, so the common /tmp is used"
  echo others >"/tmp/VK_TEMP_CUPS_1.pdf"
  equal "status in the common /tmp" "$(status_of "$own_tmp" "$work" -- sh -c \
    'echo mine >/tmp/velka.log; mkdir -p "/tmp/velka-test-a folder/b"; exit 7')" 7
  equal "what was there stays, the rest goes" \
    "$(cd /tmp && echo velka* VK_TEMP*)" "velka* VK_TEMP_CUPS_1.pdf"
  rm /tmp/VK_TEMP_CUPS_1.pdf
}

# What is looked at here must be this test's alone.
if ! "$own_tmp" --check; then
  echo "skipped: without a /tmp of its own this test could meet another"
  exit 77
fi
if [[ -z ${VELKA_IN_OWN_TMP:-} ]]; then
  VELKA_IN_OWN_TMP=yes exec "$own_tmp" "$(dirname "$own_tmp")" -- "${BASH_SOURCE[0]}" "$own_tmp"
fi
check_own
check_folders
check_common
((failures == 0))
