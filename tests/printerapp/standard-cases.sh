# What others say a driverless printer is.
# shellcheck shell=bash disable=SC2154

# CUPS's own test of printers that need no driver. Rasters of its samples, which no package
# has, are ours, in the resolutions that the printers have; the others are skipped by it.
case_everywhere() {
  local tests=/usr/share/cups/ipptool model sample kind dpi found run runs=()
  [[ -e $tests/ipp-everywhere.test ]] || skip "ipp-everywhere.test is not here (package cups-ipp-utils)"
  start_app
  add_printers
  mkdir "$work/ipp"
  cp "$tests"/*.test "$work/ipp/"
  document >"$work/ipp/letter.pdf"
  gzip -k "$work/ipp/letter.pdf"
  for sample in $(sed -n 's/.*FILE \(pwg-raster-samples[^ ]*\).*/\1/p' "$work/ipp/ipp-everywhere.test" | sort -u); do
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
  done
  for model in standard orlo; do
    (cd "$work/ipp" && ipptool -I -tvf letter.pdf "$(printer_uri "$model")" ipp-everywhere.test) \
      >"$work/$model.everywhere" 2>&1 &
    runs+=("$!")
  done
  for run in "${runs[@]}"; do wait "$run" || true; done
  for model in standard orlo; do
    grep -E '\[(FAIL|SKIP)\]|^ *(EXPECTED|GOT|STATUS):' "$work/$model.everywhere" | head -n 60 || true
    [[ -z ${VELKA_KEEP:-} ]] || cp "$work/$model.everywhere" "$log" "$VELKA_KEEP/"
    found=$(grep -c '\[PASS\]' "$work/$model.everywhere" || true)
    echo "$model: $found pass"
  done
}
