# Options of jobs and of queues. Sourced.
# The parts of the test use each other's names.
# shellcheck shell=bash disable=SC2154

# On the command line, each with what it does to boxes of two inches.
check_options() {
  local queue plain stream
  for queue in "${queues[@]}"; do
    plain=$(print "$queue" "$work/two-inch.pdf")
    expect_counts "$queue" "$plain" 1 "$(dots 2)" "$(dots 2)"
    expect_counts "$queue, black only" \
      "$(print "$queue" "$work/two-inch.pdf" -o OutputColorType=1)" 1 - 0
    expect_counts "$queue, red only" \
      "$(print "$queue" "$work/two-inch.pdf" -o OutputColorType=2)" 1 0 -
    expect_counts "$queue, 360 x 180 dpi" \
      "$(print "$queue" "$work/two-inch.pdf" -o Resolution=360x180dpi)" 1 \
      "$(dots 2 360 180)" "$(dots 2 360 180)"
    stream=$(print "$queue" "$work/two-inch.pdf" -o AnticlockwiseRotate=1)
    expect_counts "$queue, turned" "$stream" 1 "$(dots 2)" "$(dots 2)"
    expect_other "$queue, turned" "$plain" "$stream"
    # 40 mm cut 1.575 of two inches off.
    stream=$(print "$queue" "$work/two-inch.pdf" -o HorizontalOffset=1 \
      -o HorizontalOffsetValue=40)
    expect_counts "$queue, moved left" "$stream" 1 \
      "$(($(dots 1425) / 1000))" "$(($(dots 1425) / 1000))"
  done
  expect_no_complaints
}

# expect_inks NAME BLACK RED QUEUE [LP-ARGUMENT...]
expect_inks() {
  local name=$1 black=$2 red=$3
  shift 3
  expect_counts "$1, $name" "$(print "$1" "$work/two-inch.pdf" "${@:2}")" 1 "$black" "$red"
}

# As defaults of the queue, on the server and for its user, and against those.
check_defaults() {
  local queue
  for queue in "${queues[@]}"; do
    lpadmin -p "$queue" -o OutputColorType=1
    expect_inks "the server's default" - 0 "$queue"
    expect_inks "a job against the server's default" 0 - "$queue" -o OutputColorType=2
    lpoptions -p "$queue" -o OutputColorType=2
    expect_inks "the user's default" 0 - "$queue"
    expect_inks "a job against the user's default" - - "$queue" -o OutputColorType=3
    lpoptions -p "$queue" -r OutputColorType
    expect_inks "without the user's default" - 0 "$queue"
    lpadmin -p "$queue" -o OutputColorType=3 -o PdfPreprocess=yes
    expect_inks "pages from the copy by default" "$(dots 2)" "$(dots 2)" "$queue"
  done
  expect_no_complaints
}
