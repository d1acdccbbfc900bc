// How a page is shown.
#pragma once

#include <cstdint>
#include <optional>

#include "DotGrid.h"
#include "PageReader.h"

namespace velka::view {

/// What paper a page is drawn on and how.
struct PaperView {
  decode::Model model = decode::Model::Standard;
  decode::Grid grid;  ///< of all pages that are drawn
  decode::PaperWidth width;
  std::optional<double> dpi;
  double scale = 1;  ///< times the stream's own, without `dpi`
  bool pins = false;
};

/// The stream's own resolution, the same across and down: each dot is as many whole
/// pixels as it needs for that.
[[nodiscard]] double streamDpi(const PaperView& view);

/// Dots of a page that miss the paper.
[[nodiscard]] uint64_t dotsBesidePaper(const decode::Page& page, const PaperView& view);

}  // namespace velka::view
