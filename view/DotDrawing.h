// Drawings whose every edge lies between two rows or columns of dots, and their PDF.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Head.h"

namespace velka::view {

/// Filled boxes, in dots of 1/180 inch from the top left corner.
struct DotBox {
  double left;
  double top;
  double width;
  double height;
  decode::Ink ink = decode::Ink::Black;
};

/// A page in points, and what is on it; later boxes lie over earlier ones.
struct DotDrawing {
  std::string title;
  double width = 0;
  double height = 0;
  std::vector<DotBox> boxes;

  /// Adds a line of text whose cells are `cell` dots large; a character that our letters
  /// lack becomes a full block.
  void addText(std::string_view text, int left, int top, int cell);
};

/// Dots from a letter to the next.
[[nodiscard]] int letterPitch(int cell);

/// The drawing as a PDF of one page, the same bytes each time; or what went wrong.
[[nodiscard]] std::variant<std::vector<uint8_t>, std::string> pdfOf(const DotDrawing& drawing);

}  // namespace velka::view
