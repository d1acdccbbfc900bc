// The drawing library's objects with an owner.
#pragma once

#include <cairo.h>

#include <memory>

namespace velka::calibration {

struct CairoFree {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, CairoFree>;
using Context = std::unique_ptr<cairo_t, CairoFree>;

}  // namespace velka::calibration
