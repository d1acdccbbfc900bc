// Pictures at another resolution.
#pragma once

#include "PictureRows.h"

namespace velka::view {

/// The same picture at `dpi`: made smaller, each pixel is the mean of the area that it
/// covers; made larger, pixels stay sharp. Rows may be more than a picture can have, as
/// long as what is made of them is not: no more of them is drawn than is wanted.
[[nodiscard]] RowsDrawing scaled(Rows rows, double dpi);

}  // namespace velka::view
