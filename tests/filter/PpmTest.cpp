// Portable pixmaps: header, pixels, files.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

#include "GrowingBuffer.h"
#include "PpmImage.h"
#include "rastovelka.h"
#include "support/TestPdf.h"

namespace velka::testing {
namespace {

Bytes bytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

struct Parsed {
  int width = -7;
  int height = -7;
  ptrdiff_t pixels = -1;  ///< offset of the pixel data, -1 for none
};

// The buffer has its exact size, so that the sanitizers see a step beyond it.
Parsed parse(Bytes& file) {
  Parsed parsed;
  const unsigned char* data =
      PpmBitmapData(file.data(), static_cast<unsigned>(file.size()), &parsed.width, &parsed.height);
  if (data != nullptr) parsed.pixels = data - file.data();
  return parsed;
}

void expectParsed(const std::string& text, int width, int height, ptrdiff_t pixels) {
  Bytes file = bytesOf(text);
  const Parsed parsed = parse(file);
  EXPECT_EQ(parsed.width, width) << text;
  EXPECT_EQ(parsed.height, height) << text;
  EXPECT_EQ(parsed.pixels, pixels) << text;
}

TEST(PpmBitmap, SwapsRedAndBlueInPlace) {
  Bytes file = bytesOf("P6\n2 1\n255\nabcdef");
  const Parsed parsed = parse(file);
  EXPECT_EQ(parsed.width, 2);
  EXPECT_EQ(parsed.height, 1);
  EXPECT_EQ(parsed.pixels, 11);
  EXPECT_EQ(file, bytesOf("P6\n2 1\n255\ncbafed"));
}

TEST(PpmBitmap, BytesBehindItsPixelsStayAsTheyAre) {
  Bytes file = bytesOf("P6\n1 1\n255\nabcdef");
  parse(file);
  EXPECT_EQ(file, bytesOf("P6\n1 1\n255\ncbadef"));
}

TEST(PpmBitmap, NothingIsReadFromNothing) {
  int width = 5;
  int height = 6;
  unsigned char byte = 'P';
  EXPECT_EQ(PpmBitmapData(nullptr, 10, &width, &height), nullptr);
  EXPECT_EQ(PpmBitmapData(&byte, 0, &width, &height), nullptr);
  EXPECT_EQ(width, 5);
  EXPECT_EQ(height, 6);
}

TEST(PpmBitmap, WithoutAnEndOfTheMaxvalLineHasASizeAndNoPixels) {
  expectParsed("P6\n5 4\n255", 5, 4, -1);
  expectParsed("P6\n5 4\n", 5, 4, -1);
  expectParsed("P6\n5 4", 5, 4, -1);
  expectParsed("P6\n5 ", 5, 0, -1);
}

TEST(PpmBitmap, WithoutASpaceBehindTheFirstLineHasNoSize) {
  expectParsed("P6\n54\n255\n", -7, -7, -1);
  expectParsed("P6 5 4 255 ", -7, -7, -1);
  expectParsed("P6\n", -7, -7, -1);
  expectParsed("P", -7, -7, -1);
}

TEST(PpmBitmap, LooksAtNeitherMagicNorMaxval) {
  expectParsed("XX\n1 1\nnonsense\nabc", 1, 1, 16);
}

TEST(PpmBitmap, MisreadsACommentLine) {
  expectParsed("P6\n# 12 by hand\n5 4\n255\nabc", 0, 12, 20);
  expectParsed("P6\n#made by hand\n5 4\n255\nabc", 0, 0, 21);
}

TEST(PpmBitmap, TakesASizeOverTwoLinesFromTheFirstSpaceOn) {
  expectParsed("P6\n5\n4 \n255\n", 5, 255, 12);
}

TEST(PpmBitmap, WhiteSpaceBeforeANumberIsSkipped) {
  expectParsed("P6\n  5  4\n255\n", 5, 5, 14);
  expectParsed("P6\n5 \t4\n255\n", 5, 4, 12);
}

TEST(PpmBitmap, NumbersBeyondTheirTypeAreCutAndSignsAreNone) {
  constexpr int kMostSide = std::numeric_limits<int>::max();
  expectParsed("P6\n99999999999999999999999 2147483648\n255\nabc", kMostSide, kMostSide, 42);
  expectParsed("P6\n-5 -4\n255\nabc", 0, 0, 13);
}

TEST(PpmBitmap, PixelsThatTheFileDoesNotHoldAreNotTouched) {
  Bytes file = bytesOf("P6\n100 100\n255\nabcde");
  EXPECT_EQ(parse(file).pixels, 15);
  EXPECT_EQ(file, bytesOf("P6\n100 100\n255\ncbade"));
}

TEST(PpmBitmap, AnythingAtAllIsSafe) {
  std::mt19937 random(5);
  const std::string alphabet = "P6\n\n  019-#\xFF";
  for (int i = 0; i < 20000; ++i) {
    Bytes file(1 + random() % 24);
    for (uint8_t& byte : file) byte = static_cast<uint8_t>(alphabet[random() % alphabet.size()]);
    const Parsed parsed = parse(file);
    EXPECT_LE(parsed.pixels, static_cast<ptrdiff_t>(file.size()));
  }
}

TEST(PpmRows, AreTheLiteralBitmap) {
  std::mt19937 random(6);
  for (int i = 0; i < 300; ++i) {
    Picture picture = {static_cast<int>(random() % 9), static_cast<int>(random() % 7), {}};
    const size_t promised = static_cast<size_t>(picture.width * picture.height) * 3;
    picture.pixels.resize(random() % 3 == 0 ? random() % (promised + 1) : promised + random() % 4);
    for (uint8_t& byte : picture.pixels) byte = static_cast<uint8_t>(random());
    const Bytes expected = bitmapOf(picture);
    Bytes swapped = picture.pixels;
    for (size_t at = 0; at + 2 < swapped.size(); at += 3) std::swap(swapped[at], swapped[at + 2]);
    Bytes page(expected.size(), 0);
    const size_t stride = static_cast<size_t>(24 * picture.width + 31) / 32 * 4;
    storePpmRows(swapped, static_cast<uint32_t>(picture.width),
                 static_cast<uint32_t>(picture.height), page, stride);
    EXPECT_EQ(page, expected) << picture.width << " x " << picture.height;
  }
}

TEST(PpmRows, AreCutToAStrideThatIsTooNarrow) {
  Bytes page(8, 0);
  storePpmRows(bytesOf("abcdefghijkl"), 2, 2, page, 4);
  EXPECT_EQ(page, bytesOf("abcdghij"));
}

TEST(PpmRows, APageThatIsNotThereIsSkipped) {
  storePpmRows(bytesOf("abc"), 1, 1, {}, 4);
  Bytes page(4, 7);
  storePpmRows(bytesOf("abcdef"), 1, 2, page, 4);
  EXPECT_EQ(page, (Bytes{'a', 'b', 'c', 7}));
}

// What reading a path gives, -1 where the outputs stay untouched.
std::pair<long, std::string> readPpm(const char* path) {
  unsigned char* buffer = nullptr;
  unsigned int size = 12345;
  PpmFileData(path, &buffer, &size);
  const MallocBytes owner(buffer);
  if (size == 12345) return {-1, ""};
  return {size, {reinterpret_cast<const char*>(buffer), buffer == nullptr ? 0 : size}};
}

TEST(PpmFile, IsReadWhole) {
  const std::string text(100000, 'x');
  const TempFile file(text);
  EXPECT_EQ(readPpm(file.path().c_str()), std::make_pair(100000L, text));
}

TEST(PpmFile, AnEmptyOneHasNoBuffer) {
  const TempFile file("");
  EXPECT_EQ(readPpm(file.path().c_str()), std::make_pair(0L, std::string()));
}

TEST(PpmFile, WhatCannotBeOpenedLeavesTheOutputsAlone) {
  EXPECT_EQ(readPpm(nullptr).first, -1);
  EXPECT_EQ(readPpm("").first, -1);
  EXPECT_EQ(readPpm("/nonexistent/picture").first, -1);
  EXPECT_EQ(readPpm("/tmp").first, -1);
  PpmFileData("/dev/null", nullptr, nullptr);
}

TEST(PpmFile, LinksAndFifosCountAsFilesThatCannotBeOpened) {
  const TempFolder folder;
  writeText(folder / "target", "secret");
  ASSERT_EQ(symlink((folder / "target").c_str(), (folder / "link").c_str()), 0);
  EXPECT_EQ(readPpm((folder / "link").c_str()).first, -1);
  ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
  EXPECT_EQ(readPpm((folder / "fifo").c_str()).first, -1);
  ASSERT_EQ(link((folder / "target").c_str(), (folder / "second").c_str()), 0);
  EXPECT_EQ(readPpm((folder / "second").c_str()).first, -1);
}

TEST(PpmFile, AFileOfSomebodyElseCountsAsOneThatCannotBeOpened) {
  const TempFile file("theirs");
  if (chown(file.path().c_str(), 65534, 65534) != 0)
    GTEST_SKIP() << "only root can give files away";
  EXPECT_EQ(readPpm(file.path().c_str()).first, -1);
}

}  // namespace
}  // namespace velka::testing
