#include <gtest/gtest.h>
#include <png.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sstream>

#include "PictureFiles.h"
#include "support/TestPdf.h"

namespace velka::view {
namespace {

using testing::TempFolder;
using testing::textOf;

// What a reader of PNG finds, as 0x00RRGGBB.
std::vector<uint32_t> readPng(const std::string& name, uint32_t& width) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, name.c_str()) == 0) return {};
  image.format = PNG_FORMAT_RGB;
  std::vector<uint8_t> bytes(PNG_IMAGE_SIZE(image));
  png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr);
  width = image.width;
  std::vector<uint32_t> pixels;
  for (size_t i = 0; i + 2 < bytes.size(); i += 3) {
    pixels.push_back(static_cast<uint32_t>(bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2]));
  }
  return pixels;
}

Picture stripes(uint32_t colours) {
  Picture picture{37, 11, 180, {}};
  for (uint32_t i = 0; i < 37 * 11; ++i) picture.pixels.push_back((i % colours) * 0x0A0B0C);
  return picture;
}

// Too much for any buffer on its way to a file.
Picture noise() {
  std::mt19937 random(1);  // NOLINT: the same noise each time
  Picture picture{300, 300, 180, {}};
  for (int i = 0; i < 300 * 300; ++i) picture.pixels.push_back(random() & 0xFFFFFFU);
  return picture;
}

TEST(Png, HoldsEveryPixelWithAnyNumberOfColours) {
  const TempFolder folder;
  for (const uint32_t colours : {1U, 2U, 3U, 4U, 5U, 16U, 17U, 21U}) {
    const Picture picture = stripes(colours);
    ASSERT_FALSE(writePng(picture, folder / "x.png").has_value()) << colours;
    uint32_t width = 0;
    EXPECT_EQ(readPng(folder / "x.png", width), picture.pixels) << colours;
    EXPECT_EQ(width, 37U);
  }
}

TEST(Png, TellsItsResolution) {
  const TempFolder folder;
  ASSERT_FALSE(writePng(stripes(2), folder / "x.png").has_value());
  // 180 dots an inch are 7087 a metre: 0x1BAF.
  const std::string expected("pHYs\0\0\x1B\xAF\0\0\x1B\xAF\x01", 13);
  EXPECT_NE(textOf(folder / "x.png").find(expected), std::string::npos);
}

TEST(Png, TellsWhereItCannotBeWritten) {
  EXPECT_EQ(writePng(stripes(2), "/nowhere/x.png"), "/nowhere/x.png: No such file or directory");
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(writePng(noise(), "/dev/full"), "/dev/full: No space left on device");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

// What a reader of PDF counts; the file's own words may be compressed.
std::string pagesOf(const std::string& pdf) {
  const std::string command = "LC_ALL=C pdfinfo " + pdf + " >" + pdf + ".info";
  if (std::system(command.c_str()) != 0) return "no PDF";
  std::istringstream report(textOf(pdf + ".info"));
  for (std::string word; report >> word;)
    if (word == "Pages:" && report >> word) return word;
  return "no count";
}

TEST(Pdf, HasAPageAPicture) {
  const TempFolder folder;
  {
    PdfWriter writer(folder / "x.pdf");
    EXPECT_FALSE(writer.add(stripes(2)).has_value());
    EXPECT_FALSE(writer.add(stripes(3)).has_value());
    EXPECT_FALSE(std::filesystem::exists(folder / "x.pdf"));
    EXPECT_FALSE(writer.finish().has_value());
  }
  EXPECT_TRUE(textOf(folder / "x.pdf").starts_with("%PDF"));
  EXPECT_EQ(pagesOf(folder / "x.pdf"), "2");
}

TEST(Pdf, TellsWhereItCannotBeWritten) {
  PdfWriter writer("/dev/full");
  (void)writer.add(noise());
  EXPECT_EQ(writer.finish(), "/dev/full: No space left on device");
}

TEST(Pdf, ASignalEndsItAfterThePageInHand) {
  const TempFolder folder;
  struct sigaction before {};
  struct sigaction nothing {};
  nothing.sa_handler = [](int) {};
  ASSERT_EQ(sigaction(SIGINT, &nothing, &before), 0);
  {
    PdfWriter writer(folder / "x.pdf");
    EXPECT_FALSE(writer.add(stripes(2)).has_value());
    ASSERT_EQ(raise(SIGINT), 0);
    EXPECT_EQ(writer.add(stripes(2)), folder / "x.pdf: interrupted");
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  ASSERT_EQ(sigaction(SIGINT, &before, nullptr), 0);
}

TEST(Pdf, OfNoPictureIsNotMade) {
  const TempFolder folder;
  PdfWriter writer(folder / "x.pdf");
  EXPECT_FALSE(writer.finish().has_value());
  EXPECT_FALSE(std::filesystem::exists(folder / "x.pdf"));
}

}  // namespace
}  // namespace velka::view
