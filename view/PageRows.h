// The pages of a stream as pictures.
#pragma once

#include "PaperView.h"
#include "PictureRows.h"

namespace velka::view {

/// Rows of a page as `view` wants it drawn; the page must outlive them. Memory goes
/// with a strip of rows, whatever the page's length.
[[nodiscard]] RowsDrawing pageRows(const decode::Page& page, const PaperView& view);

/// The most pixels that what is made smaller may have on a side.
inline constexpr int64_t kWidestSource = int64_t{1} << 22;
inline constexpr int64_t kLongestSource = int64_t{1} << 31;

/// The size of a sheet with a pixel a cell; none where nothing can be made of it.
[[nodiscard]] std::optional<PictureSize> sheetSize(const PaperView& view,
                                                   const decode::Paper& paper);

/// Of that size of a source nothing can be made.
inline constexpr const char* kBeyondDrawing = "the page is too large to draw at any size";

/// Rows of cells scaled to what `view` asks for.
[[nodiscard]] RowsDrawing inWantedSize(Rows rows, const PaperView& view);

}  // namespace velka::view
