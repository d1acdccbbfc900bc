// A job of the watching filter, as the scheduler starts it.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "support/FilterRun.h"
#include "support/RasterBuilder.h"
#include "support/TestPpd.h"

namespace velka::testing {

/// What it is asked of a raster: the queue's PPD and the job's options.
inline FilterResult guarded(const Bytes& raster, const PpdText& ppd = {},
                            const std::string& options = "") {
  const TempFile file(ppdText(ppd), ".ppd");
  FilterJob job;
  job.arguments = {"7", "user", "title", "1", options};
  job.ppd = file.path();
  job.input = raster;
  job.mostSeconds = 300;
  return runFilter(VELKA_GUARD, job);
}

/// The messages of one kind, such as "PAGE", in their order.
inline std::vector<std::string> told(const FilterResult& result, const std::string& kind) {
  std::vector<std::string> texts;
  const std::string start = "\n" + kind + ": ";
  for (size_t at = result.errors.find(start); at != std::string::npos;
       at = result.errors.find(start, at)) {
    at += start.size();
    texts.push_back(result.errors.substr(at, result.errors.find('\n', at) - at));
  }
  return texts;
}

using Texts = std::vector<std::string>;

/// What the printer's state had to say: the reasons that were raised.
inline Texts raised(const FilterResult& result) {
  Texts reasons;
  for (const std::string& change : told(result, "STATE"))
    if (change.front() == '+') reasons.push_back(change.substr(1));
  return reasons;
}

inline Bytes joined(Bytes first, const Bytes& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

inline Bytes firstBytes(const Bytes& bytes, size_t count) {
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)};
}

/// Two inked pages, the second smaller, with every kind of line.
inline std::vector<RasterPage> twoPages() {
  return {inkedPage(rgbHeader(301, 200), 1), inkedPage(rgbHeader(80, 333), 2)};
}

}  // namespace velka::testing
