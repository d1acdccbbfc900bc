#include "decode/RandomPages.h"

#include <algorithm>
#include <cstring>

#include "reference/ReferenceOptions.h"

namespace velka::decodetest {
namespace {

class Dice {
 public:
  explicit Dice(std::mt19937& random) : random_(random) {}

  bool oneIn(uint32_t n) { return below(n) == 0; }
  uint32_t below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }
  int16_t from(int low, int high) {
    return static_cast<int16_t>(low +
                                static_cast<int>(below(static_cast<uint32_t>(high - low + 1))));
  }

 private:
  std::mt19937& random_;
};

tagRGBQUAD colourAt(Dice& dice, uint8_t fixed) {
  const auto part = [&] { return dice.oneIn(2) ? fixed : static_cast<uint8_t>(dice.below(256)); };
  return {part(), part(), part(), 0};
}

void randomiseColour(Dice& dice, tagOEMCFG& options) {
  if (dice.oneIn(4)) options.OutputColorType = dice.from(1, 2);
  if (dice.oneIn(3)) options.ColorRangeUseFor = 1;
  if (dice.oneIn(3)) options.minColorOffset = colourAt(dice, 0);
  if (dice.oneIn(3)) options.maxColorOffset = colourAt(dice, 255);
}

void randomiseTone(Dice& dice, tagOEMCFG& options) {
  constexpr int16_t kScreens[] = {1, 2, 3, 4, 5, 6};
  if (dice.oneIn(3)) options.sDitherBlack = kScreens[dice.below(6)];
  if (dice.oneIn(3)) options.sDitherRed = kScreens[dice.below(6)];
  if (dice.oneIn(3)) options.BrightnessBlack = dice.from(-100, 100);
  if (dice.oneIn(3)) options.ContrastBlack = dice.from(-100, 100);
  if (dice.oneIn(3)) options.BrightnessRed = dice.from(-100, 100);
  if (dice.oneIn(3)) options.ContrastRed = dice.from(-100, 100);
  if (dice.oneIn(3)) options.LevelsBlack = dice.from(3, 300);
  if (dice.oneIn(3)) options.LevelsRed = dice.from(3, 300);
}

}  // namespace

reference::SourceBitmap patches(std::mt19937& random, uint32_t width, uint32_t height) {
  Dice dice(random);
  reference::SourceBitmap page;
  page.height = static_cast<int32_t>(height);
  const size_t stride = reference::paddedStride(width, 24);
  page.bytes.assign(stride * height, 0xFF);
  for (uint32_t patch = dice.below(8); patch > 0; --patch) {
    const uint32_t left = dice.below(width);
    const uint32_t top = dice.below(height);
    const uint32_t right = std::min(width, left + 1 + dice.below(40));
    const uint32_t bottom = std::min(height, top + 1 + dice.below(50));
    uint8_t colour[3] = {};
    if (dice.oneIn(2)) colour[2] = static_cast<uint8_t>(200 + dice.below(56));
    if (dice.oneIn(3)) colour[0] = colour[1] = static_cast<uint8_t>(dice.below(200));
    if (dice.oneIn(4)) {
      for (uint8_t& part : colour) part = static_cast<uint8_t>(dice.below(256));
    }
    for (uint32_t y = top; y < bottom; ++y)
      for (uint32_t x = left; x < right; ++x)
        std::memcpy(&page.bytes[y * stride + size_t{x} * 3], colour, 3);
  }
  return page;
}

tagOEMCFG randomOptions(std::mt19937& random) {
  Dice dice(random);
  tagOEMCFG options = reference::defaultOptions();
  randomiseColour(dice, options);
  randomiseTone(dice, options);
  if (dice.oneIn(3)) options.SplitBlackRed = 1;
  if (dice.oneIn(4)) options.sRotation = static_cast<int32_t>(1 + dice.below(3));
  if (dice.oneIn(4)) options.sHrzOffset = static_cast<int32_t>(dice.below(80));
  if (dice.oneIn(4)) options.sVtcOffset = static_cast<int32_t>(dice.below(80));
  if (dice.oneIn(2)) options.sHrzDir = 1;
  if (dice.oneIn(2)) options.sVtcDir = 1;
  return options;
}

}  // namespace velka::decodetest
