#!/usr/bin/env bash
# check-velkastat.sh VELKASTAT: hand-made streams, sound and broken.
set -euo pipefail

velkastat=$1
failures=0

# Streams are written as the octal escapes of printf.
start='\0033@\00332\0033C\0106'
unit10='\0033(U\0001\0000\0012'
black='\0033r\0000\0033*\0047\0002\0000\0377\0000\0001\0000\0000\0200' # 2 columns, 10 dots
red='\0033r\0001\0033*\0000\0003\0000\0001\0003\0007'                  # 3 columns, 6 dots
down48='\0015\0033(v\0002\0000\0060\0000'
up2='\0015\0033(v\0002\0000\0376\0377'
end='\0033@'

# counts NAME STREAM PAGES BANDS BLACK RED BLOCKS
counts() {
  local got expected
  got=$(printf '%b' "$2" | "$velkastat" | awk '{print $NF}' | tr '\n' ' ') || true
  expected="$3 $4 $5 $6 $7 $(printf '%b' "$2" | wc -c) "
  [[ $got == "$expected" ]] || {
    echo "$1: got $got, not $expected" >&2
    failures=$((failures + 1))
  }
}

# malformed NAME STREAM OFFSET
malformed() {
  local status=0 said
  said=$(printf '%b' "$2" | "$velkastat" 2>&1) || status=$?
  [[ $status == 1 && $said == *"malformed at offset $3:"* ]] || {
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

malformed 'text' 'hello' 0
malformed 'an unknown escape' "$start\0033Z" 7
malformed 'a cut escape' "$start\0033" 7
malformed 'a cut move' "$start\0033(v\0002\0000\0001" 7
malformed 'a long move without padding' "\0033(v\0033(v\0002\0000\0277\0343\0014" 0
malformed 'a cut block header' "$start\0033r\0000\0033*" 7
malformed 'a colour without a block' "$start\0033r\0000\0033@\0000\0000\0000\0000" 7
malformed 'a third colour' "$start\0033r\0002\0033*\0047\0000\0000" 7
malformed 'an unknown mode' "$start\0033r\0000\0033*\0007\0000\0000" 7
malformed 'a cut block' "$start\0033r\0000\0033*\0047\0377\0377\0001" 7
malformed 'a page without an end' "$black" 14

((failures == 0))
