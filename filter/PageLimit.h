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

}  // namespace velka
