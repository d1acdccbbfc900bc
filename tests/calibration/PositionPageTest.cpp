// The scales of the position page against what the offsets do.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "PagePlacement.h"
#include "PositionPage.h"

namespace velka::calibration {
namespace {

const DotDrawing& positions() {
  static const Drawn drawn = positionPage({});
  return std::get<DotDrawing>(drawn);
}

PageOffset offsetOf(int32_t across, int32_t acrossSense, int32_t down, int32_t downSense) {
  tagOEMCFG options = {};
  options.sHrzOffset = across;
  options.sHrzDir = acrossSense;
  options.sVtcOffset = down;
  options.sVtcDir = downSense;
  _DEVMODE mode = {};
  mode.dmOrientation = 1;
  mode.dmPrintQuality = 180;
  mode.dmYResolution = 180;
  return printOffset(options, mode);
}

TEST(PositionPage, HasItsLinesWithinHalfADotOfTheirMillimetres) {
  for (int tenths = -200; tenths <= 200; tenths += 5) {
    const double exact = (10.0 * kReference + tenths) * 180 / 254;
    EXPECT_NEAR(lineAt(tenths), exact, 1.0) << tenths;
  }
  EXPECT_NEAR(lineAt(0), 30 * 180 / 25.4, 0.5);
}

// A print too far left by what the option moves it: the line of that number on the right
// is then where that of 0 should be, and setting it brings the page back.
TEST(PositionPage, ShowsAtTheReferenceTheNumberThatBringsThePageBack) {
  for (int tenths = 0; tenths <= 200; tenths += 5) {
    const PageOffset left = offsetOf(tenths, 1, 0, 0);
    const PageOffset right = offsetOf(tenths, 0, 0, 0);
    EXPECT_EQ(lineAt(tenths) + left.x, lineAt(0)) << tenths;
    EXPECT_EQ(lineAt(-tenths) + right.x, lineAt(0)) << tenths;
    EXPECT_EQ(left.x + right.x, 0);
    EXPECT_EQ(lineAt(tenths) + offsetOf(0, 0, tenths, 1).y, lineAt(0)) << tenths;
    EXPECT_EQ(lineAt(-tenths) + offsetOf(0, 0, tenths, 0).y, lineAt(0)) << tenths;
  }
}

TEST(PositionPage, HasALineForEachChoiceOfTheOffsetsOnBothScales) {
  const PositionFields fields = positionFields();
  for (int tenths = -200; tenths <= 200; tenths += std::abs(tenths) == 100 && tenths > 0 ? 10 : 5) {
    if (std::abs(tenths) > 100 && tenths % 10 != 0) continue;
    const auto isLine = [&](const DotBox& box, bool down) {
      return down ? box.left == fields.downFoot && box.top == lineAt(tenths) && box.height == 1
                  : box.top + box.height == fields.acrossFoot && box.left == lineAt(tenths) &&
                        box.width == 1;
    };
    for (const bool down : {false, true}) {
      EXPECT_EQ(std::ranges::count_if(positions().boxes,
                                      [&](const DotBox& box) { return isLine(box, down); }),
                1)
          << tenths;
    }
  }
}

// Red would move black down on printers that add up the paper's moves.
TEST(PositionPage, IsBlackAlone) {
  EXPECT_TRUE(std::ranges::all_of(positions().boxes,
                                  [](const DotBox& box) { return box.colour == kBlack; }));
}

}  // namespace
}  // namespace velka::calibration
