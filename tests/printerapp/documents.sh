# Documents, written out, so that nothing else is needed to make them.
# shellcheck shell=bash

# document [PAGES [WIDTH HEIGHT [GREY]]]: a PDF in points; each page has a red and a black box
# and as many thin lines as its number, on a ground of GREY (1, which is white).
document() {
  awk -v pages="${1:-2}" -v width="${2:-595}" -v height="${3:-842}" -v grey="${4:-1}" '
    function object(text) {
      offsets[++count] = length(out)
      out = out count " 0 obj\n" text "\nendobj\n"
    }
    BEGIN {
      out = "%PDF-1.4\n"
      for (i = 1; i <= pages; i++) kids = kids (2 + 2 * i - 1) " 0 R "
      object("<< /Type /Catalog /Pages 2 0 R >>")
      object("<< /Type /Pages /Count " pages " /Kids [ " kids "] >>")
      for (i = 1; i <= pages; i++) {
        stream = grey < 1 ? grey " g 0 0 " width " " height " re f\n" : ""
        stream = stream "1 0 0 rg 50 " height / 2 " 80 60 re f 0 g 150 " height / 2 " 40 40 re f\n"
        for (n = 1; n <= i; n++) stream = stream "0 G 0.5 w 20 " 20 + 6 * n " m 180 " 20 + 6 * n " l S\n"
        object("<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 " width " " height " ] /Contents " \
          count + 2 " 0 R >>")
        object("<< /Length " length(stream) " >>\nstream\n" stream "endstream")
      }
      start = length(out)
      out = out "xref\n0 " count + 1 "\n0000000000 65535 f \n"
      for (i = 1; i <= count; i++) out = out sprintf("%010d 00000 n \n", offsets[i])
      printf "%strailer << /Size %d /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n", out, count + 1, start
    }'
}
