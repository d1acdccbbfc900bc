// Pages of any length: a roll of five metres at 360 x 360 dpi.
#include <gtest/gtest.h>
#include <png.h>
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

#include <algorithm>
#include <numeric>

#include "PictureFiles.h"
#include "reference/ExpectedStream.h"
#include "support/FilterRun.h"
#include "support/Sweep.h"
#include "support/TestPdf.h"

namespace velka::view {
namespace {

using reference::ExpectedStream;
using testing::FilterResult;
using testing::TempFolder;
using testing::textOf;

// Bands of 1/7.5 inch in two passes, one below the other, a column of black in each.
std::vector<uint8_t> rollOf(int bands, int lines) {
  ExpectedStream stream;
  stream.start(lines);
  const std::vector<uint8_t> column = {0xFF, 0xFF, 0xFF};
  for (int band = 0; band < bands; ++band) {
    if (band > 0) stream.unit(10).down(47);
    stream.toX(1).block(0, 40, 1, column).unit(10).down(1).toX(1).block(0, 40, 1, column);
  }
  return stream.formFeed().end().bytes();
}

// 4,999.2 mm; fewer of them are as long a way for the thread sanitizer.
constexpr int kBands = testing::amount(1476, 1476, 123);
constexpr int kRows = kBands * 48;
constexpr int kFormLines = testing::amount(157, 157, 13);  // shorter than the roll
constexpr std::string_view kPoints = testing::amount("14169.6", "14169.6", "1180.8");

struct Size {
  uint32_t width = 0;
  uint32_t height = 0;
};

// As a PNG's first chunk tells it.
Size sizeOfPng(const std::string& name) {
  const std::string bytes = textOf(name).substr(0, 24);
  const auto word = [&](size_t at) {
    uint32_t value = 0;
    for (size_t i = at; i < at + 4 && i < bytes.size(); ++i)
      value = value << 8U | static_cast<uint8_t>(bytes[i]);
    return value;
  };
  return {word(16), word(20)};
}

std::string said(const std::string& command) {
  const testing::TempFile output("");
  EXPECT_EQ(std::system((command + " >" + output.path()).c_str()), 0) << command;
  return textOf(output.path());
}

// The drawing library forgets to free what it keeps of each image of a long page.
class ForgivenLeaks {
 public:
#if defined(__SANITIZE_ADDRESS__)
  ForgivenLeaks() {
    __lsan_disable();
  }
  ~ForgivenLeaks() {
    __lsan_enable();
  }
#else
  ForgivenLeaks() = default;
#endif
  ForgivenLeaks(const ForgivenLeaks&) = delete;
  ForgivenLeaks& operator=(const ForgivenLeaks&) = delete;

 private:
  // Of a program that the test starts.
  testing::Environment options_{"ASAN_OPTIONS", "detect_leaks=0"};
};

class Roll : public ::testing::Test {
 protected:
  FilterResult draw(const std::vector<std::string>& options, const std::string& output,
                    const std::vector<uint8_t>& stream = rollOf(kBands, kFormLines),
                    const std::string& width = "210") {
    testing::FilterJob job;
    job.arguments = {"--model", "standard", "--width", width, "-o", folder_ / output, "-"};
    job.arguments.insert(job.arguments.end(), options.begin(), options.end());
    job.input = stream;
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    job.addressSpace = size_t{400} << 20U;  // the picture alone would be 844 MB
#endif
    return testing::runFilter(VELKA_VIEW, job);
  }

  TempFolder folder_;
};

TEST_F(Roll, OfFiveMetresIsDrawnInItsOwnResolution) {
  const FilterResult result = draw({}, "roll.png");
  EXPECT_EQ(result.status, 0) << result.errors;
  const Size size = sizeOfPng(folder_ / "roll.png");
  EXPECT_EQ(size.width, 2977U);
  EXPECT_EQ(size.height, uint32_t{kRows});
}

TEST_F(Roll, OfFiveMetresIsDrawnInAnySizeAskedFor) {
  const std::pair<std::vector<std::string>, uint32_t> sizes[] = {
      {{"--dpi", "30"}, kRows / 12},
      {{"--scale", "0.1"}, (kRows + 5) / 10},
      {{"--pins", "--dpi", "30"}, kRows / 12}};
  for (const auto& [options, height] : sizes) {
    const FilterResult result = draw(options, "roll.png");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(sizeOfPng(folder_ / "roll.png").height, height) << options[0];
  }
}

TEST_F(Roll, OfFiveMetresIsOnePageOfAPdf) {
  const ForgivenLeaks forgiven;
  for (const auto& options : {std::vector<std::string>{"--dpi", "90"}, {"--scale", "0.5"}}) {
    const FilterResult result = draw(options, "roll.pdf");
    EXPECT_EQ(result.status, 0) << result.errors;
    const std::string info = said("pdfinfo " + (folder_ / "roll.pdf"));
    EXPECT_NE(info.find("Pages:           1\n"), std::string::npos) << info;
    EXPECT_NE(info.find("x " + std::string(kPoints) + " pts"), std::string::npos) << info;
  }
}

TEST_F(Roll, OfFiveMetresHasItsInkCounted) {
  testing::FilterJob job;
  job.arguments = {"--stats", "--model", "standard", "--width", "25.4", "-"};
  job.input = rollOf(kBands, kFormLines);
  const FilterResult result = testing::runFilter(VELKA_VIEW, job);
  const std::string text(result.output.begin(), result.output.end());
  EXPECT_NE(text.find("black places " + std::to_string(kRows) + "\n"), std::string::npos) << text;
  EXPECT_NE(text.find("black ink    0.28 % of the paper\n"), std::string::npos) << text;
}

TEST_F(Roll, TheLongestFormIsDrawnInEveryWay) {
  constexpr const char* kWidest = testing::amount("381", "381", "38");
  const auto stream = rollOf(318, 255);  // 42.4 of its 42.5 inches
  const std::pair<std::vector<std::string>, uint32_t> sizes[] = {
      {{}, 15300}, {{"--dpi", "30"}, 1275}, {{"--scale", "0.1"}, 1530}, {{"--pins"}, 15300}};
  for (const auto& [options, height] : sizes) {
    const FilterResult result = draw(options, "form.png", stream, kWidest);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(sizeOfPng(folder_ / "form.png").height, height);
  }
  const ForgivenLeaks forgiven;
  EXPECT_EQ(draw({}, "form.pdf", stream, kWidest).status, 0);
}

// Every row holds its number in black and white, so that one lost or doubled shows.
class NumberedRows : public PictureRows {
 public:
  explicit NumberedRows(const PictureSize& size) : PictureRows(size, {}) {}
  void draw(int64_t top, std::span<uint32_t> pixels) override {
    for (size_t i = 0; i < pixels.size(); ++i) {
      const int64_t row = top + static_cast<int64_t>(i / width());
      pixels[i] = ((row >> (i % width() % 16)) & 1) != 0 ? kBlack : kWhite;
    }
  }
};

// The number that a row of red, green, blue bytes holds.
int64_t numberOf(const uint8_t* row) {
  int64_t number = 0;
  for (size_t bit = 0; bit < 16; ++bit) {
    if (row[bit * 3] == 0) number |= int64_t{1} << bit;
  }
  return number;
}

// The numbers in the rows of a PDF's page that has one pixel a point.
std::vector<int64_t> numbersOnPage(const std::string& pdf, int page) {
  const TempFolder folder;
  const std::string number = std::to_string(page);
  (void)said("pdftocairo -r 72 -png -singlefile -f " + number + " -l " + number + " " + pdf + " " +
             (folder / "page"));
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, (folder / "page.png").c_str()) == 0) return {};
  image.format = PNG_FORMAT_RGB;
  std::vector<uint8_t> bytes(PNG_IMAGE_SIZE(image));
  png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr);
  std::vector<int64_t> numbers;
  for (size_t row = 0; row < image.height; ++row) {
    numbers.push_back(numberOf(bytes.data() + row * image.width * 3));
  }
  return numbers;
}

TEST(LongPdf, APageOfSeveralImagesHoldsEveryRowOnce) {
  const TempFolder folder;
  const ForgivenLeaks forgiven;
  NumberedRows rows({1200, 14400, 72});  // more pixels than one image gets
  PdfWriter writer(folder / "long.pdf");
  ASSERT_FALSE(writer.add(rows).has_value());
  ASSERT_FALSE(writer.finish().has_value());
  const std::string images = said("pdfimages -list " + (folder / "long.pdf"));
  EXPECT_GT(std::count(images.begin(), images.end(), '\n'), 4) << images;
  std::vector<int64_t> all(14400);
  std::iota(all.begin(), all.end(), 0);
  EXPECT_TRUE(numbersOnPage(folder / "long.pdf", 1) == all);
}

TEST(LongPdf, WhatIsLongerThanAPageMayBeTakesSeveral) {
  const TempFolder folder;
  NumberedRows rows({20, 14400 * 2 + 100, 72});
  PdfWriter writer(folder / "long.pdf");
  ASSERT_FALSE(writer.add(rows).has_value());
  ASSERT_FALSE(writer.finish().has_value());
  int64_t next = 0;
  for (const int page : {1, 2, 3}) {
    for (const int64_t number : numbersOnPage(folder / "long.pdf", page)) {
      ASSERT_EQ(number, next++);
    }
    EXPECT_EQ(next, std::min(int64_t{14400} * page, int64_t{28900}));
  }
}

}  // namespace
}  // namespace velka::view
