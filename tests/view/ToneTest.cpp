#include <gtest/gtest.h>

#include <cmath>

#include "Tone.h"
#include "view/Pages.h"

namespace velka::view {
namespace {

using namespace viewtest;

// An inch squared of a screen at 180 dpi, `level` of 16 places of 4 x 4 inked, moved
// sideways and down as a whole.
Bytes screen(int level, int shift, int ink = 0) {
  ExpectedStream stream;
  stream.start(6);
  for (int band = 0; band < 7; ++band) {
    Bytes data;
    for (int x = 0; x < 180; ++x)
      for (int byte = 0; byte < 3; ++byte) {
        unsigned bits = 0;
        for (int dot = 0; dot < 8; ++dot) {
          const int place = ((x + shift) % 4) * 4 + (byte * 8 + dot + shift) % 4;
          if (place * 7 % 16 < level) bits |= 0x80U >> static_cast<unsigned>(dot);
        }
        data.push_back(static_cast<uint8_t>(bits));
      }
    stream.unit(10).down(band == 0 ? 0 : 48).block(ink, 39, 180, data);
  }
  return stream.formFeed().bytes();
}

std::array<ToneChange, 2> toneChange(const Bytes& first, const Bytes& second) {
  const decode::Page one = pageOf(first);
  const decode::Page other = pageOf(second);
  PaperView view = viewOf(one, 3600);
  view.grid.add(other);
  const auto tones = tonesOf({one, other}, view, kBothStandard);
  EXPECT_TRUE(tones.has_value());
  return changeOf(*tones);
}

double meanOf(const ToneChange& change) {
  return change.change / static_cast<double>(change.fields);
}

TEST(Tone, OneTintInOtherDotsIsTheSameToAPerson) {
  const Bytes first = screen(6, 0);
  const Bytes second = screen(6, 1);
  const decode::Page one = pageOf(first);
  const decode::Page other = pageOf(second);
  const auto dots = countChange({one, other}, viewOf(one, 3600), kBothStandard);
  ASSERT_TRUE(dots.has_value());
  EXPECT_GT(dots->inks[0].first, dots->inks[0].same);
  const auto change = toneChange(first, second);
  EXPECT_LT(meanOf(change[0]), 0.03);
  EXPECT_EQ(change[1].change, 0);
}

TEST(Tone, AnotherTintShowsByItsShareOfThePaper) {
  const auto change = toneChange(screen(6, 0), screen(8, 0));
  // The print is 168 of 180 rows long.
  EXPECT_NEAR(meanOf(change[0]), 2.0 / 16 * 168 / 180, 0.002);
  EXPECT_NEAR(change[0].first / static_cast<double>(change[0].fields), 6.0 / 16 * 168 / 180, 0.002);
  EXPECT_EQ(change[0].fields, 12U * 12U);
}

TEST(Tone, ThePlaceOfTheLargestChangeIsTold) {
  const Bytes none = ExpectedStream().start(6).formFeed().bytes();
  const Bytes spot = ExpectedStream()
                         .start(6)
                         .unit(10)
                         .down(180)
                         .toX(40)
                         .block(1, 39, 10, Bytes(30, 0xFF))
                         .formFeed()
                         .bytes();
  const auto change = toneChange(none, spot);
  EXPECT_EQ(change[0].largest, 0);
  EXPECT_NEAR(change[1].x, 17.6, 1.1);
  EXPECT_NEAR(change[1].y, 14.4, 1.1);
  const std::string text = textOf(change[1], true);
  EXPECT_NE(text.find("mm right, 14 mm down)"), std::string::npos) << text;
  EXPECT_EQ(textOf(change[0], true),
            "0.00 % and 0.00 % of the paper, fields differ by 0.00 % on average, 0.00 % at most");
}

uint32_t middleOf(const Bytes& first, const Bytes& second) {
  const decode::Page one = pageOf(first);
  const decode::Page other = pageOf(second);
  auto tones = tonesOf({one, other}, viewOf(one, 3600), kBothStandard);
  RowsDrawing drawing = toneRows(std::move(*tones), 90);
  const Picture picture = pictureOf(wholePicture(*std::get<Rows>(drawing)));
  EXPECT_EQ(picture.width, 90);
  EXPECT_EQ(picture.height, 90);
  return picture.pixels.at(size_t{40} * 90 + 40);
}

TEST(Tone, TheColoursTellWhichHasMore) {
  const uint32_t darker = middleOf(screen(14, 0), screen(6, 0));
  EXPECT_LT(darker >> 16U, 0x40U);
  EXPECT_NEAR(darker & 0xFFU, 0xEA, 2);  // paled by what both have
  // An eighth of the field is half of what shows in full.
  EXPECT_NEAR(middleOf(screen(2, 0), screen(0, 0)) >> 16U, 0x80, 0x18);
  EXPECT_EQ(middleOf(screen(16, 0), screen(0, 0)), kOnlyFirst);
  EXPECT_EQ(middleOf(screen(0, 0), screen(16, 0)), kOnlySecond);
  EXPECT_EQ(middleOf(screen(16, 0), screen(16, 0, 1)), kOtherInk);
  EXPECT_EQ(middleOf(screen(16, 0), screen(16, 0)), kPaleBlack);
  EXPECT_EQ(middleOf(screen(0, 0), screen(0, 0)), kWhite);
}

}  // namespace
}  // namespace velka::view
