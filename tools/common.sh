# Sourced by the scripts in the root folder, which run from there.
# shellcheck shell=bash

say() { printf '\n== %s\n' "$*"; }

die() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

# A folder left by a run through sudo stops a later run without it; say so
# before the build tool does in worse words.
need_writable() {
  local folder
  for folder in "$@"; do
    if [[ -e $folder && (! -d $folder || ! -w $folder) ]]; then
      die "$folder cannot be written by $(id -un): remove it, or run this through sudo as before"
    fi
  done
  [[ -w . ]] || die "this folder cannot be written by $(id -un): $PWD"
}

# copy_sources FOLDER: what is under version control, as it stands; all but what was built
# where nothing is.
copy_sources() {
  mkdir -p "$1"
  if git ls-files >/dev/null 2>&1; then
    git ls-files -z | tar -c --null --files-from=- --ignore-failed-read
  else
    tar -c --exclude=./build --exclude=./demo-output --exclude=./.git .
  fi | tar -x -C "$1"
}

# build PRESET [TARGET...]. VELKA_WERROR=ON makes warnings errors, in this build folder
# from then on; OFF ends that.
build() {
  local preset=$1
  shift
  need_writable build "build/$preset"
  say "Building ($preset)"
  cmake --preset "$preset" ${VELKA_WERROR:+"-DCMAKE_COMPILE_WARNING_AS_ERROR=$VELKA_WERROR"}
  if (($# > 0)); then
    cmake --build --preset "$preset" --target "$@"
  else
    cmake --build --preset "$preset"
  fi
}

# has_own_tmp: says why not.
has_own_tmp() { tools/own-tmp.sh --check; }

# in_own_tmp COMMAND...: away from the /tmp that others use, as far as the system lets us.
in_own_tmp() {
  has_own_tmp || true
  tools/own-tmp.sh "$PWD" -- "$@"
}

# tell_skipped PRESET: what was not looked at in the last run, and why.
tell_skipped() {
  awk '/^[0-9]+\/[0-9]+ Test: / { test = $3 }
    skipped { print "skipped: " test ": " $0 }
    { skipped = /: Skipped$/ }
    sub(/^skipped: /, "") { print "skipped: " test ": " $0 }
    sub(/^note: /, "") { print "note: " test ": " $0 }
    ' "build/$1/Testing/Temporary/LastTest.log"
}

# tell_failed PRESET: the ends of what failing tests said, once more where the eye looks first.
tell_failed() {
  awk '/^[0-9]+\/[0-9]+ Test: / { test = $3; first = last = 0 }
    /^<end of output>$/ { inside = 0 }
    inside { line[++last] = $0; if (last - first > 30) delete line[++first] }
    /^Output:$/ { inside = getline; next }
    /^Test (Failed|Timed Out)/ || /^Test .*Exception/ {
      print "failed: " test
      while (first < last) print "  " line[++first]
    }
    ' "build/$1/Testing/Temporary/LastTest.log"
}

# run_tests PRESET [CTEST-ARGUMENT...]. One more at a time than there are processors, for many
# wait for servers and signals, unless VELKA_TEST_JOBS says otherwise; they can, since each has
# a /tmp of its own. One where they have not.
run_tests() {
  local preset=$1 jobs status=0
  shift
  say "Testing ($preset)"
  if has_own_tmp; then jobs=$(($(nproc) + 1)); else jobs=1; fi
  ctest --preset "$preset" --parallel "${VELKA_TEST_JOBS:-$jobs}" "$@" || status=$?
  tell_skipped "$preset"
  ((status == 0)) || tell_failed "$preset"
  return "$status"
}

# Fixed addresses for the thread sanitizer, whose shadow memory collides with the
# wide randomisation of newer kernels; test programs run during the build too.
# Without the right to ask for them (some containers) things run as they are.
at_fixed_addresses() {
  if setarch "$(uname -m)" -R true 2>/dev/null; then
    export -f build run_tests has_own_tmp tell_skipped tell_failed say die need_writable
    setarch "$(uname -m)" -R bash -c 'set -euo pipefail; "$@"' bash "$@"
  else
    "$@"
  fi
}

# build_and_test PRESET [CTEST-ARGUMENT...]
build_and_test() {
  local preset=$1
  shift
  if [[ $preset == tsan ]]; then
    at_fixed_addresses build "$preset"
    at_fixed_addresses run_tests "$preset" "$@"
  else
    build "$preset"
    run_tests "$preset" "$@"
  fi
}
