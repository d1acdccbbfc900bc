// A job with a PPD of its own, and the dots that its pages hold.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "exact/PlainPrinter.h"
#include "reference/ReferenceOptions.h"
#include "support/Capture.h"
#include "support/RasterBuilder.h"

namespace velka::exacttest {

using testing::Bytes;
using testing::RasterPage;
using Struck = std::map<Spot, int>;

inline constexpr int kOrlo = 2;

/// A job in its PPD's words and as the options record has them.
struct Job {
  int model = 1;
  tagOEMCFG options = reference::defaultOptions();
  std::vector<std::pair<std::string, std::string>> choices;
  std::vector<RasterPage> pages;

  void choose(const std::string& keyword, int code) {
    choices.emplace_back(keyword, std::to_string(code));
  }
  [[nodiscard]] Pins pins() const { return model == kOrlo ? Pins::OrloBack : Pins::Standard; }
};

/// Any model, resolutions, size, offset, turn, halftone, copies; blank pages and pages of
/// other sizes among them.
Job randomJob(unsigned seed);

/// A job of a model with the options that its filter starts from.
Job jobOf(int model);

/// Takes a dot: ink (0 black, 1 red), row and column.
using OnDot = std::function<void(int ink, int row, int column)>;
/// Visits what a page holds once it is placed, separated and halftoned by the literal forms.
void forEachWantedDot(const Job& job, const RasterPage& page, const OnDot& visit);

/// What each page holds once it is placed, separated and halftoned by the literal forms,
/// in the order in which the pages leave the printer, copies included.
std::vector<Struck> wanted(const Job& job);

/// The job's stream, by the filter.
Bytes print(const Job& job, bool exact);

}  // namespace velka::exacttest
