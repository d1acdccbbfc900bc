// The sweeps of the head that print a page of the Orlo model: one for both inks, or one
// for each.
#pragma once

#include <cstdint>

#include "CommandBuilders.h"
#include "HeadLayout.h"
#include "HeadResolution.h"
#include "OrloPlane.h"

namespace velka {

/// A page's halftoned planes of width x height bytes.
struct OrloInks {
  const OrloPlane& black;
  const OrloPlane& red;
  int64_t width;
  int64_t height;

  [[nodiscard]] bool isEmpty() const noexcept { return black.isEmpty() && red.isEmpty(); }
};

/// How a page is swept, and from which row the head starts.
struct OrloSweep {
  const HeadLayout& layout;
  const HeadResolution& resolution;
  int64_t currentRow;
};

/// Appends the commands of both inks in one sweep, the way to the first band included.
/// False for a page without ink and when memory runs out.
[[nodiscard]] bool printUnsplit(const OrloInks& page, const OrloSweep& sweep,
                                const CommandSink& sink) noexcept;

/// Appends those of a black sweep, unless it is `withoutBlack`, and of a red one.
/// `reached`, where given, takes the row that the black sweep reached. False when memory
/// runs out.
[[nodiscard]] bool printSplit(const OrloInks& page, const OrloSweep& sweep, bool withoutBlack,
                              int32_t* reached, const CommandSink& sink) noexcept;

}  // namespace velka
