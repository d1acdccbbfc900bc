// Dots as the pins leave them.
#pragma once

#include "Picture.h"

namespace velka::view {

/// Across, in millimetres: the wire of a usual 24-pin head. Its dots are 1/180 inch
/// (0.141 mm) apart, so neighbours overlap.
inline constexpr double kPinDiameter = 0.2;

/// Draws a page on its paper with round dots at a resolution.
[[nodiscard]] Drawing drawPins(const decode::Page& page, const PaperView& view,
                               const decode::Paper& paper, double dpi, uint64_t& outside);

}  // namespace velka::view
