#include "OptionCheck.h"

#include <cups/cups.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <span>

#include "NearestName.h"
#include "Ppd.h"

namespace velka::view {
namespace {

// What the print system and its filters take beside a PPD's keywords.
constexpr std::array kCommon{"booklet",
                             "Collate",
                             "collate",
                             "copies",
                             "cpi",
                             "crop-to-fit",
                             "document-format",
                             "fill",
                             "finishings",
                             "fit-to-page",
                             "fitplot",
                             "job-billing",
                             "job-hold-until",
                             "job-name",
                             "job-originating-host-name",
                             "job-originating-user-name",
                             "job-priority",
                             "job-sheets",
                             "job-uuid",
                             "landscape",
                             "lpi",
                             "media",
                             "media-col",
                             "media-source",
                             "media-type",
                             "mirror",
                             "multiple-document-handling",
                             "natural-scaling",
                             "number-up",
                             "number-up-layout",
                             "orientation-requested",
                             "output-bin",
                             "output-format",
                             "outputorder",
                             "OutputOrder",
                             "page-border",
                             "page-bottom",
                             "page-delivery",
                             "page-label",
                             "page-left",
                             "page-ranges",
                             "page-right",
                             "page-set",
                             "page-top",
                             "pdfAutorotate",
                             "ppi",
                             "position",
                             "prettyprint",
                             "print-color-mode",
                             "print-content-optimize",
                             "print-quality",
                             "print-rendering-intent",
                             "print-scaling",
                             "printer-resolution",
                             "saturation",
                             "scaling",
                             "sides",
                             "wrap"};

bool isCommon(const std::string& name) {
  return std::ranges::any_of(
      kCommon, [&](const char* known) { return strcasecmp(known, name.c_str()) == 0; });
}

// As dialogs show them: without the old names that some have, too.
std::string choicesOf(ppd_file_t* ppd, const ppd_option_t& option) {
  std::string text;
  ppdMarkDefaults(ppd);
  for (const ppd_choice_t& choice :
       std::span(option.choices, static_cast<size_t>(option.num_choices))) {
    if (ppdInstallableConflict(ppd, option.keyword, choice.choice) != 0) continue;
    text += (text.empty() ? "" : ", ") + std::string(choice.choice);
  }
  return text;
}

// Looks up one setting; whether the PPD knows its name.
bool lookUp(ppd_file_t* ppd, const std::string& name, const std::string& value, Problem& wrong) {
  ppd_option_t* option = ppdFindOption(ppd, name.c_str());
  if (option == nullptr) return false;
  if (!wrong && ppdFindChoice(option, value.c_str()) == nullptr) {
    wrong = name + " has no choice '" + value + "'; it has " + choicesOf(ppd, *option);
  }
  return true;
}

std::vector<std::string> keywordsOf(ppd_file_t* ppd) {
  std::vector<std::string> keywords;
  for (ppd_option_t* option = ppdFirstOption(ppd); option != nullptr; option = ppdNextOption(ppd)) {
    keywords.emplace_back(option->keyword);
  }
  return keywords;
}

std::vector<std::string> knownNames(ppd_file_t* ppd) {
  std::vector<std::string> names = keywordsOf(ppd);
  names.insert(names.end(), kCommon.begin(), kCommon.end());
  return names;
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

}  // namespace

OptionCheck checkOptions(const std::string& ppd, const std::string& options) {
  OptionCheck check;
  const PpdFile file = openPpd(ppd, check.trouble);
  if (!file) return check;
  cups_option_t* parsed = nullptr;
  const int count = cupsParseOptions(options.c_str(), 0, &parsed);
  for (const cups_option_t& option : std::span(parsed, static_cast<size_t>(count))) {
    const std::string name = option.name;
    if (lookUp(file.get(), name, option.value, check.wrong) || isCommon(name)) continue;
    const std::string text = "neither the PPD nor the print system knows the option " + name;
    const auto meant = nearestName(name, knownNames(file.get()));
    if (!meant) check.warnings.push_back(text);
    if (meant && !check.wrong) check.wrong = text + "; did you mean " + *meant + "?";
  }
  cupsFreeOptions(count, parsed);
  return check;
}

OptionCheck checkSheet(const std::string& ppd, const std::string& option,
                       const std::vector<std::string>& values) {
  OptionCheck check;
  const PpdFile file = openPpd(ppd, check.trouble);
  if (!file) return check;
  for (const std::string& value : values) {
    if (lookUp(file.get(), option, value, check.wrong) || isCommon(option)) continue;
    const auto meant = nearestName(option, knownNames(file.get()));
    check.wrong = "the PPD has no option " + option + "; " +
                  (meant ? "did you mean " + *meant + "? It has " : "it has ") +
                  joined(keywordsOf(file.get()));
    break;
  }
  return check;
}

std::optional<std::string> defaultOf(const std::string& ppd, const std::string& option) {
  Problem unreadable;
  const PpdFile file = openPpd(ppd, unreadable);
  if (!file) return std::nullopt;
  const ppd_option_t* found = ppdFindOption(file.get(), option.c_str());
  if (found == nullptr) return std::nullopt;
  return found->defchoice;
}

}  // namespace velka::view
