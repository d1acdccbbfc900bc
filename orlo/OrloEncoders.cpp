// The four encoders: the sweeps down a page, with the feed's head layout.
#include "OrloProcesser.h"
#include "OrloSweeps.h"

namespace {

constexpr int kFrontFeed = 1;
constexpr int kBackFeed = 2;
constexpr short kBlack = 1;
constexpr short kRed = 2;
constexpr int kBothColours = 3;
constexpr int kNotPrintable = 0;
constexpr int kOneSweep = 1;
constexpr int kSweepForEachInk = 2;

}  // namespace

int COrloProcesser::GetPrintConstruction(int paperFeedMode) const noexcept {
  if (paperFeedMode != kFrontFeed && paperFeedMode != kBackFeed) return kNotPrintable;
  if (m_SplitBlackRed > 1) return kNotPrintable;
  return m_SplitBlackRed == 0 ? kOneSweep : kSweepForEachInk;
}

bool COrloProcesser::canPrint(int horizontalDpi, int verticalDpi, int feedMode) const noexcept {
  return GetPrintConstruction(feedMode) != kNotPrintable &&
         velka::headResolution(horizontalDpi, verticalDpi).has_value();
}

int COrloProcesser::Encode2EscpSml(unsigned char** output, unsigned int capacity,
                                   unsigned int* outputLength, int horizontalDpi, int verticalDpi,
                                   int feedMode) noexcept {
  const int construction = GetPrintConstruction(feedMode);
  if (construction == kNotPrintable) return 0;
  const bool front = feedMode == kFrontFeed;
  if (construction == kOneSweep) {
    const auto encode = front ? &COrloProcesser::Encode2EscpSmlNoSlipt
                              : &COrloProcesser::Encode2EscpSmlNoSliptFeedFromBack;
    return (this->*encode)(output, capacity, outputLength, horizontalDpi, verticalDpi, feedMode, 0);
  }
  const auto encode = front ? &COrloProcesser::Encode2EscpSmlHaveSlipt
                            : &COrloProcesser::Encode2EscpSmlHaveSliptFeedFromBack;
  return (this->*encode)(output, capacity, outputLength, horizontalDpi, verticalDpi, feedMode, 0,
                         kBlack);
}

int COrloProcesser::Encode2EscpSmlNoSlipt(unsigned char** output, unsigned int capacity,
                                          unsigned int* outputLength, int horizontalDpi,
                                          int verticalDpi, int /*feedMode*/,
                                          int currentRow) noexcept {
  const auto resolution = velka::headResolution(horizontalDpi, verticalDpi);
  if (!resolution ||
      !velka::printUnsplit(Inks(), {velka::kFrontFeedHead, *resolution, currentRow}, sink()))
    return 0;
  return sizeOutput(output, capacity, outputLength);
}

int COrloProcesser::Encode2EscpSmlNoSliptFeedFromBack(unsigned char** output, unsigned int capacity,
                                                      unsigned int* outputLength, int horizontalDpi,
                                                      int verticalDpi, int /*feedMode*/,
                                                      int currentRow) noexcept {
  const auto resolution = velka::headResolution(horizontalDpi, verticalDpi);
  if (!resolution || Inks().isEmpty()) return 0;
  if (!appendColorMode(kBothColours) ||
      !velka::printUnsplit(Inks(), {velka::kBackFeedHead, *resolution, currentRow}, sink()))
    return 0;
  return sizeOutput(output, capacity, outputLength);
}

int COrloProcesser::Encode2EscpSmlHaveSlipt(unsigned char** output, unsigned int capacity,
                                            unsigned int* outputLength, int horizontalDpi,
                                            int verticalDpi, int /*feedMode*/, int currentRow,
                                            short colour) noexcept {
  const auto resolution = velka::headResolution(horizontalDpi, verticalDpi);
  if (!resolution || (colour != kBlack && colour != kRed)) return 0;
  if (!velka::printSplit(Inks(), {velka::kFrontFeedHead, *resolution, currentRow}, colour == kRed,
                         nullptr, sink()))
    return 0;
  return sizeOutput(output, capacity, outputLength);
}

int COrloProcesser::Encode2EscpSmlHaveSliptFeedFromBack(
    unsigned char** output, unsigned int capacity, unsigned int* outputLength, int horizontalDpi,
    int verticalDpi, int /*feedMode*/, int currentRow, short colour) noexcept {
  // The first row below the last band of the black sweep. It outlives the page, but
  // every black sweep sets it before it is asked for. It has no lock: one thread runs
  // a job, page by page.
  static int32_t printY = 0;
  const auto resolution = velka::headResolution(horizontalDpi, verticalDpi);
  if (!resolution || (colour != kBlack && colour != kRed)) return 0;
  if (Inks().isEmpty()) return 0;
  if (colour == kBlack && !appendColorMode(kBothColours)) return 0;
  if (!velka::printSplit(Inks(), {velka::kBackFeedHead, *resolution, currentRow}, colour == kRed,
                         &printY, sink()))
    return 0;
  return sizeOutput(output, capacity, outputLength);
}
