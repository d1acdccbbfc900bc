// The page bitmap of a page from the PDF.
#pragma once

#include <cstdint>
#include <span>

namespace velka {

/// Gives the record's page buffer (of `g_oemPDEV`) the size of the picture, and its
/// geometry. Empty, and the page is not printed, where the record holds none or memory
/// does not hold the picture.
[[nodiscard]] std::span<uint8_t> resizePage(uint64_t stride, int width, int height) noexcept;

}  // namespace velka
