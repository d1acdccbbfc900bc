// A page's raster as the filter gets it: what the user's document looks like before inks.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Outcome.h"
#include "PictureRows.h"

namespace velka::serve {

struct RasterPixels {
  int64_t width = 0;
  int64_t height = 0;
  double acrossDpi = 180;
  double alongDpi = 180;
  std::vector<uint8_t> rgb;  ///< three bytes a pixel, row after row

  /// 0x00RRGGBB.
  [[nodiscard]] uint32_t at(int64_t x, int64_t y) const {
    const uint8_t* p = rgb.data() + 3 * (y * width + x);
    return uint32_t{p[0]} << 16U | uint32_t{p[1]} << 8U | p[2];
  }
};

/// Reads page `number`, from 1, of a raster file; its rows that are missing are white.
[[nodiscard]] view::Problem readRaster(const std::string& name, uint64_t number,
                                       RasterPixels& pixels);

/// The page as a picture with square pixels; `pixels` must outlive it.
[[nodiscard]] view::Rows rowsOf(const RasterPixels& pixels);

}  // namespace velka::serve
