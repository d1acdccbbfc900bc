#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "ContactSheet.h"
#include "PagePicture.h"
#include "Pins.h"
#include "view/Pages.h"

namespace velka::view {
namespace {

using namespace viewtest;
using decode::Model;
using Pixels = std::vector<uint32_t>;

// Black over red in the first column, red alone in the second; 1/180 inch each.
Bytes twoDots() {
  return ExpectedStream()
      .block(1, 39, 2, {0x80, 0, 0, 0x80, 0, 0})
      .add({0x0D})
      .block(0, 39, 1, {0x80, 0, 0})
      .formFeed()
      .bytes();
}

TEST(Picture, HoldsAPixelADotAtTheStreamsResolution) {
  const Bytes stream = twoDots();
  const decode::Page page = pageOf(stream);
  uint64_t outside = 9;
  const Picture picture = pictureOf(drawPage(page, viewOf(page, 60), outside));
  EXPECT_EQ(picture.dpi, 180);
  EXPECT_EQ(picture.width, 3);
  EXPECT_EQ(picture.height, 1);
  EXPECT_EQ(picture.pixels, (Pixels{kBlack, kRed, kWhite}));
  EXPECT_EQ(outside, 0U);
}

TEST(Picture, IsAsLongAsTheFormAndAsWideAsThePaper) {
  const Bytes stream = ExpectedStream().start(6).block(0, 39, 1, {0x80, 0, 0}).formFeed().bytes();
  const decode::Page page = pageOf(stream);
  uint64_t outside = 0;
  const Picture picture = pictureOf(drawPage(page, viewOf(page, 1800), outside));
  EXPECT_EQ(picture.width, 90);
  EXPECT_EQ(picture.height, 180);
}

TEST(Picture, GrowsBeyondTheFormWithWhatIsPrintedThere) {
  const Bytes stream =
      ExpectedStream().start(1).unit(10).down(100).block(0, 39, 1, {0x80, 0, 0}).formFeed().bytes();
  const decode::Page page = pageOf(stream);
  EXPECT_EQ(decode::paperOf(page, Model::Standard, viewOf(page, 60).grid, {}).length, 1020);
}

TEST(Picture, OfAPageWithoutAnythingIsOneWhitePixel) {
  uint64_t outside = 0;
  const Picture picture = pictureOf(drawPage({}, {}, outside));
  EXPECT_EQ(picture.pixels, Pixels{kWhite});
}

TEST(Picture, TakesTheResolutionOrTheScaleAskedFor) {
  const Bytes stream = twoDots();
  const decode::Page page = pageOf(stream);
  PaperView view = viewOf(page, 40);
  uint64_t outside = 0;
  view.scale = 2;
  const Picture twice = pictureOf(drawPage(page, view, outside));
  EXPECT_EQ(twice.dpi, 360);
  EXPECT_EQ(twice.pixels, (Pixels{kBlack, kBlack, kRed, kRed, kBlack, kBlack, kRed, kRed}));
  view.dpi = 540;
  EXPECT_EQ(pictureOf(drawPage(page, view, outside)).width, 6);
}

TEST(Picture, MadeSmallerKeepsItsDotsAsShades) {
  Picture picture{4, 4, 180, Pixels(16, kWhite)};
  for (const size_t dot : {0U, 5U, 10U, 15U}) picture.pixels[dot] = kBlack;
  const Picture half = pictureOf(resample(picture, 90));
  ASSERT_EQ(half.pixels.size(), 4U);
  // Four of sixteen pixels are black.
  uint32_t sum = 0;
  for (const uint32_t pixel : half.pixels) sum += pixel & 0xFFU;
  EXPECT_NEAR(sum, 3 * 255, 40);
}

TEST(Picture, TooLargeOnesAreRefusedWithTheirSize) {
  const Drawing wide = blankPicture(40000, 10, 180);
  ASSERT_TRUE(std::holds_alternative<std::string>(wide));
  EXPECT_NE(std::get<std::string>(wide).find("40000 x 10 pixels"), std::string::npos);
  EXPECT_TRUE(std::holds_alternative<std::string>(blankPicture(32767, 32767, 180)));
  EXPECT_TRUE(std::holds_alternative<std::string>(blankPicture(1e300, 1e300, 180)));
  EXPECT_TRUE(std::holds_alternative<Picture>(blankPicture(100, 100, 180)));
}

TEST(Pins, AreRoundAndOfTheirSize) {
  const Bytes stream =
      ExpectedStream().unit(10).down(100).toX(20).block(0, 39, 1, {0x80, 0, 0}).formFeed().bytes();
  const decode::Page page = pageOf(stream);
  PaperView view = viewOf(page, 2400);
  view.pins = true;
  view.dpi = 2540;  // a hundred pixels a millimetre
  uint64_t outside = 0;
  const Picture picture = pictureOf(drawPage(page, view, outside));
  double ink = 0;
  for (const uint32_t pixel : picture.pixels) ink += (255 - (pixel & 0xFFU)) / 255.0;
  const double radius = kPinDiameter * 100 / 2;
  // The lower half lies beyond the paper's end, half a dot pitch below the middle.
  const double below = 20.0 / 2 / 3600 * 2540;
  EXPECT_NEAR(ink, std::numbers::pi * radius * radius / 2 + 2 * radius * below, 12);
  EXPECT_EQ(outside, 0U);
}

TEST(Pins, OfNeighbouringDotsOverlap) {
  // Two columns of 24 dots: no white is left between their middles.
  const Bytes stream =
      ExpectedStream().block(1, 39, 2, {255, 255, 255, 255, 255, 255}).formFeed().bytes();
  const decode::Page page = pageOf(stream);
  PaperView view = viewOf(page, 40);
  view.pins = true;
  view.dpi = 720;
  uint64_t outside = 0;
  const Picture picture = pictureOf(drawPage(page, view, outside));
  ASSERT_EQ(picture.width, 8);
  for (int32_t y = 2; y + 2 < picture.height; ++y) {
    for (int32_t x = 2; x < 6; ++x) {
      EXPECT_EQ(picture.pixels[static_cast<size_t>(y * 8 + x)], kRed) << x << ", " << y;
    }
  }
}

TEST(Pins, SolidInkStaysSolidAtAnyResolution) {
  // A square inch of ink at 180 x 180 dpi: eight bands of 24 rows.
  ExpectedStream stream;
  for (int band = 0; band < 8; ++band) {
    const Bytes data(size_t{180} * 3, 0xFF);
    stream.unit(10).down(band == 0 ? 0 : 48).block(0, 39, 180, data);
  }
  const Bytes bytes = stream.formFeed().bytes();
  const decode::Page page = pageOf(bytes);
  PaperView view = viewOf(page, 3600);
  view.pins = true;
  for (const double dpi : {20.0, 60.0, 90.0, 100.0, 150.0, 180.0, 360.0, 500.0, 720.0}) {
    view.dpi = dpi;
    uint64_t outside = 0;
    const Picture picture = pictureOf(drawPage(page, view, outside));
    ASSERT_EQ(picture.width, static_cast<int32_t>(dpi));
    const auto edge = static_cast<int32_t>(std::ceil(dpi / 90));
    for (int32_t y = edge; y < picture.height - edge; ++y)
      for (int32_t x = edge; x < picture.width - edge; ++x)
        ASSERT_LE(picture.pixels[static_cast<size_t>(y * picture.width + x)] & 0xFFU, 16U)
            << dpi << " dpi at " << x << ", " << y;
  }
}

TEST(Pins, ALightScreenKeepsItsShareOfInkWhenMadeSmaller) {
  // Every fourth dot across and down leaves a disc of 0.2 mm on 0.5644 mm squared.
  ExpectedStream stream;
  for (int band = 0; band < 8; ++band) {
    Bytes data(size_t{180} * 3, 0);
    for (size_t column = 0; column < 180; column += 4) std::fill_n(&data[column * 3], 3, 0x88);
    stream.unit(10).down(band == 0 ? 0 : 48).block(0, 39, 180, data);
  }
  const Bytes bytes = stream.formFeed().bytes();
  const decode::Page page = pageOf(bytes);
  PaperView view = viewOf(page, 3600);
  view.pins = true;
  view.dpi = 60;
  uint64_t outside = 0;
  const Picture picture = pictureOf(drawPage(page, view, outside));
  double ink = 0;
  for (const uint32_t pixel : picture.pixels) ink += (255 - (pixel & 0xFFU)) / 255.0;
  const double share = std::numbers::pi * 0.1 * 0.1 / (0.564444 * 0.564444);
  EXPECT_NEAR(ink / static_cast<double>(picture.pixels.size()), share, 0.012);
}

TEST(Pins, BlackInkCoversRed) {
  const Bytes stream = twoDots();
  const decode::Page page = pageOf(stream);
  PaperView view = viewOf(page, 40);
  view.pins = true;
  view.dpi = 1800;
  uint64_t outside = 0;
  const Picture picture = pictureOf(drawPage(page, view, outside));
  ASSERT_EQ(picture.width, 20);
  EXPECT_EQ(picture.pixels[5 * 20 + 5], kBlack);
  EXPECT_EQ(picture.pixels[5 * 20 + 19], kRed);
}

TEST(ContactSheet, ShowsEveryPictureWholeAndSideBySide) {
  const Labelled red{"label", {50, 40, 90, Pixels(size_t{50} * 40, kRed)}, {}};
  const std::vector<Labelled> pictures(3, red);
  const Picture sheet = pictureOf(contactSheet(pictures));
  EXPECT_GT(sheet.width, 3 * 50);
  EXPECT_GT(sheet.height, 40);
  EXPECT_EQ(std::count(sheet.pixels.begin(), sheet.pixels.end(), kRed), 3 * 50 * 40);
}

// Ink of the texts alone, without the red picture and its grey frame.
double inkOfTexts(const Labelled& cell, const SheetHead& head = {}) {
  const Picture sheet = pictureOf(contactSheet({cell}, head));
  double ink = 0;
  for (const uint32_t pixel : sheet.pixels) {
    if (pixel == kRed || pixel == 0x808080 || pixel == 0x7F7F7F) continue;
    ink += 255 - (pixel & 0xFFU);
  }
  return ink;
}

TEST(ContactSheet, CutsNoTextHoweverNarrowThePicturesAre) {
  const auto cellOf = [](int32_t width, const std::string& label) {
    return Labelled{label, {width, 6, 90, Pixels(static_cast<size_t>(width) * 6, kRed)}, {}};
  };
  for (const std::string text : {"RedMinValue=130", "RedMinValue=130 (default) LevelsRed=17"}) {
    const double all = inkOfTexts(cellOf(900, text));
    EXPECT_GT(all, 10000) << "is a font installed?";
    for (const int32_t width : {1, 40, 150, 250}) {
      EXPECT_NEAR(inkOfTexts(cellOf(width, text)), all, all / 50) << text << ", " << width;
    }
  }
  Labelled noted = cellOf(900, "A=1");
  noted.notes = {"black 12.34 %, red 0.12 %", "the same as A=2"};
  const SheetHead head{{"a-document-of-a-long-name.pdf, page 1"}, 0};
  const double all = inkOfTexts(noted, head);
  noted.picture = {3, 6, 90, Pixels(18, kRed)};
  EXPECT_NEAR(inkOfTexts(noted, head), all, all / 50);
}

TEST(ContactSheet, PutsAsManyInARowAsItIsTold) {
  const Labelled red{"x", {200, 10, 90, Pixels(size_t{200} * 10, kRed)}, {}};
  const std::vector<Labelled> pictures(6, red);
  const Picture three = pictureOf(contactSheet(pictures, {{}, 3}));
  const Picture six = pictureOf(contactSheet(pictures, {{}, 6}));
  EXPECT_GT(three.width, 600);
  EXPECT_LT(three.width, 800);
  EXPECT_GT(six.width, 1200);
  EXPECT_LT(six.height, three.height);
}

TEST(ContactSheet, ThatWillBeTooLargeIsToldByItsFirstPicture) {
  const Labelled red{"x", {3000, 3000, 90, Pixels(size_t{3000} * 3000, kRed)}, {}};
  EXPECT_FALSE(tooLargeASheet(red, 4, {}).has_value());
  ASSERT_TRUE(tooLargeASheet(red, 20, {}).has_value());
  EXPECT_NE(tooLargeASheet(red, 20, {})->find("a smaller --scale or --dpi"), std::string::npos);
}

TEST(ContactSheet, NeedsAPicture) {
  EXPECT_TRUE(std::holds_alternative<std::string>(contactSheet({})));
}

}  // namespace
}  // namespace velka::view
