// From a page bitmap to two halftoned planes, a pixel at a time: what the product's
// pipeline must leave in its planes.
#pragma once

#include <cstdint>
#include <vector>

#include "DeviceRecords.h"
#include "orlo/PageMaker.h"

namespace velka::orlotest {

/// Rows of blue, green, red bytes and padding.
struct Bitmap {
  Bitmap(int w, int h, size_t padding = 0);
  int width;
  int height;
  size_t stride;
  std::vector<uint8_t> bytes;  ///< white at first
  void set(int x, int y, uint8_t b, uint8_t g, uint8_t r);
  [[nodiscard]] unsigned int size() const { return static_cast<unsigned int>(bytes.size()); }
};

struct LiteralPlane : Plane {
  bool hasData = false;
};

struct LiteralPlanes {
  LiteralPlane black;
  LiteralPlane red;
};

LiteralPlanes separateLiterally(const Bitmap& page, const _COLORCFG_ORLO& config, int verticalDpi,
                                int feedMode);

/// The part of a job's options that the model takes.
_COLORCFG_ORLO configOf(const tagOEMCFG& options);

/// Both inks, the range 130 to 255 of red bytes selecting red, neutral tone, a fixed
/// threshold.
_COLORCFG_ORLO plainConfig();

}  // namespace velka::orlotest
