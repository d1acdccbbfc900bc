#include "Picture.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>

#include "TextFormat.h"

namespace velka::view {

std::string tooLarge(double width, double height, int64_t side, int64_t all) {
  return decode::format("a picture of %.0f x %.0f pixels is too large (at most %" PRId64
                        " a side and %" PRId64 " in all); a smaller --scale or --dpi may help",
                        width, height, side, all);
}

Drawing blankPicture(double width, double height, double dpi) {
  const double wide = std::max(1.0, std::round(width));
  const double high = std::max(1.0, std::round(height));
  if (!(wide <= kLongestSide && high <= kLongestSide &&
        wide * high <= static_cast<double>(kMostPixels))) {
    return tooLarge(wide, high, kLongestSide, kMostPixels);
  }
  Picture picture{static_cast<int32_t>(wide), static_cast<int32_t>(high), dpi, {}};
  picture.pixels.assign(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height),
                        kWhite);
  return picture;
}

}  // namespace velka::view
