#include "orlo/LiteralPipeline.h"

#include <algorithm>

#include "reference/ReferenceHalftone.h"
#include "reference/ReferenceTone.h"

namespace velka::orlotest {

namespace {

class Separator {
 public:
  Separator(const Bitmap& page, const _COLORCFG_ORLO& config, int verticalDpi, int feedMode)
      : page_(page),
        config_(config),
        k_(verticalDpi == 360 ? 2 : 1),
        feedMode_(feedMode),
        blackTone_(reference::makeInkTone(config.BrightnessBlack, config.ContrastBlack,
                                          config.LevelsBlack)),
        redTone_(
            reference::makeInkTone(config.BrightnessRed, config.ContrastRed, config.LevelsRed)) {
    const size_t size = static_cast<size_t>(page.width) * static_cast<size_t>(page.height);
    planes_.black.bytes.assign(size, 255);
    planes_.red.bytes.assign(size, 255);
  }

  LiteralPlanes run() {
    for (int y = 0; y < page_.height; ++y) {
      if (isBlank(y)) continue;
      if (y == page_.height - 1 && !(planes_.black.hasData && planes_.red.hasData)) break;
      for (int x = 0; x < page_.width; ++x) pixel(x, y);
    }
    halftone(planes_.black, config_.sDitherBlack);
    halftone(planes_.red, config_.sDitherRed);
    return planes_;
  }

 private:
  [[nodiscard]] const uint8_t* row(int y) const {
    return page_.bytes.data() + static_cast<size_t>(y) * page_.stride;
  }

  [[nodiscard]] bool isBlank(int y) const {
    const uint8_t* bytes = row(y);
    if (bytes[0] != 255 || bytes[1] != 255 || bytes[2] != 255) return false;
    for (size_t i = 0; i + 3 < page_.stride; ++i)
      if (bytes[i] != bytes[i + 3]) return false;
    return true;
  }

  void pixel(int x, int y) {
    const uint8_t* bytes = row(y) + 3 * static_cast<size_t>(x);
    const int b = bytes[0];
    const int g = bytes[1];
    const int r = bytes[2];
    if (b >= 240 && g >= 240 && r >= 240) return;
    if (b >= 200 && g >= 200 && r > 249) return;
    bool red = false;
    if (config_.OutputColorType == 1) {
      planes_.red.hasData = false;
    } else if (config_.OutputColorType == 2) {
      planes_.black.hasData = false;
      red = true;
    } else if (config_.OutputColorType == 3) {
      const bool in = inRange(b, g, r);
      const bool grey = inNine(b - g) && inNine(b - r) && inNine(r - g);
      if (config_.ColorRangeUseFor == 1) {
        red = !in && !grey;
      } else if (config_.ColorRangeUseFor == 2) {
        red = in && !grey;
      } else {
        return;
      }
    } else {
      return;
    }
    const reference::Pixel p = {bytes[0], bytes[1], bytes[2]};
    const bool key = config_.OutputColorType == 3 && b == config_.solidColor.rgbBlue &&
                     g == config_.solidColor.rgbGreen && r == config_.solidColor.rgbRed;
    const uint8_t tone = key ? uint8_t{0} : reference::toneOfPixel(red ? redTone_ : blackTone_, p);
    if (red) {
      if (feedMode_ == 2 || y >= 28 * k_) store(planes_.red, tone, x, y);
    } else {
      if (!(feedMode_ == 2 && y < 16 * k_)) store(planes_.black, tone, x, y);
    }
  }

  [[nodiscard]] bool inRange(int b, int g, int r) const {
    const tagRGBQUAD& low = config_.minColorOffset;
    const tagRGBQUAD& high = config_.maxColorOffset;
    if (low.rgbBlue > high.rgbBlue || low.rgbGreen > high.rgbGreen || low.rgbRed > high.rgbRed)
      return false;
    return b >= low.rgbBlue && b <= high.rgbBlue && g >= low.rgbGreen && g <= high.rgbGreen &&
           r >= low.rgbRed && r <= high.rgbRed;
  }

  static bool inNine(int difference) { return difference >= -9 && difference <= 9; }

  void store(LiteralPlane& plane, uint8_t tone, int x, int y) const {
    plane.hasData = true;
    plane.bytes.at(static_cast<size_t>(y) * static_cast<size_t>(page_.width) +
                   static_cast<size_t>(x)) = tone;
    if (plane.left == -1 || x < plane.left) plane.left = x;
    if (plane.top == -1 || y < plane.top) plane.top = y;
    if (x > plane.right) plane.right = x;
    if (y > plane.bottom) plane.bottom = y;
  }

  void halftone(LiteralPlane& plane, int mode) const {
    if (!plane.hasData) return;
    const auto width = static_cast<size_t>(page_.width);
    plane.bytes = reference::dither(mode, plane.bytes, static_cast<size_t>(page_.height), width,
                                    width, 0, 128);
  }

  const Bitmap& page_;
  const _COLORCFG_ORLO& config_;
  int k_;
  int feedMode_;
  reference::InkTone blackTone_;
  reference::InkTone redTone_;
  LiteralPlanes planes_;
};

}  // namespace

Bitmap::Bitmap(int w, int h, size_t padding)
    : width(w),
      height(h),
      stride(3 * static_cast<size_t>(w) + padding),
      bytes(stride * static_cast<size_t>(h), 255) {}

void Bitmap::set(int x, int y, uint8_t b, uint8_t g, uint8_t r) {
  const size_t at = static_cast<size_t>(y) * stride + 3 * static_cast<size_t>(x);
  bytes.at(at) = b;
  bytes.at(at + 1) = g;
  bytes.at(at + 2) = r;
}

LiteralPlanes separateLiterally(const Bitmap& page, const _COLORCFG_ORLO& config, int verticalDpi,
                                int feedMode) {
  return Separator(page, config, verticalDpi, feedMode).run();
}

_COLORCFG_ORLO configOf(const tagOEMCFG& options) {
  _COLORCFG_ORLO config{};
  config.OutputColorType = static_cast<uint16_t>(options.OutputColorType);
  config.ColorRangeUseFor = static_cast<uint16_t>(options.ColorRangeUseFor);
  config.minColorOffset = options.minColorOffset;
  config.maxColorOffset = options.maxColorOffset;
  config.solidColor = options.solidColor;
  config.BrightnessRed = options.BrightnessRed;
  config.ContrastRed = options.ContrastRed;
  config.LevelsRed = options.LevelsRed;
  config.sDitherRed = options.sDitherRed;
  config.BrightnessBlack = options.BrightnessBlack;
  config.ContrastBlack = options.ContrastBlack;
  config.LevelsBlack = options.LevelsBlack;
  config.sDitherBlack = options.sDitherBlack;
  return config;
}

_COLORCFG_ORLO plainConfig() {
  _COLORCFG_ORLO config{};
  config.OutputColorType = 3;
  config.ColorRangeUseFor = 2;
  config.minColorOffset = {0, 0, 130, 0};
  config.maxColorOffset = {255, 255, 255, 0};
  config.solidColor = {0, 0, 255, 0};
  config.LevelsRed = 100;
  config.LevelsBlack = 100;
  config.sDitherRed = 1;
  config.sDitherBlack = 1;
  return config;
}

}  // namespace velka::orlotest
