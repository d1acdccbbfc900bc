#include "Pieces.h"

#include <algorithm>
#include <span>
#include <vector>

namespace velka::serve {

bool isSound(const Frame& frame) {
  constexpr int64_t kFarthest = view::kLongestRowsSide;
  const auto near = [](int64_t place) { return place >= -kFarthest && place <= kFarthest; };
  return near(frame.left) && near(frame.top) && frame.width > 0 && frame.height > 0 &&
         frame.width <= kLongestFrame && frame.height <= kLongestFrame &&
         frame.width * frame.height <= kMostFramePixels;
}

Frame onPicture(const Frame& frame, const view::PictureSize& whole) {
  const int64_t left = std::clamp<int64_t>(frame.left, 0, whole.width);
  const int64_t top = std::clamp<int64_t>(frame.top, 0, whole.height);
  return {left, top, std::clamp(frame.left + frame.width, left, whole.width) - left,
          std::clamp(frame.top + frame.height, top, whole.height) - top};
}

std::string drawPiece(view::PictureRows& rows, const Frame& frame) {
  constexpr size_t kBytes = 4;
  std::string bytes(kBytes * static_cast<size_t>(frame.width * frame.height), '\0');
  if (bytes.empty()) return bytes;
  const int64_t strip = view::rowsInStrip(rows.size().width);
  std::vector<uint32_t> pixels;
  char* to = bytes.data();
  for (int64_t top = frame.top; top < frame.top + frame.height; top += strip) {
    const int64_t count = std::min(strip, frame.top + frame.height - top);
    pixels.resize(static_cast<size_t>(count) * rows.width());
    rows.draw(top, pixels);
    for (int64_t row = 0; row < count; ++row) {
      const auto* from = pixels.data() + static_cast<size_t>(row) * rows.width() + frame.left;
      for (int64_t x = 0; x < frame.width; ++x, to += kBytes) {
        const uint32_t rgb = from[x];
        to[0] = static_cast<char>(rgb >> 16U);
        to[1] = static_cast<char>(rgb >> 8U);
        to[2] = static_cast<char>(rgb);
        to[3] = '\xFF';
      }
    }
  }
  return bytes;
}

}  // namespace velka::serve
