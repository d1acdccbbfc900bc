// The page that tells which placement a printer wants, before anybody prints it.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "DotFont.h"
#include "PlacementPage.h"
#include "calibration/DrawnPdf.h"

namespace velka::calibration {
namespace {

TEST(PlacementPage, LiesWithinTheReachOfAHeadOf72MillimetresFromEitherEdgeOfARoll) {
  constexpr double kDot = 25.4 / 180;
  const DotDrawing page = placementPage();
  for (const DotBox& box : page.boxes) {
    EXPECT_GE(box.left * kDot, 80 - 72 - 4.0);
    EXPECT_LE((box.left + box.width) * kDot, 72);
    EXPECT_GE(box.top, 0);
    // What the original placement moves down must stay on the form, too.
    EXPECT_LT((box.top + box.height) * kDot + 4, 200);
  }
}

TEST(PlacementPage, UsesNoCharacterThatItsLettersLack) {
  DotDrawing unknown;
  unknown.addText("\t", 0, 0, 2);
  ASSERT_EQ(unknown.boxes.size(), 1U);
  const DotBox block = unknown.boxes.front();
  const DotDrawing page = placementPage();
  EXPECT_TRUE(std::ranges::none_of(page.boxes, [&](const DotBox& box) {
    return box.width * block.height == box.height * block.width;
  }));
}

TEST(PlacementPage, HoldsBothInksAndIsTheSameFileEachTime) {
  const DotDrawing page = placementPage();
  for (const Colour colour : {kBlack, kRed}) {
    EXPECT_TRUE(
        std::ranges::any_of(page.boxes, [&](const DotBox& box) { return box.colour == colour; }));
  }
  expectSamePdfs(page, placementPage());
}

TEST(DotDrawing, StrokesOfALetterCoverItsCellsAndNoOther) {
  for (const char letter : {'A', 'g', '=', '8'}) {
    DotDrawing drawing;
    drawing.addText({&letter, 1}, 0, 0, 1);
    for (int row = 0; row < kGlyphRows; ++row) {
      for (int column = 0; column < kGlyphColumns; ++column) {
        const bool covered = std::ranges::any_of(drawing.boxes, [&](const DotBox& box) {
          return column >= box.left && column < box.left + box.width && row >= box.top &&
                 row < box.top + box.height;
        });
        const unsigned rows = (*glyphOf(letter))[static_cast<size_t>(row)];
        EXPECT_EQ(covered, (rows >> (kGlyphColumns - 1 - column) & 1U) != 0) << letter;
      }
    }
  }
}

}  // namespace
}  // namespace velka::calibration
