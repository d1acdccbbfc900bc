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

# What IPP says of pages: which, how often, how fine, on which paper.
case_pdf_attributes() {
  local model
  document 3 >"$work/three.pdf"
  start_app
  add_printers
  draw pages=2-3 <"$work/three.pdf" >"$work/range.ras"
  draw x=90 y=60 <"$work/three.pdf" >"$work/coarse.ras"
  draw x=120 <"$work/three.pdf" >"$work/draft.ras"
  "$app" draw x=180 y=180 width=8000 height=20000 scaling=1 <"$work/three.pdf" >"$work/roll.ras"
  draw turn=2 <"$work/three.pdf" >"$work/landscape.ras"
  for model in standard orlo; do
    compare range '' 'ATTR rangeOfInteger page-ranges 2-3'
    compare coarse '' 'ATTR keyword Resolution 90x60dpi'
    compare draft '' 'ATTR enum print-quality 3'
    compare roll '' 'ATTR keyword media om_roll-80x200mm_80x200mm'
    compare landscape '' 'ATTR enum orientation-requested 4'
    # The filter's own pictures of the pages: nothing is white.
    draw <"$work/three.pdf" >"$work/copy.ras"
    print_job "$model" application/pdf "$work/three.pdf" copy 'ATTR keyword PdfPreprocess yes'
    [[ $state == completed ]] || fail "$model from its copy: $state"
    (($(stat -c %s "$prints/$model/copy.prn") > 20000)) || fail "$model: the pages of the copy are white"
    [[ -z $(find /tmp -maxdepth 1 -name 'VK_TEMP_CUPS_app*') ]] || fail "$model leaves its copy"
  done
}

# compare RASTER OPTIONS ATTRIBUTE-LINE...: a job with these prints this raster.
compare() {
  local raster=$1 options=$2
  shift 2
  print_job "$model" application/pdf "$work/three.pdf" "$raster" "$@"
  [[ $state == completed ]] || fail "$raster, $model: $state: $(message "$model" "$job")"
  filtered "$model" "$options" "$work/$raster.ras" "$work/expected"
  same_bytes "$raster, $model" "$prints/$model/$raster.prn" "$work/expected"
}

# Three collated copies: the standard model's are the filter's, the Orlo model's pages again.
case_copies() {
  local model
  document 2 >"$work/two.pdf"
  draw <"$work/two.pdf" >"$work/once.ras"
  start_app
  add_printers
  for model in standard orlo; do
    print_job "$model" application/pdf "$work/two.pdf" copies 'ATTR integer copies 3'
    [[ $state == completed ]] || fail "copies, $model: $state"
    stats=$("$build/view/velkaview" --stats "$prints/$model/copies.prn" 2>/dev/null) ||
      fail "$model: no stream"
    grep -qE '^pages +6$' <<<"$stats" || fail "$model: $stats"
  done
}

# Pictures, which the library reads.
case_pictures() {
  local model kind
  command -v gs >/dev/null || skip "gs is not here (package ghostscript)"
  document 1 >"$work/one.pdf"
  gs -q -dBATCH -dNOPAUSE -r100 -sDEVICE=png16m -o "$work/picture.png" "$work/one.pdf"
  gs -q -dBATCH -dNOPAUSE -r100 -sDEVICE=jpeg -o "$work/picture.jpeg" "$work/one.pdf"
  start_app
  add_printers
  for model in standard orlo; do
    for kind in png jpeg; do
      print_job "$model" "image/$kind" "$work/picture.$kind" "$kind"
      [[ $state == completed ]] || fail "$kind, $model: $state: $(message "$model" "$job")"
      stats=$("$build/view/velkaview" --stats "$prints/$model/$kind.prn" 2>/dev/null) ||
        fail "$kind, $model: no stream"
      grep -qE '^pages +1$' <<<"$stats" || fail "$kind, $model: $stats"
      grep -qE '^red dots +[1-9][0-9]{3}' <<<"$stats" || fail "$kind, $model: no red: $stats"
    done
  done
}
