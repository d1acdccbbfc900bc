// What holds for all calibration pages.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "Pages.h"
#include "calibration/DrawnPdf.h"

namespace velka::calibration {
namespace {

constexpr std::array<const char*, 5> kNames{"placement", "registration", "position", "tones",
                                            "colours"};

DotDrawing drawn(const char* name, const PageSettings& settings = {}) {
  const Page* page = pageNamed(name);
  EXPECT_NE(page, nullptr) << name;
  if (page == nullptr) return {};
  const Drawn result = page->draw(settings);
  const auto* drawing = std::get_if<DotDrawing>(&result);
  EXPECT_NE(drawing, nullptr) << name;
  return drawing != nullptr ? *drawing : DotDrawing{};
}

// Whether a box is the block that stands for an unknown letter, in text of that size.
bool isBlock(const DotBox& box, int cell) {
  DotDrawing unknown;
  unknown.addText("\t", 0, 0, cell);
  const DotBox& block = unknown.boxes.front();
  return box.width == block.width && box.height == block.height;
}

TEST(CalibrationPages, LieWithinTheReachOfAHeadOf72MillimetresFromEitherEdgeOfARoll) {
  for (const char* name : kNames) {
    const DotDrawing page = drawn(name);
    const double dot = 25.4 / page.dpi;
    EXPECT_FALSE(page.boxes.empty());
    for (const DotBox& box : page.boxes) {
      EXPECT_GE(box.left * dot, 80 - 72 - 4.5) << name;
      EXPECT_LE((box.left + box.width) * dot, 72) << name;
      EXPECT_GE(box.top * dot, 2.4) << name << ": above the reach of the Orlo head's black";
      EXPECT_LT((box.top + box.height) * dot + 4, 200) << name;
    }
  }
}

TEST(CalibrationPages, UseNoCharacterThatTheirLettersLack) {
  for (const char* name : kNames) {
    const DotDrawing page = drawn(name);
    const int scale = page.dpi / 180;
    EXPECT_TRUE(std::ranges::none_of(page.boxes, [&](const DotBox& box) {
      return isBlock(box, 2 * scale) || isBlock(box, 3 * scale);
    })) << name;
  }
}

TEST(CalibrationPages, AreTheSameFileEachTime) {
  for (const char* name : kNames) {
    expectSamePdfs(drawn(name), drawn(name));
  }
}

TEST(CalibrationPages, AreAsLargeAsThePaperThatTheyAreMadeFor) {
  PageSettings settings;
  settings.pageSize = "A4";
  settings.width = 595;
  settings.length = 842;
  for (const char* name : kNames) {
    const bool fixed = !pageNamed(name)->hasSettings;
    EXPECT_EQ(drawn(name, settings).width, fixed ? kRollWidth : 595) << name;
    EXPECT_EQ(drawn(name, settings).height, fixed ? kRollLength : 842) << name;
  }
}

TEST(CalibrationPages, OnPaperThatIsTooSmallAreRefusedWithItsName) {
  PageSettings settings;
  settings.pageSize = "57x200mm";
  settings.width = 57 * kPointsPerMillimetre;
  for (const char* name : {"registration", "position", "tones", "colours"}) {
    const Drawn result = pageNamed(name)->draw(settings);
    const auto* why = std::get_if<std::string>(&result);
    ASSERT_NE(why, nullptr) << name;
    EXPECT_NE(why->find("57x200mm is too small"), std::string::npos) << *why;
  }
}

TEST(CalibrationPages, AreListedInWords) {
  EXPECT_EQ(pageNames(), "placement, registration, position, tones, colours");
  EXPECT_EQ(pageNamed("placements"), nullptr);
}

TEST(PageWriter, WritesInDotsOf180AnInchWhateverThePagesDotsAre) {
  DotDrawing coarse;
  DotDrawing fine;
  fine.dpi = 360;
  for (DotDrawing* page : {&coarse, &fine}) {
    PageWriter writer(*page);
    writer.title("A");
    writer.line("B");
    writer.box(1, 2, 3, 4, kRed);
  }
  ASSERT_EQ(coarse.boxes.size(), fine.boxes.size());
  for (size_t i = 0; i < coarse.boxes.size(); ++i) {
    EXPECT_EQ(2 * coarse.boxes[i].left, fine.boxes[i].left);
    EXPECT_EQ(2 * coarse.boxes[i].top, fine.boxes[i].top);
    EXPECT_EQ(2 * coarse.boxes[i].width, fine.boxes[i].width);
    EXPECT_EQ(2 * coarse.boxes[i].height, fine.boxes[i].height);
  }
  EXPECT_EQ(fine.boxes.back().colour, kRed);
}

TEST(PageWriter, LaysALabelAroundItsMiddle) {
  DotDrawing page;
  PageWriter writer(page);
  writer.label("88", 100, 0);
  EXPECT_EQ(widthOf("88"), 22);
  double left = 1000;
  double right = 0;
  for (const DotBox& box : page.boxes) {
    left = std::min(left, box.left);
    right = std::max(right, box.left + box.width);
  }
  EXPECT_EQ(left + right, 200);
}

}  // namespace
}  // namespace velka::calibration
