# Documents of several kinds, where their pages come from, copies and page ranges.
# Sourced.
# The parts of the test use each other's names.
# shellcheck shell=bash disable=SC2154

# Each model is on offer once, and the server has no word against it.
check_models() {
  local offered
  lpinfo -m >"$work/models"
  offered=$(grep -i velka "$work/models" | sed 's/, [0-9.]*$//' | sort) || true
  [[ $offered == "velka/velka-orlo.ppd Velka Orlo
velka/velka-standard.ppd Velka Standard" ]] || fail "lpinfo -m lists $offered"
  expect_no_complaints
}

# Boxes of one, two and three inches are six; a picture has its own size, 180 dots an
# inch. JPEG makes a red that is not quite the full one, which has fewer dots.
check_documents() {
  local queue
  for queue in "${queues[@]}"; do
    expect_counts "$queue, PDF" "$(print "$queue" "$work/three.pdf")" 3 "$(dots 6)" "$(dots 6)"
    expect_counts "$queue, PNG" "$(print "$queue" "$work/two-inch.png")" 1 "$(dots 2)" "$(dots 2)"
    expect_counts "$queue, JPEG" "$(print "$queue" "$work/two-inch.jpg")" 1 "$(dots 2)" -
    expect_counts "$queue, text" "$(print "$queue" "$work/lines.txt")" 3 - 0
  done
  expect_no_complaints
}

# Pages drawn from the copy of the job hold what the rasters hold; text is drawn
# without its grey edges, which tells one way from the other.
check_pdf_copies() {
  local queue name raster copy
  for queue in "${queues[@]}"; do
    for name in three.pdf two-inch.png two-inch.jpg; do
      raster=$(print "$queue" "$work/$name" -o PdfPreprocess=no)
      copy=$(print "$queue" "$work/$name" -o PdfPreprocess=yes)
      expect_counts "$queue, $name" "$copy" "$(count pages "$raster")" \
        "$(count 'black dots' "$raster")" "$(count 'red dots' "$raster")"
      expect_nothing_left "$queue" "${copy##*-}"
    done
    raster=$(print "$queue" "$work/lines.txt" -o PdfPreprocess=no)
    copy=$(print "$queue" "$work/lines.txt" -o PdfPreprocess=yes)
    expect_counts "$queue, text" "$copy" 3 - 0
    expect_other "$queue, text" "$raster" "$copy"
  done
  expect_no_complaints
}

# PostScript that the rasteriser takes as it is, without a PDF on the way.
check_postscript() {
  local queue source
  for queue in "${queues[@]}"; do
    for source in no yes; do
      expect_counts "$queue, PostScript, $source" "$(print "$queue" "$work/three.ps" \
        -o document-format=application/vnd.adobe-reader-postscript -o PdfPreprocess=$source)" \
        3 "$(dots 6)" "$(dots 6)"
    done
  done
  expect_no_complaints
}

# Documents of one job have one number, and so one name for their copies.
check_several_documents() {
  local queue source pdf png
  for queue in "${queues[@]}"; do
    for source in no yes; do
      pdf=$(print "$queue" "$work/three.pdf" -o PdfPreprocess=$source)
      png=$(print "$queue" "$work/two-inch.png" -o PdfPreprocess=$source)
      cat "$png" "$pdf" >"$work/both"
      expect_same "$queue, two documents, $source" "$work/both" \
        "$(print "$queue" "$work/three.pdf" -o PdfPreprocess=$source "$work/two-inch.png")"
      expect_counts "$queue, behind a banner, $source" "$(print "$queue" "$work/three.pdf" \
        -o job-sheets=standard,none -o PdfPreprocess=$source)" 4 - -
    done
  done
  expect_no_complaints
}

check_page_range() {
  local queue source stream
  for queue in "${queues[@]}"; do
    for source in no yes; do
      stream=$(print "$queue" "$work/three.pdf" -P 2-3 -o PdfPreprocess=$source)
      expect_counts "$queue, pages 2-3, $source" "$stream" 2 "$(dots 5)" "$(dots 5)"
    done
  done
  expect_no_complaints
}

# What a stream consists of: the commands at the start of a document, the page, and
# those at its end.
start_of() { head -c 7 "$1"; }
page_of() { tail -c +8 "$1" | head -c -2; }
end_of() { tail -c 2 "$1"; }

# repeated QUEUE STREAM: three of a page. The standard model makes them itself and
# starts them once; for the other one the system sends three pages, each with a start.
repeated() {
  local copy
  for copy in 1 2 3; do
    if [[ $1 == "$orlo" || $copy == 1 ]]; then start_of "$2"; fi
    page_of "$2"
  done
}

# Two pages, three times: page by page or set by set.
check_copies() {
  local queue one two
  for queue in "${queues[@]}"; do
    one=$(print "$queue" "$work/three.pdf" -P 1)
    two=$(print "$queue" "$work/three.pdf" -P 2)
    for _ in 1 2 3; do
      start_of "$one" && page_of "$one" && start_of "$two" && page_of "$two"
    done >"$work/collated"
    { repeated "$queue" "$one" && repeated "$queue" "$two"; } >"$work/apart"
    end_of "$one" | tee -a "$work/collated" >>"$work/apart"
    expect_same "$queue, collated" "$work/collated" \
      "$(print "$queue" "$work/three.pdf" -P 1-2 -n 3 -o collate=true)"
    expect_same "$queue, not collated" "$work/apart" \
      "$(print "$queue" "$work/three.pdf" -P 1-2 -n 3 -o collate=false)"
    expect_counts "$queue, copies of the copy" "$(print "$queue" "$work/three.pdf" -P 1-2 -n 3 \
      -o PdfPreprocess=yes)" 6 "$(dots 9)" "$(dots 9)"
  done
  expect_no_complaints
}
