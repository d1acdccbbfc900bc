# A server and users whose language is German. Sourced.
# The parts of the test use each other's names.
# shellcheck shell=bash disable=SC2154

# The user's language goes with the job.
check_german() {
  local queue plain sizes
  [[ ${VELKA_SERVER_LOCALE:-C} != C ]] || die "say which locale the server has"
  for queue in "${queues[@]}"; do
    sizes=$(grep -c '^\*PageSize [^ ]*/' "$work/etc/ppd/$queue.ppd") || true
    [[ $sizes == 34 ]] || fail "$queue: the PPD has $sizes sizes"
    grep -qx '\*ParamCustomPageSize Height: 2 points 36 3060' "$work/etc/ppd/$queue.ppd" ||
      fail "$queue: the PPD has no custom sizes"
    plain=$(print "$queue" "$work/two-inch.pdf" -o HorizontalOffsetValue=2.5)
    expect_counts "$queue" "$plain" 1 "$(dots 2)" "$(dots 2)"
    expect_same "$queue, a German user" "$plain" "$(LC_ALL=$VELKA_SERVER_LOCALE \
      print "$queue" "$work/two-inch.pdf" -o HorizontalOffsetValue=2.5)"
  done
  expect_no_complaints
}
