// Raster files of test pages.
#pragma once

#include <cstdint>
#include <string>

#include "TestPage.h"

namespace velka::bench {

/// Writes `pages` equal pages of chunked 24-bit RGB, uncompressed. Returns whether
/// the whole file could be written.
[[nodiscard]] bool writeRaster(const std::string& path, Kind kind, const Format& format,
                               unsigned pages);

/// The same picture of one bit a pixel, black ink, as filters get it that leave
/// halftoning to the rasteriser.
[[nodiscard]] bool writeOneBitRaster(const std::string& path, Kind kind, const Format& format,
                                     unsigned pages);

/// Writes the first page of a raster file `pages` times, uncompressed. Returns whether the
/// whole file could be written.
[[nodiscard]] bool repeatRaster(const std::string& page, const std::string& path, unsigned pages);

/// Reads all pages of a raster file line by line and does nothing with them: what
/// every filter has to do at least. Returns the bytes read.
uint64_t readRaster(const std::string& path);

}  // namespace velka::bench
