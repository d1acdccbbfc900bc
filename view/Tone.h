// Two pages compared as a person sees them from a step away: not dot by dot, but by
// how much ink lies on each small field of the paper.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Difference.h"

namespace velka::view {

/// The least side of a field, in millimetres. A page is divided evenly, so fields are
/// a little larger.
inline constexpr double kToneField = 2;

/// Shares of each field that black and red cover, of 1; row after row.
struct ToneMap {
  int64_t across = 1;
  int64_t down = 1;
  std::vector<std::array<double, 2>> fields;
};

/// Both pages' fields on one sheet.
struct TonePair {
  ToneMap first;
  ToneMap second;
  decode::Paper paper;
};

/// None where the sheet has too many cells to look at.
[[nodiscard]] std::optional<TonePair> tonesOf(const PagePair& pages, const PaperView& view,
                                              const std::array<decode::Model, 2>& models);

/// How the fields of two pages, or of several pairs, differ in one ink; shares of 1.
struct ToneChange {
  uint64_t fields = 0;
  double first = 0;  ///< sums over all fields
  double second = 0;
  double change = 0;   ///< sum, whichever has more
  double largest = 0;  ///< of one field
  double x = 0;        ///< that field's middle, millimetres
  double y = 0;

  void add(const ToneChange& other);
};

/// Black and red.
[[nodiscard]] std::array<ToneChange, 2> changeOf(const TonePair& tones);

/// The numbers in words; with the place of the largest change where there is one page.
[[nodiscard]] std::string textOf(const ToneChange& change, bool place);

/// The change as a picture: fields with more ink in the first blue, in the second green,
/// in the other ink magenta, full at a quarter of the field; the rest pale.
[[nodiscard]] RowsDrawing toneRows(TonePair tones, double dpi);

}  // namespace velka::view
