// What the calibration pages share: their block on the paper, lines of text, boxes.
#pragma once

#include <string_view>

#include "DotDrawing.h"

namespace velka::calibration {

inline constexpr double kPointsPerMillimetre = 72 / 25.4;

/// The PPDs' paper 80x200mm, in points.
inline constexpr double kRollWidth = 80 * kPointsPerMillimetre;
inline constexpr double kRollLength = 200 * kPointsPerMillimetre;

// All in dots of 1/180 inch.

// 4.2 to 72 mm from the paper's edge: a head of 72 mm reaches it from either edge.
inline constexpr int kLeft = 30;
inline constexpr int kWidth = 480;

inline constexpr int kBand = 24;  ///< rows that the standard head prints in one pass
inline constexpr int kLine = kBand;
inline constexpr int kTextCell = 2;
inline constexpr int kTitleCell = 3;

/// Letters of a line, and of a title.
inline constexpr int kLineLetters = 40;
inline constexpr int kTitleLetters = 26;

/// Writes down a page, line by line. Takes dots of 1/180 inch whatever the page's dots are:
/// those must be a whole part of them.
class PageWriter {
 public:
  explicit PageWriter(DotDrawing& page) : page_(page), scale_(page.dpi / 180) {}

  void skip(int rows) { row_ += rows; }
  void goTo(int row) { row_ = row; }
  [[nodiscard]] int row() const { return row_; }

  /// What is written from now on.
  void write(Colour colour) { colour_ = colour; }

  void title(std::string_view text);
  void line(std::string_view text);

  /// A line's text elsewhere: its letters start at `left`, or lie around `middle`.
  void text(std::string_view text, int left, int top);
  void label(std::string_view text, int middle, int top);

  void box(int left, int top, int width, int height, Colour colour = kBlack);

 private:
  DotDrawing& page_;
  int scale_;
  int row_ = kBand;
  Colour colour_ = kBlack;
};

/// Dots that a line's text takes.
[[nodiscard]] int widthOf(std::string_view text);

}  // namespace velka::calibration
