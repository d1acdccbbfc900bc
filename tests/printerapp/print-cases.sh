# What goes through the application comes out as the filter makes it.
# shellcheck shell=bash disable=SC2154

# draw_words OPTION...: how an A4 page is drawn at 180 dpi unless an option says otherwise.
draw() {
  "$app" draw x=180 y=180 width=21000 height=29700 scaling=1 "$@"
}

case_pdf() {
  local model
  document >"$work/letter.pdf"
  draw <"$work/letter.pdf" >"$work/letter.ras" || die "no pages are drawn"
  start_app
  add_printers
  for model in standard orlo; do
    print_job "$model" application/pdf "$work/letter.pdf" letter
    [[ $state == completed ]] || fail "$model: $state: $(message "$model" "$job")"
    filtered "$model" '' "$work/letter.ras" "$work/expected"
    same_bytes "a PDF, $model" "$prints/$model/letter.prn" "$work/expected"
  done
}

case_raster() {
  local kind
  start_app
  add_printers
  for kind in srgb sgray black; do
    pattern "$kind" 10500 14800 180 180 2 "$kind"
    for model in standard orlo; do
      print_job "$model" image/pwg-raster "$work/$kind.pwg" "$kind"
      [[ $state == completed ]] || fail "$kind, $model: $state: $(message "$model" "$job")"
      filtered "$model" '' "$work/$kind.ras" "$work/expected"
      same_bytes "$kind, $model" "$prints/$model/$kind.prn" "$work/expected"
    done
  done
}
