#include <gtest/gtest.h>

#include "PageLayout.h"

namespace velka::app {
namespace {

constexpr Extent kA4 = {595, 842};
constexpr Extent kAcross = {842, 595};
constexpr Extent kRoll = {227, 567};

struct Point {
  double x;
  double y;
};

Point placed(const Placing& p, double x, double y) {
  return {p.xx * x + p.xy * y + p.x0, p.yx * x + p.yy * y + p.y0};
}

void expectAt(const Placing& p, Point page, Point paper) {
  const Point got = placed(p, page.x, page.y);
  EXPECT_NEAR(got.x, paper.x, 0.01);
  EXPECT_NEAR(got.y, paper.y, 0.01);
}

TEST(PageLayout, APageOfThePapersSizeLiesAsItIs) {
  const Placing p = placePage(kA4, {595.28, 841.89}, {});
  EXPECT_EQ(p.xx, 1);
  EXPECT_EQ(p.yy, 1);
  EXPECT_NEAR(p.x0, 0, 0.2);
}

TEST(PageLayout, ALargerPageFitsAndASmallerOneStaysInTheMiddle) {
  const Placing larger = placePage({1190, 1684}, kA4, {});
  expectAt(larger, {0, 0}, {0, 0});
  expectAt(larger, {1190, 1684}, {595, 842});
  expectAt(placePage({100, 200}, kA4, {}), {50, 100}, {297.5, 421});
}

TEST(PageLayout, AutoFillsThePaperWhereAPageIsLargerAndWithFidelityAlways) {
  const Wishes wishes = {Scaling::Auto, Turn::None, false};
  EXPECT_NEAR(placePage(kA4, kRoll, wishes).xx, 567.0 / 842, 1e-9);
  EXPECT_EQ(placePage({100, 200}, kRoll, wishes).xx, 1);
  EXPECT_NEAR(placePage({100, 200}, kRoll, {Scaling::Auto, Turn::None, true}).xx, 567.0 / 200,
              1e-9);
}

TEST(PageLayout, FitFillAndNoneAreWhatTheirNamesSay) {
  EXPECT_NEAR(placePage({100, 200}, kRoll, {Scaling::Fit, Turn::None, false}).xx, 2.27, 1e-9);
  EXPECT_NEAR(placePage({100, 200}, kRoll, {Scaling::Fill, Turn::None, false}).xx, 2.835, 1e-9);
  EXPECT_EQ(placePage(kA4, kRoll, {Scaling::None, Turn::None, false}).xx, 1);
}

TEST(PageLayout, APageThatLiesTheOtherWayIsTurnedAnticlockwise) {
  const Placing p = placePage(kAcross, kA4, {});
  expectAt(p, {0, 0}, {0, 842});
  expectAt(p, {842, 0}, {0, 0});
  expectAt(p, {842, 595}, {595, 0});
}

TEST(PageLayout, AStatedOrientationTurnsThePageAsItSays) {
  expectAt(placePage(kAcross, kA4, {Scaling::None, Turn::Portrait, false}), {421, 297.5},
           {297.5, 421});
  expectAt(placePage(kAcross, kA4, {Scaling::None, Turn::Landscape, false}), {0, 0}, {0, 842});
  expectAt(placePage(kAcross, kA4, {Scaling::None, Turn::ReverseLandscape, false}), {0, 0},
           {595, 0});
  expectAt(placePage(kA4, kA4, {Scaling::None, Turn::ReversePortrait, false}), {0, 0}, {595, 842});
}

TEST(PageLayout, AnEmptyPageOrPaperIsNoDivisionByZero) {
  EXPECT_EQ(placePage({0, 10}, kA4, {}).xx, 1);
  EXPECT_EQ(placePage(kA4, {10, 0}, {}).xx, 1);
}

TEST(ChosenPages, AreEachOnceInOrderAndWithinTheDocument) {
  EXPECT_EQ(chosenPages({}, 3), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(chosenPages({{4, 9}, {1, 2}, {2, 4}}, 5), (std::vector<int>{1, 2, 3, 4, 5}));
  EXPECT_TRUE(chosenPages({{7, 9}}, 5).empty());
}

}  // namespace
}  // namespace velka::app
