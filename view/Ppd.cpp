#include "Ppd.h"

#include <cups/cups.h>

#include <algorithm>
#include <cmath>
#include <span>

namespace velka::view {
namespace {

constexpr int kOrloModelNumber = 2;

void mark(ppd_file_t* ppd, const std::string& text) {
  ppdMarkDefaults(ppd);
  cups_option_t* options = nullptr;
  const int count = cupsParseOptions(text.c_str(), 0, &options);
  cupsMarkOptions(ppd, count, options);
  cupsFreeOptions(count, options);
}

// The paper lies across the head by its length when the page is turned by a quarter.
double widthInPoints(ppd_file_t* ppd) {
  const ppd_size_t* size = ppdPageSize(ppd, nullptr);
  if (size == nullptr) return 0;
  const ppd_choice_t* turn = ppdFindMarkedChoice(ppd, "AnticlockwiseRotate");
  const std::string quarters = turn == nullptr || turn->code == nullptr ? "" : turn->code;
  return static_cast<double>(quarters == "1" || quarters == "3" ? size->length : size->width);
}

}  // namespace

PpdFile openPpd(const std::string& name, Problem& problem) {
  PpdFile ppd(ppdOpenFile(name.c_str()));
  if (ppd) return ppd;
  int line = 0;
  const ppd_status_t status = ppdLastError(&line);
  problem = name + ": " + ppdErrorString(status);
  if (line > 0) *problem += " on line " + std::to_string(line);
  return ppd;
}

Problem otherMaker(const std::string& name) {
  Problem unreadable;
  const PpdFile ppd = openPpd(name, unreadable);
  if (!ppd) return std::nullopt;
  const std::string maker = ppd->manufacturer == nullptr ? "" : ppd->manufacturer;
  const std::span filters(ppd->filters, static_cast<size_t>(ppd->num_filters));
  const bool ours = maker == "Velka" || std::ranges::any_of(filters, [](const char* filter) {
                      return std::string(filter).ends_with("rastovelka");
                    });
  if (ours) return std::nullopt;
  return name + " is " + (maker.empty() ? "another maker" : maker) +
         "'s PPD, whose printers take other commands; --any-ppd goes on with it";
}

Problem readPpd(const std::string& name, const std::string& options, PpdFacts& facts) {
  Problem problem;
  const PpdFile ppd = openPpd(name, problem);
  if (!ppd) return problem;
  mark(ppd.get(), options);
  // The filter sends the Orlo model back-feed commands; nothing chooses front feed.
  facts.model =
      ppd->model_number == kOrloModelNumber ? decode::Model::OrloBack : decode::Model::Standard;
  facts.paperWidth = std::llround(widthInPoints(ppd.get()) * decode::kUnitsPerInch / 72);
  facts.pdfPreprocess = ppdIsMarked(ppd.get(), "PdfPreprocess", "yes") != 0;
  return std::nullopt;
}

}  // namespace velka::view
