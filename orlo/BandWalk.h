// The walk down a page, band by band, that all encoders of this model share.
//
// A band is what the head prints standing at one row, its base: in one pass, or at
// 360 dpi in two that lie one row apart and interleave. Both inks print at once but
// rows apart, so the next base is the highest one that brings an inked row, not
// printed so far, under the first dot of its ink. Every encoder is this walk with
// another head layout or other inks in the sweep.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "CommandBuilders.h"
#include "HeadLayout.h"
#include "HeadResolution.h"
#include "InkRows.h"
#include "PassColumns.h"
#include "PrintRuns.h"

namespace velka {

/// The inks of a sweep, and whether it ends early at the bottom of the page.
struct Sweep {
  bool black;
  bool red;
  bool endsAtPageBottom;
};

class BandWalk {
 public:
  BandWalk(const HeadLayout& layout, const HeadResolution& resolution, const DotPlane& black,
           const DotPlane& red, const CommandSink& sink) noexcept
      : layout_(layout), resolution_(resolution), black_(black), red_(red), sink_(sink) {}

  /// Looks through the planes. False when memory runs out.
  [[nodiscard]] bool prepare() noexcept;

  /// Prints the bands from `base`, at which the head stands, to the end of the
  /// sweep. Returns the last band's base; nothing when an append failed.
  [[nodiscard]] std::optional<int64_t> print(const Sweep& sweep, int64_t base) noexcept;

  /// Moves the paper; no command for no rows.
  [[nodiscard]] bool move(int64_t rows) const noexcept;

 private:
  struct Ink {
    NozzleGroup nozzles;
    const DotPlane& plane;
    const InkRows& rows;
  };
  [[nodiscard]] Ink blackInk() const noexcept { return {layout_.black, black_, blackRows_}; }
  [[nodiscard]] Ink redInk() const noexcept { return {layout_.red, red_, redRows_}; }

  [[nodiscard]] std::optional<int64_t> nextBase(const Sweep& sweep, int64_t base) const noexcept;
  [[nodiscard]] std::optional<int64_t> nextBaseOf(const Ink& ink, int64_t base) const noexcept;
  [[nodiscard]] bool reachesPageBottom(int64_t base) const noexcept;
  [[nodiscard]] bool printBand(const Sweep& sweep, int64_t base,
                               std::optional<int64_t> previous) noexcept;
  void addSlots(const Ink& ink, int64_t firstRow, int64_t coveredTo) noexcept;
  [[nodiscard]] bool sendRuns() noexcept;

  HeadLayout layout_;
  HeadResolution resolution_;
  DotPlane black_;
  DotPlane red_;
  CommandSink sink_;
  InkRows blackRows_;
  InkRows redRows_;
  PassColumns columns_;
};

}  // namespace velka
