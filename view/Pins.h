// Dots as the pins leave them.
#pragma once

#include "PaperView.h"
#include "PictureRows.h"

namespace velka::view {

/// Across, in millimetres: the wire of a usual 24-pin head. Its dots are 1/180 inch
/// (0.141 mm) apart, so neighbours overlap.
inline constexpr double kPinDiameter = 0.2;

/// Rows of a page on its paper with round dots, at a resolution; the page must outlive
/// them.
[[nodiscard]] RowsDrawing pinRows(const decode::Page& page, const PaperView& view,
                                  const decode::Paper& paper, double dpi);

}  // namespace velka::view
