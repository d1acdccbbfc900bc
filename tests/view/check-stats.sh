#!/usr/bin/env bash
# check-stats.sh VELKAVIEW: hand-made streams, sound and broken.
set -euo pipefail

velkaview=$1
failures=0

# Streams are written as the octal escapes of printf.
start='\0033@\00332\0033C\0106'
unit10='\0033(U\0001\0000\0012'
black='\0033r\0000\0033*\0047\0002\0000\0377\0000\0001\0000\0000\0200' # 2 columns, 10 dots
red='\0033r\0001\0033*\0000\0003\0000\0001\0003\0007'                  # 3 columns, 6 dots
orlo='\0033*\0047\0001\0000\0377\0377\0377'                            # 18 and 6 dots
down48='\0015\0033(v\0002\0000\0060\0000'
up2='\0015\0033(v\0002\0000\0376\0377'
end='\0033@'

value() { sed -n "s/^$1 *//p" <<<"$2"; }

# counts NAME STREAM PAGES BANDS BLACK RED BLOCKS [OPTION...]
counts() {
  local said got='' key expected
  said=$(printf '%b' "$2" | "$velkaview" --stats "${@:8}" - 2>/dev/null) || true
  for key in pages bands 'black dots' 'red dots' blocks bytes; do
    got+="$(value "$key" "$said") "
  done
  expected="$3 $4 $5 $6 $7 $(printf '%b' "$2" | wc -c) "
  [[ $got == "$expected" ]] || {
    echo "$1: got $got, not $expected" >&2
    failures=$((failures + 1))
  }
}

# malformed NAME STREAM OFFSET
malformed() {
  local status=0 said
  said=$(printf '%b' "$2" | "$velkaview" --stats - 2>&1 >/dev/null) || status=$?
  [[ $status == 1 && $said == *"offset $3: "* ]] || {
    echo "$1: status $status, '$said'" >&2
    failures=$((failures + 1))
  }
}

counts 'nothing' '' 0 0 0 0 0
counts 'a job without ink' "$start$end" 0 0 0 0 0
counts 'one page' "$start$unit10$down48$black$up2$red$down48$black\0014$end" 1 2 20 6 3
counts 'two pages' "$start$black\0014$start$black\0014$end" 2 2 20 0 2
counts 'an eject command' "$start$black\0035\0004T1\0014$end" 1 1 10 0 1
counts 'horizontal moves' "$start\0033(U\0001\0000\0074\0033\$\0246\0000\0033\0134\0377\0377$black\0014" 1 1 10 0 1
counts 'a move of two cut commands' \
  "$black\0015\0033(v\0033(v\0002\0000\0277\0343\0000\0000\0000\0000$red\0014" 1 2 10 6 2
counts 'both inks at once, back feed' "$start\0033r\0002$orlo\0014$end" 1 1 18 6 1
counts 'both inks at once, front feed' "$start$orlo\0014$end" 1 1 18 6 1 --model orlo-front

malformed 'text' 'hello' 0
malformed 'an unknown escape' "$start\0033Z" 7
malformed 'a cut escape' "$start\0033" 7
malformed 'a cut move' "$start\0033(v\0002\0000\0001" 7
malformed 'a long move without padding' "\0033(v\0033(v\0002\0000\0277\0343\0014" 0
malformed 'a cut block header' "$start\0033r\0000\0033*" 10
malformed 'data without a block' "$start\0033r\0000\0033@\0000\0000\0000\0000" 12
malformed 'a fourth colour' "$start\0033r\0003\0033*\0047\0000\0000" 7
malformed 'an unknown mode' "$start\0033r\0000\0033*\0007\0000\0000" 10
malformed 'a cut block' "$start\0033r\0000\0033*\0047\0377\0377\0001" 10
malformed 'a page without an end' "$black" 14
malformed 'a job without an end' "$start$black\0014" 22
malformed 'a page cut before its first block' "$start$black\0014$start$unit10" 35

((failures == 0))
