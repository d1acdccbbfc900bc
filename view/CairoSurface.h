// Pictures as the drawing library sees them.
#pragma once

#include "CairoObjects.h"
#include "Picture.h"

namespace velka::view {

using calibration::Context;
using calibration::Surface;

/// The picture's own pixels; it must outlive the surface.
inline Surface surfaceOf(Picture& picture) {
  auto* bytes = reinterpret_cast<unsigned char*>(picture.pixels.data());
  return Surface(cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_RGB24, picture.width,
                                                     picture.height, 4 * picture.width));
}

}  // namespace velka::view
