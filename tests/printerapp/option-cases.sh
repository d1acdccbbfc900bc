# Every option of the PPDs is one of the printers here.
# shellcheck shell=bash disable=SC2154

# options_of MODEL: lines "OPTION DEFAULT OTHER": a choice that is not the default, of those
# that dialogs show. Paper, the colour model and old names are no options of the filter's.
options_of() {
  awk '
    /^\*UIConstraints: \*OldNames False \*/ { hidden[substr($4, 2) " " $5] }
    /^\*OpenUI / { option = $2; gsub(/^\*|\/.*/, "", option); names[++count] = option }
    /^\*Default[A-Za-z]+: / { sub(/:$/, "", $1); defaults[substr($1, 9)] = $2 }
    /^\*[A-Z][A-Za-z]+ [^ :\/]+\/[^:]*: "/ {
      choice = $2
      sub(/\/.*/, "", choice)
      choices[substr($1, 2)] = choices[substr($1, 2)] " " choice
    }
    END {
      for (i = 1; i <= count; i++) {
        option = names[i]
        if (option ~ /^(PageSize|PageRegion|ColorModel|OldNames)$/) continue
        n = split(choices[option], all, " ")
        for (j = 1; j <= n; j++) {
          if (all[j] == defaults[option] || (option " " all[j]) in hidden) continue
          print option, defaults[option], all[j]
          break
        }
      }
    }' "$(ppd_of "$1")"
}

# attribute NAME ATTRIBUTE: its value as the printer tells it.
attribute() { sed -n "s/^ *$2 ([^)]*) = //p" "$work/$1.attributes"; }

read_attributes() {
  ask "$1" Get-Printer-Attributes 'ATTR keyword requested-attributes all' >"$work/$1.attributes"
}

# Those of a PPD are those of the printer, with the same choices and defaults.
case_same_options() {
  local model option default other
  start_app
  add_printers
  for model in standard orlo; do
    read_attributes "$model"
    while read -r option default other; do
      [[ $(attribute "$model" "$option-default") == "$default" ]] ||
        fail "$model: $option is $(attribute "$model" "$option-default"), not $default"
      [[ ,$(attribute "$model" "$option-supported"), == *",$other,"* ]] ||
        fail "$model: $option has no $other"
    done < <(options_of "$model")
    [[ $(grep -c '^ *[A-Z][A-Za-z]*-supported ' "$work/$model.attributes") == \
      $(options_of "$model" | wc -l) ]] || fail "$model: other options than the PPD's"
  done
}

# Each is set in a job of its own, and prints what the filter prints with it.
case_by_ipp() {
  local model option default other wanted
  start_app
  add_printers
  pattern srgb 3000 2000 180 180 2 small
  for model in standard orlo; do
    while read -r option default other; do
      wanted="$option=$other"
      # Raster has its own resolution, and no PDF.
      [[ $option != Resolution && $option != PdfPreprocess ]] || wanted=
      print_job "$model" image/pwg-raster "$work/small.pwg" "$option" "ATTR keyword $option $other"
      filtered "$model" "$wanted" "$work/small.ras" "$work/expected"
      same_bytes "$model $option=$other" "$prints/$model/$option.prn" "$work/expected"
    done < <(options_of "$model")
  done
}

# Red unless a job asks for none. The default is a colour by name: CUPS 2.4.10 takes "auto" for
# the first kind of raster that a printer tells, which is grey.
case_colour_modes() {
  local model mode wanted stats
  start_app
  add_printers
  pattern srgb 3000 2000 180 180 1 small
  document 1 >"$work/one.pdf"
  draw <"$work/one.pdf" >"$work/one.ras"
  for model in standard orlo; do
    read_attributes "$model"
    [[ $(attribute "$model" print-color-mode-default) == color ]] ||
      fail "$model: the default is $(attribute "$model" print-color-mode-default)"
    for mode in none auto color monochrome auto-monochrome; do
      wanted=
      [[ $mode != *monochrome ]] || wanted=OutputColorType=Black
      print_mode image/pwg-raster "$work/small.pwg" "raster-$mode"
      filtered "$model" "$wanted" "$work/small.ras" "$work/expected"
      same_bytes "$model, raster, $mode" "$prints/$model/raster-$mode.prn" "$work/expected"
      print_mode application/pdf "$work/one.pdf" "pdf-$mode"
      filtered "$model" "$wanted" "$work/one.ras" "$work/expected"
      same_bytes "$model, PDF, $mode" "$prints/$model/pdf-$mode.prn" "$work/expected"
    done
    stats=$("$build/view/velkaview" --stats "$prints/$model/raster-none.prn" 2>/dev/null) ||
      fail "$model: no stream"
    grep -qE '^red dots +[1-9]' <<<"$stats" || fail "$model: no red where nothing is asked for"
  done
}

# print_mode TYPE FILE TITLE: with $mode as the job's attribute, or none.
print_mode() {
  local attributes=()
  [[ $mode == none ]] || attributes=("ATTR keyword print-color-mode $mode")
  print_job "$model" "$@" "${attributes[@]}"
  [[ $state == completed ]] || fail "$3, $model: $state: $(message "$model" "$job")"
}

# Asking does not make the answer longer; what options are called is where it says, and in
# the language of the form.
case_texts() {
  local round model=orlo uri
  command -v curl >/dev/null || skip "curl is not here"
  start_app
  add_printers
  for round in 1 2 3; do
    ask "$model" Get-Printer-Attributes 'ATTR keyword requested-attributes all' >"$work/said.$round"
    (($(grep -c '^ *printer-strings-languages-supported' "$work/said.$round") == 1)) ||
      fail "asked $round times: $(grep printer-strings "$work/said.$round")"
  done
  uri=$(sed -n 's/^ *printer-strings-uri (uri) = //p' "$work/said.3")
  [[ $uri == "http://localhost:$port/options.strings" ]] || fail "the texts are at $uri"
  curl -fsS "$uri" >"$work/texts"
  grep -qxF '"OutputColorType.Black" = "Black only";' "$work/texts" ||
    fail "the texts: $(head -n 5 "$work/texts")"
  curl -fsS -H 'Accept-Language: de' "http://localhost:$port/$model/printing" >"$work/form.html"
  grep -qF 'Bereich Rot, von' "$work/form.html" || fail "the form is not in German"
}

# The form of the printer's page sets the defaults, all at once.
case_by_web_form() {
  local model option default other fields wanted page
  command -v curl >/dev/null || skip "curl is not here"
  start_app
  add_printers
  pattern srgb 3000 2000 180 180 1 small
  for model in standard orlo; do
    page=http://localhost:$port/$model/printing
    curl -s "$page" >"$work/form.html"
    fields=(-d "session=$(sed -n 's/.*name="session" value="\([^"]*\)".*/\1/p' "$work/form.html" | head -n 1)")
    wanted=
    while read -r option default other; do
      grep -q "name=\"$option\"" "$work/form.html" || fail "$model: the form has no $option"
      fields+=(-d "$option=$other")
      [[ $option == Resolution || $option == PdfPreprocess ]] || wanted+=" $option=$other"
    done < <(options_of "$model")
    curl -s "${fields[@]}" "$page" >"$work/saved.html"
    read_attributes "$model"
    while read -r option default other; do
      [[ $(attribute "$model" "$option-default") == "$other" ]] ||
        fail "$model: $option is still $(attribute "$model" "$option-default")"
    done < <(options_of "$model")
    print_job "$model" image/pwg-raster "$work/small.pwg" form
    filtered "$model" "$wanted" "$work/small.ras" "$work/expected"
    same_bytes "$model with all options set" "$prints/$model/form.prn" "$work/expected"
  done
}
