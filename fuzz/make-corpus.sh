#!/usr/bin/env bash
# make-corpus.sh: writes the hand-made streams of the corpora of the decoder and of the
# watching filter anew.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/corpus/decode"

# Streams are written as the octal escapes of printf.
start='\0033@\00332\0033C\0106'
unit10='\0033(U\0001\0000\0012'
unit60='\0033(U\0001\0000\0074'
down48='\0015\0033(v\0002\0000\0060\0000'
up1='\0015\0033(v\0002\0000\0377\0377'
long_move='\0015\0033(v\0033(v\0002\0000\0277\0343\0000\0000\0000\0000'
to166='\0033\$\0246\0000'
columns='\0003\0000\0377\0000\0001\0000\0200\0000\0125\0252\0125'
fine='\0003\0000\0001\0200\0252'
tall='\0001\0000\0377\0000\0377\0000\0377\0000\0377\0000\0377'
end='\0033@'

put() { printf '%b' "$2" >"$1"; }

put standard-180 "$start$unit10$down48$unit60$to166\0033r\0000\0033*\0047$columns$unit10$up1$unit60$to166\0033r\0001\0033*\0047$columns\0035\0004T1\0014$end"
put standard-360 "$start$unit10$down48$unit60$to166\0033r\0000\0033*\0050$columns$unit10\0015\0033(v\0002\0000\0001\0000\0033r\0000\0033*\0050$columns\0014$end"
put standard-60 "$start\0033r\0000\0033*\0000$fine\0033r\0001\0033*\0004$fine\0033r\0000\0033*\0006$fine\0033r\0000\0033*\0001$fine\0014$end"
put standard-72-pins "$start\0033r\0000\0033*\0051$tall\0014$end"
put orlo-front "$start$unit10$down48$unit60$to166\0033*\0047$columns\0015\0014$end"
put orlo-back "$start\0033r\0002$unit10$down48$unit60$to166\0033*\0050$columns\0015\0014$end"
put long-move "$start$unit10$long_move\0033r\0000\0033*\0047$columns\0014$end"
put rare-commands "$start\0033\0031F\0033J\0022\0033\0134\0372\0377\0033*\0041$columns\0014$end"
put white-pages "$start\0014$start\0014$end"
put cut-off "$start$unit10$down48\0033r\0000\0033*\0047\0377\0377\0001"

cd ../guard

# number VALUE: four bytes, the lowest first; number_back VALUE: the highest first.
number() {
  printf '%b' "$(printf '\\0%03o\\0%03o\\0%03o\\0%03o' $(($1 & 255)) $(($1 >> 8 & 255)) \
    $(($1 >> 16 & 255)) $(($1 >> 24)))"
}
number_back() { number $((($1 & 255) << 24 | ($1 >> 8 & 255) << 16 | ($1 >> 16 & 255) << 8 | $1 >> 24)); }

# zeros COUNT
zeros() { head -c "$1" /dev/zero; }

# header NUMBER-FUNCTION WIDTH HEIGHT BITS ORDER SPACE SIZE: a page header of 180 x 180 dpi.
header() {
  local number=$1 width=$2 height=$3 bits=$4 order=$5 space=$6 size=$7
  local line=$(((width * bits + 7) / 8))
  zeros 276 && $number 180 && $number 180 && zeros 56 && $number 1 && zeros 28
  $number "$width" && $number "$height" && zeros 4 && $number 8 && $number "$bits"
  $number "$line" && $number "$order" && $number "$space" && zeros 16
  ((size == 420)) || { $number $((bits / 8)) && zeros 1372; }
}

# Behind eight bytes that say how the stream comes in pieces.
pieces() { printf 'abcdefgh'; }

{ pieces && printf 3SaR && header number 5 4 24 0 1 1796 && zeros 60; } >version-3
{ pieces && printf 3SaR && header number 5 4 24 0 1 1796 && zeros 60 &&
  header number 2 2 8 0 3 1796 && zeros 4; } >two-pages
{ pieces && printf RaS3 && header number_back 5 4 24 0 1 1796 && zeros 60; } >other-order
{ pieces && printf tSaR && header number 5 4 24 0 1 420 && zeros 60; } >version-1
{ pieces && printf 3SaR && header number 5 4 24 2 1 1796 && zeros 180; } >planar
# Lines of one run, of pixels as they come, and cleared to their end; each twice.
{ pieces && printf 2SaR && header number 5 6 24 0 1 1796 &&
  printf '%b' '\0001\0004rgb\0001\0375rgbrgbrgbrgb\0000rgb\0001\0001rgb\0200'; } >compressed
{ pieces && printf RaS2 && header number_back 5 200 24 0 19 1796 &&
  printf '%b' '\0307\0177rgb'; } >pwg
{ pieces && printf 3SaR && header number 5 4 24 0 1 1796 && zeros 17; } >cut-off
{ pieces && printf 3SaR && header number 4000000 4000000 24 0 1 1796; } >too-large
