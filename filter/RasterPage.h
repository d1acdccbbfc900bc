// A page's bitmap in the device record: its memory, and the raster lines in it.
#pragma once

#include <cups/ppd.h>
#include <cups/raster.h>

#include <cstdint>

#include "DeviceRecords.h"
#include "PageLimit.h"
#include "RasterInput.h"

namespace velka {

/// What became of a wish for memory.
enum class PageRoom : uint8_t {
  Had,
  Refused,   ///< there is none
  TooLarge,  ///< it is more than a page may ask for
};

/// Gives the record a page bitmap of this size, its contents undefined, and the bound for
/// its output. What the record held before is forgotten, not released. Planes are a byte
/// a pixel, so the size counts as that of 24-bit pixels at least.
[[nodiscard]] PageRoom makePage(_OEMPDEV& pdev, const PageSize& size) noexcept;

/// Puts a zeroed page bitmap in the place of the record's own, where it has one.
[[nodiscard]] PageRoom replacePage(_OEMPDEV& pdev, const PageSize& size) noexcept;

/// Releases the page bitmap without a word in the log.
void dropPage(_OEMPDEV& pdev) noexcept;

/// Reads a page's lines into the record's bitmap, rows of `stride` bytes, and sets its
/// height and sizes; without a bitmap, or where the page comes from a PDF, they are only
/// consumed. The rows behind the last line are counted as white and left as they are.
/// No line is read where there is no room for one.
[[nodiscard]] PageRoom readLines(_OEMPDEV& pdev, const cups_page_header2_t& header,
                                 RasterInput& raster, ppd_file_t* ppd, uint64_t stride,
                                 uint64_t mostBytes) noexcept;

}  // namespace velka
