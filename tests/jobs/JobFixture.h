// Whole jobs through the executable, and what the literal reference makes of them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "reference/ReferenceJob.h"
#include "reference/ReferenceOptions.h"
#include "support/FilterRun.h"
#include "support/RasterBuilder.h"
#include "support/StreamText.h"
#include "support/TestPpd.h"

namespace velka::testing {

inline const std::string kFilter = VELKA_FILTER;

/// A page as the reference takes it.
inline reference::RasterPage forReference(const RasterPage& page) {
  const cups_page_header2_t& h = page.header;
  reference::RasterPage out;
  out.header = {.width = h.cupsWidth,
                .height = h.cupsHeight,
                .bitsPerPixel = h.cupsBitsPerPixel,
                .bytesPerLine = h.cupsBytesPerLine,
                .xResolution = h.HWResolution[0],
                .yResolution = h.HWResolution[1],
                .collate = h.Collate != CUPS_FALSE,
                .copies = h.NumCopies};
  out.lines = page.lines;
  return out;
}

inline Bytes expectedStream(const tagOEMCFG& options, const std::vector<RasterPage>& pages) {
  std::vector<reference::RasterPage> converted;
  converted.reserve(pages.size());
  for (const RasterPage& page : pages) converted.push_back(forReference(page));
  return reference::runJob(options, converted);
}

/// Compares two streams and decodes them where they differ.
inline void expectSameStream(const Bytes& got, const Bytes& expected) {
  EXPECT_TRUE(got == expected) << differenceOf(got, expected);
}

/// A job on standard input with a PPD of these options.
inline FilterResult runJob(const std::vector<std::pair<std::string, std::string>>& options,
                           const Bytes& stream) {
  const TempFile ppd(ppdText({1, options, false}));
  FilterJob job;
  job.ppd = ppd.path();
  job.input = stream;
  return runFilter(kFilter, job);
}

inline std::string finished(size_t pages) {
  std::string text;
  for (size_t i = 0; i < pages; ++i) text += "Finish print operation.";
  return text;
}

}  // namespace velka::testing
