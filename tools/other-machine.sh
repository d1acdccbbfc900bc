#!/usr/bin/env bash
# other-machine.sh [ARCHITECTURE]: builds for another kind of machine that Debian knows
# (arm64 where none is named) with a cross compiler, and runs the tests as its programs in
# qemu's user emulation; the tools beside them are this machine's. All of it happens in a
# small Debian system in a cache folder. What is missing for that is no failure: one line
# says what.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/common.sh
source tools/common.sh

architecture=arm64
case ${1:-} in
  '') ;;
  --inside) architecture=$2 ;;
  *) architecture=$1 ;;
esac
release=${VELKA_PACKAGE_RELEASE:-$(. /etc/os-release && echo "$VERSION_CODENAME")}
notes=build/other-machine.log
# shellcheck source=tools/system.sh
source tools/system.sh
root=$cache/$release-$(dpkg --print-architecture)-for-$architecture
# What an emulator hides from those who look at its program from outside, or does not do:
# system calls held, counted or refused; what it costs; memory that is bounded; which signals
# a program waits for, and which it is; the error of a program that cannot be started, for its
# vfork is a fork. Tests that hold others go with them.
apart='Cost.OfWatching|Killed|ReaderGone|NthFailure|DecidedEnds|OrderOnDisk|ToolsOfAJob'
apart+='|Limited|FewDescriptors|AddressSpace|APictureThatCannotBeRead|ACommandTooMuchMemory'
apart+='|InProportionToThePixels|APageThatTheSystemHasNoRoomFor|Cancelled.BeforeTheRaster'
apart+='|AFilterThatDiesAborts|AProgramThatIsNotThere|AMissingProgramIsTold|NoPdfCanBeMade|AFilterThatCannotBeStarted'
apart+='|InGerman.The(Jobs|Copiers)TestsPass'

skip() {
  echo "skipped: nothing was tried for $architecture: $*"
  exit 0
}

declare -A machines=([arm64]=aarch64 [armhf]=arm [riscv64]=riscv64)
machine=${machines[$architecture]:-}
[[ -n $machine ]] || die "no such architecture here: $architecture; there are ${!machines[*]}"

tools_and_libraries() {
  local package
  echo cmake ninja-build pkg-config nlohmann-json3-dev qemu-user-static \
    cups cups-ppdc cups-client cups-filters cups-filters-core-drivers ghostscript \
    poppler-utils locales zbar-tools appstream mandoc \
    "crossbuild-essential-$architecture"
  for package in libcups2-dev libcupsimage2-dev libcairo2-dev libpng-dev libmicrohttpd-dev \
    libpappl-dev libpoppler-glib-dev libgtest-dev libgmock-dev; do
    echo "$package:$architecture"
  done
}

install_all() {
  local packages
  mapfile -t packages < <(tools_and_libraries | tr ' ' '\n')
  dpkg --add-architecture "$architecture"
  apt-get -qq update || true
  DEBIAN_FRONTEND=noninteractive apt-get -qq install -y --no-install-recommends "${packages[@]}" \
    >/tmp/apt.log 2>&1 || die "installing failed: $(tail -n 5 /tmp/apt.log)"
  localedef -i de_DE -f UTF-8 de_DE.UTF-8
}

# The kernel starts the emulator; it keeps it open, so no folder of the tests needs to hold it.
register_emulator() {
  local place=/proc/sys/fs/binfmt_misc head
  mountpoint -q "$place" || mount -t binfmt_misc binfmt_misc "$place" || die "no binfmt_misc here"
  [[ ! -e $place/qemu-$machine ]] || return 0
  head=/usr/lib/binfmt.d/qemu-$machine.conf
  [[ -f $head ]] || die "qemu does not say how programs of $architecture are told"
  tr -d '\n' <"$head" >"$place/register"
}

# The system's own, with the compiler's search for libraries of the other kind.
build_and_test_there() {
  local triplet
  triplet=$(dpkg-architecture -a"$architecture" -qDEB_HOST_GNU_TYPE 2>/dev/null)
  cmake -G Ninja -S . -B build/there -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_UNITY_BUILD=ON -DCMAKE_SYSTEM_NAME=Linux \
    -DCMAKE_SYSTEM_PROCESSOR="$machine" -DCMAKE_CXX_COMPILER="$triplet-g++" \
    -DCMAKE_C_COMPILER="$triplet-gcc" -DPKG_CONFIG_EXECUTABLE="/usr/bin/$triplet-pkg-config" \
    ${VELKA_WERROR:+"-DCMAKE_COMPILE_WARNING_AS_ERROR=$VELKA_WERROR"}
  cmake --build build/there
  file -L build/there/rastovelka 2>/dev/null || true
  QEMU_LD_PREFIX=/ ctest --test-dir build/there --output-on-failure --parallel "$(nproc)" -E "$apart"
}

if [[ ${1:-} == --inside ]]; then
  enter_system "$3"
  cd /source
  install_all
  register_emulator
  build_and_test_there
  exit 0
fi

use_system "$root" dpkg-dev
say "Building for $architecture on Debian $release"
rm -rf "$root/source"
copy_sources "$root/source"
in_system "$PWD/tools/other-machine.sh" --inside "$architecture" "$root"
say "The tests pass as programs of $architecture"
