// Pictures as the drawing library sees them, and its objects with an owner.
#pragma once

#include <cairo.h>

#include <memory>

#include "Picture.h"

namespace velka::view {

struct CairoFree {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, CairoFree>;
using Context = std::unique_ptr<cairo_t, CairoFree>;

/// The picture's own pixels; it must outlive the surface.
inline Surface surfaceOf(Picture& picture) {
  auto* bytes = reinterpret_cast<unsigned char*>(picture.pixels.data());
  return Surface(cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_RGB24, picture.width,
                                                     picture.height, 4 * picture.width));
}

}  // namespace velka::view
