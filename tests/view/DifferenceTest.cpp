#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "Difference.h"
#include "StreamStats.h"
#include "view/Pages.h"

namespace velka::view {
namespace {

using namespace viewtest;
using decode::Model;

struct Compared {
  Change change;
  Picture picture;
};

Compared compare(const Bytes& first, const Bytes& second, int64_t width) {
  const decode::Page one = pageOf(first);
  const decode::Page other = pageOf(second);
  PaperView view = viewOf(one, width);
  view.grid.add(other);
  Compared result;
  result.picture = pictureOf(comparePages({one, other}, view, kBothStandard, result.change));
  return result;
}

TEST(Difference, CountsEachInksDotsAndPaintsThem) {
  const Bytes first = ExpectedStream()
                          .block(0, 39, 2, {0x80, 0, 0, 0x80, 0, 0})
                          .block(1, 39, 1, {0x80, 0, 0})
                          .formFeed()
                          .bytes();
  const Bytes second = ExpectedStream()
                           .block(0, 39, 1, {0x80, 0, 0})
                           .add({0x1B, '\\', 1, 0})
                           .block(1, 39, 2, {0x80, 0, 0, 0x80, 0, 0})
                           .formFeed()
                           .bytes();
  // The unit is 1/360 inch, so the second's red starts a half column late.
  const auto [change, picture] = compare(first, second, 80);
  EXPECT_EQ(change.inks[0].same, 1U);
  EXPECT_EQ(change.inks[0].first, 1U);
  EXPECT_EQ(change.inks[0].second, 0U);
  EXPECT_EQ(change.inks[1].same, 0U);
  EXPECT_EQ(change.inks[1].first, 1U);
  EXPECT_EQ(change.inks[1].second, 2U);
  ASSERT_EQ(picture.width, 8);
  EXPECT_EQ(picture.pixels[0], kPaleBlack);
  EXPECT_EQ(picture.pixels[2], kOnlyFirst);
  EXPECT_EQ(picture.pixels[6], kOnlySecond);
}

TEST(Difference, OfAPageToItselfIsNone) {
  const Bytes page = ExpectedStream().block(1, 39, 1, {0xFF, 0, 0}).formFeed().bytes();
  const auto [change, picture] = compare(page, page, 40);
  EXPECT_TRUE(change.inks[0].none());
  EXPECT_TRUE(change.inks[1].none());
  EXPECT_EQ(change.inks[1].same, 8U);
  EXPECT_EQ(picture.pixels.at(0), kPaleRed);
}

TEST(Difference, AnotherInkInTheSamePlaceHasAColourAndACountOfItsOwn) {
  const Bytes first = ExpectedStream()
                          .block(0, 39, 2, {0x80, 0, 0, 0x80, 0, 0})
                          .block(1, 39, 1, {0x80, 0, 0})
                          .formFeed()
                          .bytes();
  const Bytes second = ExpectedStream()
                           .block(1, 39, 1, {0x80, 0, 0})
                           .block(0, 39, 2, {0x80, 0, 0, 0x80, 0, 0})
                           .formFeed()
                           .bytes();
  const auto [change, picture] = compare(first, second, 60);
  EXPECT_EQ(change.otherInk, 2U);
  EXPECT_EQ(change.inks[0].same, 1U);
  EXPECT_EQ(change.inks[0].first, 1U);
  EXPECT_EQ(change.inks[1].second, 1U);
  EXPECT_EQ(picture.pixels, (std::vector<uint32_t>{kOtherInk, kPaleBlack, kOtherInk}));
}

TEST(Difference, EachStreamKeepsItsRowsHeight) {
  const Bytes column = {0x80, 0, 0};
  const Bytes coarse = ExpectedStream().block(0, 39, 1, column).formFeed().bytes();
  const Bytes fine = ExpectedStream()
                         .toX(1)
                         .block(0, 40, 1, column)
                         .unit(10)
                         .down(1)
                         .toX(1)
                         .block(0, 40, 1, column)
                         .formFeed()
                         .bytes();
  const auto [change, picture] = compare(coarse, fine, 70);
  EXPECT_EQ(change.inks[0].first, 1U);
  EXPECT_EQ(change.inks[0].second, 2U);
  EXPECT_EQ(picture.height, 2);
  EXPECT_EQ(std::count(picture.pixels.begin(), picture.pixels.end(), kOnlyFirst), 4);
  EXPECT_EQ(std::count(picture.pixels.begin(), picture.pixels.end(), kOnlySecond), 2);
}

TEST(Difference, CountsThePlacesThatTheNumbersOfAStreamTell) {
  // Two columns struck twice, beyond a form of 1/6 inch and beside the paper.
  const Bytes stream = ExpectedStream()
                           .start(1)
                           .block(0, 39, 2, Bytes(6, 0xFF))
                           .toX(90)
                           .block(0, 39, 2, Bytes(6, 0xFF))
                           .toX(90)
                           .block(0, 39, 2, Bytes(6, 0x81))
                           .unit(10)
                           .down(200)
                           .block(1, 39, 1, {0xFF, 0xFF, 1})
                           .formFeed()
                           .end()
                           .bytes();
  for (const int64_t width : {30, 1000, 9000}) {
    for (const bool fixed : {false, true}) {
      const decode::Page page = pageOf(stream);
      PaperView view = viewOf(page, 0);
      view.width = {width, fixed};
      Change change;
      (void)comparePages({page, page}, view, kBothStandard, change);
      const auto stats = decode::readStats(stream, Model::Standard, {}, {width, fixed});
      ASSERT_TRUE(stats.places.has_value());
      EXPECT_EQ(stats.places->at(0), change.inks[0].same) << width;
      EXPECT_EQ(stats.places->at(1), change.inks[1].same) << width;
    }
  }
}

TEST(Difference, ADotCountsOnceHoweverManyCellsItHas) {
  const Bytes coarse = ExpectedStream().block(0, 32, 1, {0x80, 0, 0}).formFeed().bytes();
  const auto [change, picture] = compare(coarse, {0x0C}, 180);
  EXPECT_EQ(change.inks[0].first, 1U);
  EXPECT_EQ(std::count(picture.pixels.begin(), picture.pixels.end(), kOnlyFirst), 3);
}

}  // namespace
}  // namespace velka::view
