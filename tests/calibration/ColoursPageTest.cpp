// The chart of colours against the filter's rules, said once more.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "ColoursPage.h"

namespace velka::calibration {
namespace {

struct Range {
  int low[3];
  int high[3];
};

// Red, green, blue: whether a page's colour prints red where the range is for red.
bool printsRed(Colour colour, const Range& range) {
  const int parts[3] = {colour.red, colour.green, colour.blue};
  const bool light = parts[0] > 239 && parts[1] > 239 && parts[2] > 239;
  const bool tinted = parts[0] > 249 && parts[1] > 199 && parts[2] > 199;
  const auto [least, most] = std::minmax({parts[0], parts[1], parts[2]});
  if (light || tinted || most - least <= 9) return false;
  for (int i = 0; i < 3; ++i) {
    if (parts[i] < range.low[i] || parts[i] > range.high[i]) return false;
  }
  return true;
}

tagOEMCFG optionsOf(const Range& range) {
  tagOEMCFG options = defaultOemdev[0];
  const auto byte = [](int part) { return static_cast<uint8_t>(part); };
  options.minColorOffset = {byte(range.low[2]), byte(range.low[1]), byte(range.low[0]), 0};
  options.maxColorOffset = {byte(range.high[2]), byte(range.high[1]), byte(range.high[0]), 0};
  return options;
}

const std::vector<Range>& ranges() {
  static const std::vector<Range> all{{{130, 0, 0}, {255, 255, 255}},
                                      {{150, 0, 0}, {255, 100, 50}},
                                      {{90, 20, 0}, {240, 200, 255}},
                                      {{200, 0, 0}, {100, 255, 255}}};
  return all;
}

TEST(ColoursPage, KnowsWhichPatchesPrintRed) {
  for (const Range& range : ranges()) {
    const std::vector<ColourRow> rows = colourRows(optionsOf(range));
    ASSERT_EQ(rows.size(), 3U + 9U);
    for (const ColourRow& row : rows) {
      for (const ColourPatch& patch : row.patches) {
        EXPECT_EQ(patch.ink == Ink::Red, printsRed(patch.box.colour, range))
            << int(patch.box.colour.red) << " " << int(patch.box.colour.green) << " "
            << int(patch.box.colour.blue);
      }
    }
  }
}

// First and last number of the red patches of a row.
std::pair<std::string, std::string> redNumbers(const ColourRow& row) {
  std::pair<std::string, std::string> numbers;
  for (const ColourPatch& patch : row.patches) {
    if (patch.ink != Ink::Red) continue;
    if (numbers.first.empty()) numbers.first = patch.number;
    numbers.second = patch.number;
  }
  return numbers;
}

TEST(ColoursPage, HasInTheRowOfABoundItsNumberAtTheEndOfTheReds) {
  for (const int bound : {100, 130, 180}) {
    const auto rows = colourRows(optionsOf({{bound, 0, 0}, {255, 255, 255}}));
    EXPECT_EQ(rows[0].option, "RedMinValue");
    EXPECT_EQ(redNumbers(rows[0]).first, std::to_string(bound));
  }
  for (const int bound : {0, 75, 200}) {
    const auto rows = colourRows(optionsOf({{130, 0, 0}, {255, bound, 255}}));
    EXPECT_EQ(rows[1].option, "GreenMaxValue");
    EXPECT_EQ(redNumbers(rows[1]).second, std::to_string(bound));
  }
  for (const int bound : {25, 100, 225}) {
    const auto rows = colourRows(optionsOf({{130, 0, 0}, {255, 255, bound}}));
    EXPECT_EQ(rows[2].option, "BlueMaxValue");
    EXPECT_EQ(redNumbers(rows[2]).second, std::to_string(bound));
  }
}

TEST(ColoursPage, GoesThroughTheHuesFromRedAndFromLightToDark) {
  const auto rows = colourRows(defaultOemdev[0]);
  const ColourRow& middle = rows[3 + 4];  // half as light as white
  const std::vector<Colour> wanted{{128, 128, 128}, {255, 0, 0}, {255, 128, 0}, {255, 255, 0},
                                   {128, 255, 0},   {0, 255, 0}, {0, 255, 128}, {0, 255, 255},
                                   {0, 128, 255},   {0, 0, 255}, {128, 0, 255}, {255, 0, 255},
                                   {255, 0, 128}};
  ASSERT_EQ(middle.patches.size(), wanted.size());
  for (size_t i = 0; i < wanted.size(); ++i) {
    EXPECT_EQ(middle.patches[i].box.colour, wanted[i]) << i;
  }
  for (size_t i = 4; i < rows.size(); ++i) {
    EXPECT_LT(rows[i].patches[0].box.colour.red, rows[i - 1].patches[0].box.colour.red);
    EXPECT_GT(rows[i].top, rows[i - 1].top);
  }
}

const DotDrawing pageOf(const Range& range) {
  PageSettings settings;
  settings.options = optionsOf(range);
  return std::get<DotDrawing>(coloursPage(settings));
}

bool hasLineAt(const DotDrawing& page, double x, double y) {
  return std::ranges::any_of(page.boxes, [&](const DotBox& box) {
    const bool thin = box.width == 2 || box.height == 2;
    return thin && box.colour == kBlack && x >= box.left && x < box.left + box.width &&
           y >= box.top && y < box.top + box.height;
  });
}

// In the gap between two patches there is a line where one is red and the other not.
TEST(ColoursPage, FramesTheRedPatchesAndNoOthers) {
  for (const Range& range : ranges()) {
    const DotDrawing page = pageOf(range);
    for (const ColourRow& row : colourRows(optionsOf(range))) {
      for (size_t i = 1; i < row.patches.size(); ++i) {
        const ColourPatch& left = row.patches[i - 1];
        const ColourPatch& right = row.patches[i];
        const double x = right.box.left - 3;
        const double y = right.box.top + right.box.height / 2;
        EXPECT_EQ(hasLineAt(page, x, y), (left.ink == Ink::Red) != (right.ink == Ink::Red));
      }
    }
  }
}

TEST(ColoursPage, WithARangeForBlackFramesWhatIsOutsideIt) {
  tagOEMCFG options = optionsOf(ranges()[0]);
  options.ColorRangeUseFor = 1;
  const ColourRow row = colourRows(options)[0];
  EXPECT_EQ(redNumbers(row), (std::pair<std::string, std::string>("90", "120")));
  PageSettings settings;
  settings.options = options;
  const Drawn drawn = coloursPage(settings);
  const DotBox& box = row.patches.front().box;
  EXPECT_TRUE(hasLineAt(std::get<DotDrawing>(drawn), box.left - 3, box.top + 5));
}

TEST(ColoursPage, FramesRedsAboveAndBelowToo) {
  const Range range{{150, 0, 0}, {255, 100, 50}};
  const DotDrawing page = pageOf(range);
  const auto rows = colourRows(optionsOf(range));
  int lines = 0;
  for (size_t i = 4; i < rows.size(); ++i) {
    for (size_t column = 0; column < rows[i].patches.size(); ++column) {
      const ColourPatch& upper = rows[i - 1].patches[column];
      const ColourPatch& lower = rows[i].patches[column];
      const bool wanted = (upper.ink == Ink::Red) != (lower.ink == Ink::Red);
      const DotBox& box = lower.box;
      EXPECT_EQ(hasLineAt(page, box.left + box.width / 2, box.top - 3), wanted);
      lines += wanted ? 1 : 0;
    }
  }
  EXPECT_GT(lines, 0);
}

}  // namespace
}  // namespace velka::calibration
