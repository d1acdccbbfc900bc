// Where a page lands on the output bitmap, every row and column of it, and the form that
// the printer is told of.
#pragma once

#include "PagePlacement.h"

namespace velka {

/// As growGeometry, but the form stays as long as the page itself: the source keeps its
/// size, so that an offset adds nothing from page to page, and the output's physical
/// size is the page's own, whichever page of the job it is.
void growGeometryExactly(_OEMPDEV& pdev, int16_t orientation, const PageOffset& offset) noexcept;

/// Copies a page into a white output bitmap, moved by the offset: each pixel that both
/// hold, in its row and column also where the two differ in width.
void placePageExactly(const BitmapView& source, const BitmapView& output, int32_t rows,
                      const PageOffset& offset) noexcept;

}  // namespace velka
