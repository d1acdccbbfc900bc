// The four encoders: one walk, with the feed's head layout and the inks of each
// sweep.
#include <algorithm>
#include <cstring>
#include <optional>

#include "BandWalk.h"
#include "CheckedMath.h"
#include "OrloProcesser.h"

namespace {

constexpr int kFrontFeed = 1;
constexpr int kBackFeed = 2;
constexpr short kBlack = 1;
constexpr short kRed = 2;
constexpr int kBothColours = 3;
constexpr int kNotPrintable = 0;
constexpr int kOneSweep = 1;
constexpr int kSweepForEachInk = 2;
constexpr velka::Sweep kBothInks = {true, true, true};
constexpr velka::Sweep kBlackSweep = {true, false, false};
constexpr velka::Sweep kRedSweep = {false, true, false};

// Only whole rows that the plane really holds.
velka::DotPlane dotPlane(const velka::OrloPlane& plane, int64_t width, int64_t height) noexcept {
  if (plane.data == nullptr || width <= 0) return {nullptr, 0, 0, 0};
  const int64_t rows = std::clamp<int64_t>(height, 0, plane.size / width);
  return {plane.data, width, rows, std::min(rows, plane.filledRows(width))};
}

velka::BandWalk makeWalk(const COrloProcesser& page, const velka::HeadLayout& layout,
                         const velka::HeadResolution& resolution,
                         const velka::CommandSink& sink) noexcept {
  return {layout, resolution, dotPlane(page.m_BlackBuf, page.m_PageWidth, page.m_PageHeight),
          dotPlane(page.m_RedBuf, page.m_PageWidth, page.m_PageHeight), sink};
}

// Where the head must stand for an ink's first row to lie under its first dot.
int64_t firstBaseOf(const velka::OrloPlane& plane, const velka::NozzleGroup& nozzles,
                    int passes) noexcept {
  return int64_t{plane.top} - nozzles.offset(passes);
}

// The highest base that any ink asks for.
std::optional<int64_t> firstBase(const COrloProcesser& page, const velka::HeadLayout& layout,
                                 int passes) noexcept {
  const int64_t black = firstBaseOf(page.m_BlackBuf, layout.black, passes);
  const int64_t red = firstBaseOf(page.m_RedBuf, layout.red, passes);
  if (page.m_BlackBuf.isEmpty() && page.m_RedBuf.isEmpty()) return std::nullopt;
  if (page.m_BlackBuf.isEmpty()) return red;
  if (page.m_RedBuf.isEmpty()) return black;
  return std::min(black, red);
}

// Moves to the page's first band and prints all in one sweep.
bool printUnsplit(const COrloProcesser& page, const velka::HeadLayout& layout,
                  const velka::HeadResolution& resolution, const velka::CommandSink& sink,
                  int currentRow) noexcept {
  const auto base = firstBase(page, layout, resolution.passes);
  velka::BandWalk walk = makeWalk(page, layout, resolution, sink);
  return base && walk.prepare() && walk.move(*base - currentRow) && walk.print(kBothInks, *base);
}

// The black sweep, left out for `colour` 2, then back to the first red row and the
// red sweep. `reached`, where given, takes the row that the black sweep reached.
bool printSplit(const COrloProcesser& page, const velka::HeadLayout& layout,
                const velka::HeadResolution& resolution, const velka::CommandSink& sink,
                int currentRow, short colour, int32_t* reached) noexcept {
  const int passes = resolution.passes;
  const bool hasBlack = !page.m_BlackBuf.isEmpty();
  const bool hasRed = !page.m_RedBuf.isEmpty();
  const int64_t redBase = firstBaseOf(page.m_RedBuf, layout.red, passes);
  velka::BandWalk walk = makeWalk(page, layout, resolution, sink);
  if (!walk.prepare()) return false;
  if (colour == kBlack && hasBlack) {
    const int64_t base = firstBaseOf(page.m_BlackBuf, layout.black, passes);
    if (!walk.move(base - currentRow)) return false;
    const auto last = walk.print(kBlackSweep, base);
    if (!last) return false;
    // Deliberate: front feed counts from the last band's base, not from where the
    // second pass left the head, so at 360 dpi its red lies a row low.
    int64_t stand = *last;
    if (reached != nullptr) {
      *reached = velka::low32(static_cast<uint64_t>(*last + layout.black.beyond(passes)));
      stand = *reached - layout.black.beyond(passes) + passes - 1;
    }
    if (hasRed && !walk.move(redBase - stand)) return false;
  }
  if (!hasRed) return true;
  if (hasBlack) return walk.print(kRedSweep, redBase).has_value();
  // Deliberate: with red alone the head stands at the red top itself; in front
  // feed the rows between there and the red dots are lost.
  const int64_t redTop = page.m_RedBuf.top;
  const int64_t start = colour == kBlack ? 0 : currentRow;
  return walk.move(redTop - start) && walk.print(kRedSweep, redTop);
}

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
  if (!resolution || !printUnsplit(*this, velka::kFrontFeedHead, *resolution, sink(), currentRow))
    return 0;
  return sizeOutput(output, capacity, outputLength);
}

int COrloProcesser::Encode2EscpSmlNoSliptFeedFromBack(unsigned char** output, unsigned int capacity,
                                                      unsigned int* outputLength, int horizontalDpi,
                                                      int verticalDpi, int /*feedMode*/,
                                                      int currentRow) noexcept {
  const auto resolution = velka::headResolution(horizontalDpi, verticalDpi);
  if (!resolution || (m_BlackBuf.isEmpty() && m_RedBuf.isEmpty())) return 0;
  if (!appendColorMode(kBothColours) ||
      !printUnsplit(*this, velka::kBackFeedHead, *resolution, sink(), currentRow))
    return 0;
  return sizeOutput(output, capacity, outputLength);
}

int COrloProcesser::Encode2EscpSmlHaveSlipt(unsigned char** output, unsigned int capacity,
                                            unsigned int* outputLength, int horizontalDpi,
                                            int verticalDpi, int /*feedMode*/, int currentRow,
                                            short colour) noexcept {
  const auto resolution = velka::headResolution(horizontalDpi, verticalDpi);
  if (!resolution || (colour != kBlack && colour != kRed)) return 0;
  if (!printSplit(*this, velka::kFrontFeedHead, *resolution, sink(), currentRow, colour, nullptr))
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
  if (m_BlackBuf.isEmpty() && m_RedBuf.isEmpty()) return 0;
  if (colour == kBlack && !appendColorMode(kBothColours)) return 0;
  if (!printSplit(*this, velka::kBackFeedHead, *resolution, sink(), currentRow, colour, &printY))
    return 0;
  return sizeOutput(output, capacity, outputLength);
}
