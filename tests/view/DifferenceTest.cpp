#include <gtest/gtest.h>

#include "Difference.h"
#include "view/Pages.h"

namespace velka::view {
namespace {

using namespace viewtest;
using decode::Model;

constexpr std::array<Model, 2> kStandard{Model::Standard, Model::Standard};

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
  result.picture = pictureOf(comparePages({one, other}, view, kStandard, result.change));
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
  EXPECT_EQ(change[0].same, 1U);
  EXPECT_EQ(change[0].first, 1U);
  EXPECT_EQ(change[0].second, 0U);
  EXPECT_EQ(change[1].same, 0U);
  EXPECT_EQ(change[1].first, 1U);
  EXPECT_EQ(change[1].second, 2U);
  ASSERT_EQ(picture.width, 8);
  EXPECT_EQ(picture.pixels[0], kPaleBlack);
  EXPECT_EQ(picture.pixels[2], kOnlyFirst);
  EXPECT_EQ(picture.pixels[6], kOnlySecond);
}

TEST(Difference, OfAPageToItselfIsNone) {
  const Bytes page = ExpectedStream().block(1, 39, 1, {0xFF, 0, 0}).formFeed().bytes();
  const auto [change, picture] = compare(page, page, 40);
  EXPECT_TRUE(change[0].none());
  EXPECT_TRUE(change[1].none());
  EXPECT_EQ(change[1].same, 8U);
  EXPECT_EQ(picture.pixels.at(0), kPaleRed);
}

TEST(Difference, ADotCountsOnceHoweverManyCellsItHas) {
  const Bytes coarse = ExpectedStream().block(0, 32, 1, {0x80, 0, 0}).formFeed().bytes();
  const auto [change, picture] = compare(coarse, {0x0C}, 180);
  EXPECT_EQ(change[0].first, 1U);
  EXPECT_EQ(std::count(picture.pixels.begin(), picture.pixels.end(), kOnlyFirst), 3);
}

}  // namespace
}  // namespace velka::view
