#!/usr/bin/env bash
# make-corpus.sh: writes the hand-made streams of the decoder's corpus anew.
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
