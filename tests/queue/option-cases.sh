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

# expect_like QUEUE "OPTION..." "OPTION...": two lists of a job's options print the same.
expect_like() {
  local option first=() second=()
  for option in $2; do first+=(-o "$option"); done
  for option in $3; do second+=(-o "$option"); done
  expect_same "$1, $2 and $3" "$(print "$1" "$work/two-inch.pdf" "${first[@]}")" \
    "$(print "$1" "$work/two-inch.pdf" "${second[@]}")"
}

# Choices by the names that they had before they were words.
check_old_names() {
  local queue
  for queue in "${queues[@]}"; do
    expect_like "$queue" 'OutputColorType=Black SplitBlackRed=BlackFirst' \
      'OutputColorType=1 SplitBlackRed=1'
    expect_like "$queue" \
      'HorizontalOffset=Left HorizontalOffsetValue=10 VerticalOffset=Up VerticalOffsetValue=5' \
      'HorizontalOffset=1 HorizontalOffsetValue=10 VerticalOffset=1 VerticalOffsetValue=5'
    expect_like "$queue" 'AnticlockwiseRotate=270 DotPlacement=Exact' \
      'AnticlockwiseRotate=3 DotPlacement=1'
    expect_like "$queue" 'ColorRangeUseFor=Black HalftoneBlack=Threshold HalftoneRed=Screen16x16' \
      'ColorRangeUseFor=1 HalftoneBlack=1 HalftoneRed=6'
  done
  expect_like "$standard" 'PaperEnd=T1' 'PaperEnd=1'
  expect_no_complaints
}

# A queue gets the PPD anew, as after an upgrade, and what its administrator chose stays,
# whichever name it has.
check_upgrade() {
  local queue name
  for queue in "${queues[@]}"; do
    for name in 1 Black; do
      lpadmin -p "$queue" -o OutputColorType="$name" -o Resolution=360x180dpi
      lpadmin -p "$queue" -m "velka/velka-${queue##*-}.ppd" 2>>"$work/lpadmin.log"
      grep -qx "\*DefaultOutputColorType: $name" "$work/etc/ppd/$queue.ppd" ||
        fail "$queue: the default is $(grep '^\*DefaultOutputColorType' "$work/etc/ppd/$queue.ppd")"
      expect_counts "$queue, $name" "$(print "$queue" "$work/two-inch.pdf")" 1 - 0
    done
  done
  expect_no_complaints
}

# What phones and dialogs ask for without knowing a PPD.
check_presets() {
  local queue
  for queue in "${queues[@]}"; do
    expect_counts "$queue, monochrome" \
      "$(print "$queue" "$work/two-inch.pdf" -o print-color-mode=monochrome)" 1 - 0
    expect_like "$queue" print-color-mode=monochrome OutputColorType=Black
    expect_like "$queue" 'print-color-mode=monochrome print-quality=4' OutputColorType=Black
    expect_like "$queue" print-quality=3 Resolution=120x180dpi
    expect_like "$queue" print-quality=5 Resolution=360dpi
    expect_like "$queue" 'print-color-mode=monochrome print-quality=3' \
      'OutputColorType=Black Resolution=120x180dpi'
    expect_like "$queue" 'print-color-mode=monochrome print-quality=5' \
      'OutputColorType=Black Resolution=360dpi'
    # Who asks for colour or for normal quality gets what the queue has.
    expect_like "$queue" 'print-color-mode=color print-quality=4' ''
    expect_like "$queue" 'print-color-mode=monochrome OutputColorType=Red' OutputColorType=Red
  done
  expect_no_complaints
}
