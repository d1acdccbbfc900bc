#!/usr/bin/env bash
# own-tmp.sh [FOLDER...] -- COMMAND [ARGUMENT...]: runs a command with an empty /tmp of its
# own, which goes with its last process. The filter's log and the copies of jobs have fixed
# names there, so two tests would meet, and a print service's next job would find a log
# that is not its own. Folders that lie in /tmp and are named stay in sight. Where the
# system grants no /tmp of one's own, commands run in the common one, one at a time, and
# what they leave there is removed.
# own-tmp.sh --check: says in one line why there is none, and fails, where that is so.
set -euo pipefail

# A mount namespace takes root's rights. Any other user has them inside a user namespace,
# until they are dropped again: the command shall see an ordinary user.
namespace=(unshare --mount)
as_before=()
if ((EUID != 0)); then
  namespace=(unshare --user --map-current-user --keep-caps --mount)
  as_before=(setpriv --ambient-caps=-all --inh-caps=-all)
fi

is_possible() { "${namespace[@]}" "${as_before[@]}" true 2>/dev/null; }

# enter FOLDER... -- COMMAND...: inside the namespace.
enter() {
  local fd folder folders=() fds=()
  while [[ $1 != -- ]]; do
    folder=$(realpath -- "$1")
    if [[ $folder/ == /tmp/* ]]; then
      exec {fd}<"$folder"
      folders+=("$folder") fds+=("$fd")
    fi
    shift
  done
  shift
  mount -t tmpfs -o mode=1777 tmpfs /tmp
  for fd in "${fds[@]}"; do
    folder=${folders[0]}
    folders=("${folders[@]:1}")
    (umask 022 && mkdir -p -- "$folder")
    # By the descriptor, because the name means the empty folder now.
    mount --no-canonicalize --bind "/proc/self/fd/$fd" "$folder"
    exec {fd}<&-
  done
  cd -- "$PWD" 2>/dev/null || cd /
  exec env -u TMP -u TEMP TMPDIR=/tmp "${as_before[@]}" "$@"
}

# Files in the common /tmp with names that ours have.
own_files() {
  find /tmp -maxdepth 1 -user "$(id -un)" \( -name velka.log -o -name PdfPages \
    -o -name 'VK_TEMP_CUPS_*' -o -name 'velka-*' -o -name 'velkapdfcopy.*' \) | LC_ALL=C sort
}

in_common_tmp() {
  local lock before status=0
  exec {lock}<"${BASH_SOURCE[0]}"
  flock "$lock" || true
  before=$(own_files)
  "$@" {lock}<&- || status=$?
  LC_ALL=C comm -13 <(echo "$before") <(own_files) | xargs -r -d '\n' rm -rf --
  exit "$status"
}

case ${1:-} in
  --check)
    is_possible && exit
    echo "note: no mount namespaces here, so the common /tmp is used"
    exit 1
    ;;
  --inside)
    shift
    enter "$@"
    ;;
esac
if is_possible; then
  exec "${namespace[@]}" "$BASH" "${BASH_SOURCE[0]}" --inside "$@"
fi
while [[ $1 != -- ]]; do shift; done
shift
in_common_tmp "$@"
