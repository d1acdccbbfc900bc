// How much memory a page may ask for.
#pragma once

#include <cups/ppd.h>
#include <cups/raster.h>

#include <cstdint>

namespace velka {

/// The most bytes that a page bitmap may have: 1 GiB, or the largest page of the PPD,
/// its custom sizes too, at the header's resolution where that is more. A resolution
/// beyond those that the PPD offers (360 dpi where it names none) counts as the highest
/// of them: no page of the queue has it. Without a PPD 1 GiB. Never above 32 bits.
[[nodiscard]] uint64_t mostPageBytes(ppd_file_t* ppd, const cups_page_header2_t& header) noexcept;

/// What a page asks for, and the most bytes that it may (mostPageBytes).
struct PageSize {
  uint32_t width;   ///< pixels
  uint32_t height;  ///< rows
  uint32_t bitsPerPixel;
  uint64_t mostBytes;

  [[nodiscard]] uint64_t stride() const noexcept;

  /// Whether a page may have what it and its planes take, which are a byte a pixel: its
  /// bytes fit 32 bits, and at 24 bits a pixel at least they are within the bound.
  [[nodiscard]] bool isAllowed() const noexcept;
};

}  // namespace velka
