// Two streams on one sheet of paper.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "PaperView.h"
#include "PictureRows.h"

namespace velka::view {

/// Dots of one ink, struck twice or not.
struct InkChange {
  uint64_t same = 0;
  uint64_t first = 0;   ///< only in the first stream
  uint64_t second = 0;  ///< only in the second

  [[nodiscard]] bool none() const { return first == 0 && second == 0; }
  void add(const InkChange& other);
};

struct Change {
  std::array<InkChange, 2> inks;  ///< black, red
  uint64_t otherInk = 0;          ///< places that hold one ink in each stream, but not the same

  void add(const Change& other);
};

inline constexpr uint32_t kPaleBlack = 0xC8C8C8;
inline constexpr uint32_t kPaleRed = 0xFFC8C8;
inline constexpr uint32_t kOnlyFirst = 0x0040FF;
inline constexpr uint32_t kOnlySecond = 0x00A000;
inline constexpr uint32_t kOtherInk = 0xD000D0;

/// A page of each stream; one that is not there has no dots.
struct PagePair {
  const decode::Page& first;
  const decode::Page& second;
};

/// The sheet that holds both pages.
[[nodiscard]] decode::Paper paperOfBoth(const PagePair& pages, const PaperView& view,
                                        const std::array<decode::Model, 2>& models);

/// Counts what changed; none where the sheet has too many cells for that.
[[nodiscard]] std::optional<Change> countChange(const PagePair& pages, const PaperView& view,
                                                const std::array<decode::Model, 2>& models);

/// What changed as a picture, at the streams' own resolution unless another is wanted;
/// the pages must outlive it.
[[nodiscard]] RowsDrawing changeRows(const PagePair& pages, const PaperView& view,
                                     const std::array<decode::Model, 2>& models);

/// Both at once, the picture whole.
[[nodiscard]] Drawing comparePages(const PagePair& pages, const PaperView& view,
                                   const std::array<decode::Model, 2>& models, Change& change);

}  // namespace velka::view
