// Pages as pictures that are held whole.
#pragma once

#include <cstdint>

#include "PaperView.h"
#include "Picture.h"

namespace velka::view {

/// Draws a page whole; `outside` counts the dots that miss the paper.
[[nodiscard]] Drawing drawPage(const decode::Page& page, const PaperView& view, uint64_t& outside);

/// The picture at another resolution.
[[nodiscard]] Drawing resample(Picture picture, double dpi);

}  // namespace velka::view
