// Dots as the pins leave them.
#pragma once

#include "Picture.h"

namespace velka::view {

/// Across, in millimetres: the wire of a usual 24-pin head. Its dots are 1/180 inch
/// (0.141 mm) apart, so neighbours overlap.
inline constexpr double kPinDiameter = 0.2;

/// Draws a page of `length` units with round dots at a resolution.
[[nodiscard]] Drawing drawPins(const decode::Page& page, const PaperView& view, int64_t length,
                               double dpi, uint64_t& outside);

}  // namespace velka::view
