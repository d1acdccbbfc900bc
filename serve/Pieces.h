// The part of a picture that a screen shows.
#pragma once

#include <cstdint>
#include <string>

#include "PictureRows.h"

namespace velka::serve {

/// In pixels; may lie beside the picture.
struct Frame {
  int64_t left = 0;
  int64_t top = 0;
  int64_t width = 0;
  int64_t height = 0;
};

inline constexpr int64_t kLongestFrame = 8192;
inline constexpr int64_t kMostFramePixels = int64_t{1} << 24;

/// Whether it is small enough for a screen, and its place one that sums can bear.
[[nodiscard]] bool isSound(const Frame& frame);

/// What of a sound frame lies on a picture of that size.
[[nodiscard]] Frame onPicture(const Frame& frame, const view::PictureSize& whole);

/// Red, green, blue and 255 for each pixel of a frame on the picture, row after row: what a
/// canvas takes. No rows but the frame's are drawn.
[[nodiscard]] std::string drawPiece(view::PictureRows& rows, const Frame& frame);

}  // namespace velka::serve
