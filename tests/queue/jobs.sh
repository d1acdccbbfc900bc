# Printing jobs on the private server and looking at what came out. Sourced.
# The parts of the test use each other's names.
# shellcheck shell=bash disable=SC2154

# submit QUEUE FILE [LP-ARGUMENT...]: the job's number, which stands behind the queue's name
# in every language.
submit() {
  local queue=$1 file=$2 said
  shift 2
  said=$(lp -d "$queue" "$@" "$file" 2>&1) || die "lp: $said"
  said=${said#*"$queue"-}
  echo "${said%% *}"
}

# A job that is not printing or waiting any more, whatever became of it.
is_over() {
  local waiting
  kill -0 "$server" 2>/dev/null || die "cupsd ended: $(cat "$work/cupsd.out")"
  waiting=$(lpstat -W not-completed -o "$1") || return 1
  [[ $waiting != *"-$2 "* ]] || is_stopped "$2"
}

is_stopped() { grep -qF "[Job $1] Job stopped due to filter errors" "$log"; }

wait_for_job() { wait_until "job $2 is over" is_over "$1" "$2"; }

stream_of() { echo "$prints/$1-$2"; }

# print QUEUE FILE [LP-ARGUMENT...]: the name of the stream that came out.
print() {
  local job
  job=$(submit "$@")
  wait_for_job "$1" "$job"
  [[ -s $(stream_of "$1" "$job") ]] || die "job $job on $1 ($*) left no stream"
  stream_of "$1" "$job"
}

# decode STREAM: lines "pages N", "black dots N", "red dots N" and others. The Orlo
# head may strike a dot twice; places on the paper count it once. The one place that
# knows what reads which model's streams.
decode() {
  case $1 in
    *-orlo-*)
      "$build/view/velkaview" --stats --model orlo-back "$1" |
        sed -e '/^[a-z]* dots /d' -e 's/ places / dots /'
      ;;
    *) "$build/view/velkaview" --stats --model standard "$1" ;;
  esac
}

# count WHAT STREAM
count() {
  local number
  number=$(decode "$2" | sed -n "s/^$1  *//p") || true
  echo "${number:-none}"
}

# expect_counts NAME STREAM PAGES BLACK RED: dots within 4 %; a dash: any but none.
expect_counts() {
  local pages black red
  pages=$(count pages "$2") black=$(count 'black dots' "$2") red=$(count 'red dots' "$2")
  [[ $pages == "$3" ]] || fail "$1: $pages pages, not $3"
  expect_about "$1, black" "$black" "$4"
  expect_about "$1, red" "$red" "$5"
}

# Every block is a column short, and rasterisers round edges their own ways.
expect_about() {
  local name=$1 got=$2 expected=$3
  if [[ $got == none ]]; then
    fail "$name: no sound stream"
  elif [[ $expected == - ]]; then
    ((got > 0)) || fail "$name: no dots"
  elif ((100 * got < 96 * expected || 100 * got > 104 * expected)); then
    fail "$name: $got dots, not about $expected"
  fi
}

# Dots of a box of so many inches of one by one, at a resolution.
dots() { echo $(($1 * ${2:-180} * ${3:-180})); }

expect_same() { cmp -s "$2" "$3" || fail "$1: $(cmp "$2" "$3" 2>&1 || true)"; }

expect_other() { ! cmp -s "$2" "$3" || fail "$1: nothing changed"; }

# What the server noted of filters that failed or that it did not want to run, but for
# the jobs named.
expect_no_complaints() {
  local pattern job
  pattern='stopped with status|crashed on signal|Filter failed|Job stopped due to'
  pattern+='|insecure permissions|no permission|ermission denied|Unable to (run|execute)'
  grep -E "$pattern" "$log" | grep -E '\[Job |velka' >"$work/complaints" || true
  for job in "$@"; do
    sed -i "/\[Job $job\]/d" "$work/complaints"
  done
  [[ ! -s $work/complaints ]] || fail "the server's log says: $(cat "$work/complaints")"
}

# expect_nothing_left QUEUE JOB: neither files nor processes, once it is over.
expect_nothing_left() {
  local file
  wait_until "the processes of job $2 are gone" no_process_of "$1"
  for file in /tmp/VK_TEMP_CUPS_"$2"*; do
    [[ ! -e $file ]] || fail "job $2 left $file"
  done
}

# All that CUPS starts for a job, and what that starts, has the queue's name about it.
processes_of() { grep -lszxF "PRINTER=$1" /proc/[0-9]*/environ || true; }

no_process_of() { [[ -z $(processes_of "$1") ]]; }

# runs PROGRAM QUEUE
runs() {
  local file
  for file in $(processes_of "$2"); do
    if grep -qx "$1" "${file%environ}comm" 2>/dev/null; then return; fi
  done
  return 1
}

# listens PROGRAM QUEUE: it is far enough to catch SIGTERM.
listens() {
  local file mask
  for file in $(processes_of "$2"); do
    grep -qx "$1" "${file%environ}comm" 2>/dev/null || continue
    mask=$(sed -n 's/^SigCgt:[[:space:]]*//p' "${file%environ}status" 2>/dev/null) || continue
    if ((0x${mask:-0} & (1 << 14))); then return; fi
  done
  return 1
}

# The server saw the filter of a job end without an error.
ended_well() { grep -qE "\[Job $1\] PID [0-9]+ \(.*/rastovelka\) exited with no errors" "$log"; }
