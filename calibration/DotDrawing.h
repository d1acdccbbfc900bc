// Drawings whose every edge lies between two rows or columns of dots, and their PDF.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace velka::calibration {

/// A colour of the page, before the filter decides on its ink.
struct Colour {
  uint8_t red = 0;
  uint8_t green = 0;
  uint8_t blue = 0;

  bool operator==(const Colour&) const = default;
};

/// The two that print as they are, whatever the tones of their inks are set to.
inline constexpr Colour kBlack{0, 0, 0};
inline constexpr Colour kRed{255, 0, 0};

/// Filled boxes, in dots of the drawing from its top left corner.
struct DotBox {
  double left;
  double top;
  double width;
  double height;
  Colour colour = kBlack;
};

/// A page in points, and what is on it; later boxes lie over earlier ones.
struct DotDrawing {
  std::string title;
  double width = 0;
  double height = 0;
  std::vector<DotBox> boxes;
  int dpi = 180;  ///< of the dots that it is drawn in

  /// Adds a line of text whose cells are `cell` dots large; a character that our letters
  /// lack becomes a full block.
  void addText(std::string_view text, int left, int top, int cell, Colour colour = kBlack);
};

/// Dots from a letter to the next.
[[nodiscard]] int letterPitch(int cell);

/// A drawing, or why there is none.
using Drawn = std::variant<DotDrawing, std::string>;

/// The drawing as a PDF of one page, the same bytes each time; or what went wrong.
[[nodiscard]] std::variant<std::vector<uint8_t>, std::string> pdfOf(const DotDrawing& drawing);

}  // namespace velka::calibration
