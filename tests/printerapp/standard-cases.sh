# What others say a driverless printer is.
# shellcheck shell=bash disable=SC2154

# What the library does not do, whoever uses it: it tells two securities for one address, and
# has no overrides of single pages. All else passes, or is for what these printers have not
# (URIs for documents; resolutions and raster kinds by name).
known_failures='RFC 8011 section 4.2.5: Get-Printer-Attributes Operation (default)
PWG 5100.14 section 5.1/5.2 - Required Operations and Attributes'

# check_verdict MODEL
check_verdict() {
  local said=$work/$1.everywhere
  [[ $(sed -n 's/^ *\(.*[^ ]\) *\[FAIL\]$/\1/p' "$said") == "$known_failures" ]] ||
    fail "$1: $(grep -F '[FAIL]' "$said")"
  [[ $(grep -E '^ *EXPECTED:' "$said" | grep -vE 'SAME-COUNT-AS uri-(security|authentication)|overrides-supported') == '' ]] ||
    fail "$1: $(grep -E '^ *EXPECTED:' "$said")"
  ! grep 'Duplicate ' "$said" >&2 || fail "$1: something is told twice"
  (($(grep -c '\[PASS\]' "$said") == 96)) || fail "$1: $(grep -c '\[PASS\]' "$said") checks pass"
  ! grep -F '[SKIP]' "$said" | grep -vE 'URI|Create-Job Operation|@ (150|300|600|720)dpi|black-1|cmyk-8|srgb-16' ||
    fail "$1: skipped for another reason"
}

# The time that a printer is up must not be nothing, which it is in its first second.
was_up() {
  ask "$1" Get-Printer-Attributes 'ATTR keyword requested-attributes printer-up-time' |
    grep -E '^ *printer-up-time \(integer\) = [1-9]' >/dev/null
}

# CUPS's own test of printers that need no driver. Rasters of its samples, which no package
# has, are ours, in the resolutions that the printers have; the others are skipped by it.
case_everywhere() {
  local tests=/usr/share/cups/ipptool model sample kind dpi run runs=()
  [[ -e $tests/ipp-everywhere.test ]] || skip "ipp-everywhere.test is not here (package cups-ipp-utils)"
  start_app
  add_printers
  mkdir "$work/ipp"
  cp "$tests"/*.test "$work/ipp/"
  document >"$work/ipp/letter.pdf"
  gzip -k "$work/ipp/letter.pdf"
  while read -r sample; do
    mkdir -p "$work/ipp/${sample%/*}"
    dpi=${sample%dpi.pwg*}
    dpi=${dpi##*-}
    kind=$(grep -oE 's(gray|rgb)-8' <<<"${sample##*/}" || true)
    if [[ $dpi == [13][86]0 && -n $kind ]]; then
      [[ -e $work/$kind-$dpi.pwg ]] || pattern "${kind%-8}" 10160 15240 "$dpi" "$dpi" 1 "$kind-$dpi"
      case $sample in
        *.gz) gzip -c "$work/$kind-$dpi.pwg" ;;
        *) cat "$work/$kind-$dpi.pwg" ;;
      esac >"$work/ipp/$sample"
    else
      : >"$work/ipp/$sample"
    fi
  done < <(sed -n 's/.*FILE \(pwg-raster-samples[^ ]*\).*/\1/p' "$work/ipp/ipp-everywhere.test" | sort -u)
  for model in standard orlo; do wait_until "$model has been up for a second" was_up "$model"; done
  for model in standard orlo; do
    (cd "$work/ipp" && ipptool -I -tvf letter.pdf "$(printer_uri "$model")" ipp-everywhere.test) \
      >"$work/$model.everywhere" 2>&1 &
    runs+=("$!")
  done
  for run in "${runs[@]}"; do wait "$run" || true; done
  for model in standard orlo; do
    check_verdict "$model"
    [[ -z ${VELKA_KEEP:-} ]] || cp "$work/$model.everywhere" "$log" "$VELKA_KEEP/"
  done
}
