// Pictures that are drawn some rows at a time.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "Difference.h"
#include "PagePicture.h"
#include "PageRows.h"
#include "Scaling.h"
#include "view/Pages.h"

namespace velka::view {
namespace {

using namespace viewtest;
using Pixels = std::vector<uint32_t>;

Rows rowsIn(RowsDrawing drawing) {
  auto* rows = std::get_if<Rows>(&drawing);
  return rows != nullptr ? std::move(*rows) : nullptr;
}

// All rows, `most` at a time.
Pixels drawn(PictureRows& rows, int64_t most) {
  Pixels all;
  for (int64_t top = 0; top < rows.size().height; top += most) {
    Pixels strip(static_cast<size_t>(std::min(most, rows.size().height - top)) * rows.width());
    rows.draw(top, strip);
    all.insert(all.end(), strip.begin(), strip.end());
  }
  return all;
}

// A pixel as the mean of the area it covers, added up part by part.
uint32_t literalMean(const Picture& source, int32_t width, int32_t height, int32_t x, int32_t y) {
  double sum[3] = {};
  double area = 0;
  for (int32_t row = 0; row < source.height; ++row) {
    const double high = std::min((row + 1.0) * height, (y + 1.0) * source.height) -
                        std::max(1.0 * row * height, 1.0 * y * source.height);
    for (int32_t column = 0; column < source.width && high > 0; ++column) {
      const double wide = std::min((column + 1.0) * width, (x + 1.0) * source.width) -
                          std::max(1.0 * column * width, 1.0 * x * source.width);
      if (wide <= 0) continue;
      const uint32_t pixel = source.pixels[size_t(row) * size_t(source.width) + size_t(column)];
      for (unsigned i = 0; i < 3; ++i) sum[i] += high * wide * ((pixel >> (16 - 8 * i)) & 0xFFU);
      area += high * wide;
    }
  }
  uint32_t mean = 0;
  for (const double channel : sum) mean = mean << 8U | uint32_t(std::ceil(channel / area - 0.5));
  return mean;
}

Picture randomPicture(std::mt19937& random, bool fewColours) {
  Picture picture{int32_t(1 + random() % 40), int32_t(1 + random() % 40), 360, {}};
  constexpr uint32_t kInks[] = {kWhite, kWhite, kWhite, kBlack, kRed};
  for (int i = 0; i < picture.width * picture.height; ++i)
    picture.pixels.push_back(fewColours ? kInks[random() % 5] : random() & 0xFFFFFFU);
  return picture;
}

TEST(Scaling, MadeSmallerEachPixelIsTheMeanOfWhatItCovers) {
  std::mt19937 random(5);  // NOLINT: the same pictures each time
  for (int run = 0; run < 200; ++run) {
    const Picture source = randomPicture(random, run % 2 == 0);
    const double dpi = 360.0 * double(1 + random() % 99) / 100;
    const Picture small = pictureOf(resample(source, dpi));
    ASSERT_EQ(small.width, std::max(1.0, std::round(source.width * dpi / 360)));
    for (int32_t y = 0; y < small.height; ++y)
      for (int32_t x = 0; x < small.width; ++x)
        ASSERT_EQ(small.pixels[size_t(y * small.width + x)],
                  literalMean(source, small.width, small.height, x, y))
            << run << ": " << x << ", " << y;
  }
}

TEST(Scaling, MadeLargerEachPixelIsOneOfThePictures) {
  std::mt19937 random(6);  // NOLINT: the same pictures each time
  for (int run = 0; run < 100; ++run) {
    const Picture source = randomPicture(random, run % 2 == 0);
    const Picture large = pictureOf(resample(source, double(361 + random() % 1000)));
    for (int32_t y = 0; y < large.height; ++y)
      for (int32_t x = 0; x < large.width; ++x) {
        const auto fromX = int32_t(std::floor((x + 0.5) * source.width / large.width));
        const auto fromY = int32_t(std::floor((y + 0.5) * source.height / large.height));
        ASSERT_EQ(large.pixels[size_t(y * large.width + x)],
                  source.pixels[size_t(fromY * source.width + fromX)]);
      }
  }
}

// A page of scattered bands with blank stretches between them.
Bytes scattered(unsigned seed) {
  std::mt19937 random(seed);
  ExpectedStream stream;
  stream.start(3);
  for (int band = 0; band < 12; ++band) {
    Bytes data(size_t{90} * 3, 0);
    for (uint8_t& byte : data) byte = random() % 4 == 0 ? uint8_t(random()) : uint8_t{0};
    stream.unit(10).down(int(random() % 70)).toX(int(random() % 9)).block(band % 2, 40, 90, data);
  }
  return stream.formFeed().bytes();
}

TEST(PictureRows, AreTheSameHoweverManyAreDrawnAtOnce) {
  const Bytes stream = scattered(1);
  const Bytes second = scattered(2);
  const decode::Page page = pageOf(stream);
  const decode::Page other = pageOf(second);
  PaperView view = viewOf(page, 700);
  view.grid.add(other);
  for (const bool pins : {false, true}) {
    for (const double dpi : {50.0, 123.0, 360.0, 500.0, 720.0}) {
      view.pins = pins;
      view.dpi = dpi;
      for (const bool change : {false, true}) {
        const Rows rows =
            rowsIn(change ? changeRows({page, other}, view, kBothStandard) : pageRows(page, view));
        ASSERT_TRUE(rows != nullptr);
        const Pixels whole = drawn(*rows, rows->size().height);
        EXPECT_GT(std::ranges::count_if(whole, [](uint32_t pixel) { return pixel != kWhite; }), 50);
        for (const int64_t most : {1, 7, 64}) {
          EXPECT_TRUE(drawn(*rows, most) == whole) << dpi << ", " << most;
          for (int64_t top = 0; top + most <= rows->size().height; top += most) {
            if (!rows->isBlank(top, most)) continue;
            const auto from = whole.begin() + top * rows->size().width;
            EXPECT_TRUE(std::all_of(from, from + most * rows->size().width,
                                    [](uint32_t pixel) { return pixel == kWhite; }));
          }
        }
      }
    }
  }
}

TEST(PictureRows, NumbersStandForTheColoursOfAPage) {
  for (const int inks : {1, 2, 3}) {
    ExpectedStream stream;
    if ((inks & 1) != 0) stream.block(0, 39, 1, {0x80, 0, 0}).toX(0);
    if ((inks & 2) != 0) stream.block(1, 39, 1, {0xC0, 0, 0}).toX(0);
    const Bytes bytes = stream.formFeed().bytes();
    const decode::Page page = pageOf(bytes);
    const Rows rows = rowsIn(pageRows(page, viewOf(page, 20)));
    ASSERT_TRUE(rows != nullptr);
    EXPECT_EQ(rows->colours().size(), inks == 3 ? 3U : 2U);
    const Pixels found = drawn(*rows, rows->size().height);
    EXPECT_EQ(found[0], (inks & 1) != 0 ? kBlack : kRed);
    if ((inks & 2) != 0) {
      EXPECT_EQ(found[1], kRed);
    }
  }
}

TEST(PictureRows, NoMoreThanAPictureMayHaveAreMade) {
  const Bytes stream =
      ExpectedStream().unit(255).down(32767).down(32767).block(0, 39, 1, {1, 0, 0}).bytes();
  const decode::Page page = pageOf(stream);
  PaperView view = viewOf(page, 29764);
  // 3,343,000 rows of 1/720 inch.
  const RowsDrawing native = pageRows(page, view);
  ASSERT_TRUE(std::holds_alternative<std::string>(native));
  EXPECT_NE(std::get<std::string>(native).find("a smaller --scale or --dpi may help"),
            std::string::npos);
  view.dpi = 50;
  const Rows small = rowsIn(pageRows(page, view));
  ASSERT_TRUE(small != nullptr);
  EXPECT_EQ(small->size().height, 232102);
  EXPECT_TRUE(small->isBlank(0, 232000));
}

}  // namespace
}  // namespace velka::view
