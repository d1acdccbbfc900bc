#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "RasterStream.h"
#include "guard/GuardJob.h"
#include "guard/OtherOrder.h"

namespace {

using namespace velka;
using namespace velka::testing;

struct Walk {
  size_t pages = 0;      // whose header was taken
  size_t completed = 0;  // whose lines were all there
  size_t end = 0;        // of what belongs to them
};

// In pieces of any size, as reads give them.
Walk walk(const Bytes& stream, unsigned seed) {
  std::mt19937 random(seed);
  Walk result;
  RasterSync sync = {};
  std::copy_n(stream.begin(), sync.size(), sync.begin());
  const auto format = rasterFormat(sync);
  if (!format) return result;
  size_t at = sync.size();
  while (const auto header = pageHeader(*format, std::span(stream).subspan(at))) {
    ++result.pages;
    at += format->headerBytes;
    PageLines lines(*format, *header);
    while (!lines.areComplete() && at < stream.size()) {
      const size_t most = std::min<size_t>(stream.size() - at, 1 + random() % 700);
      const int before = lines.percent();
      const size_t taken = lines.take(std::span(stream).subspan(at, most));
      EXPECT_TRUE(taken == most || lines.areComplete());
      EXPECT_LE(before, lines.percent());
      at += taken;
    }
    EXPECT_EQ(lines.percent() == 100, lines.areComplete());
    if (lines.areComplete()) ++result.completed;
  }
  result.end = at;
  return result;
}

TEST(RasterStream, EveryVersionIsFollowedToItsEnd) {
  const auto pages = twoPages();
  for (const Bytes& stream :
       {rasterStream(pages), rasterStream(pages, CUPS_RASTER_WRITE_COMPRESSED),
        rasterStream(pages, CUPS_RASTER_WRITE_PWG), inOtherOrder(pages), ofVersionOne(pages)}) {
    const Walk walked = walk(stream, 3);
    EXPECT_EQ(walked.pages, 2U);
    EXPECT_EQ(walked.completed, 2U);
    EXPECT_EQ(walked.end, stream.size());
  }
}

TEST(RasterStream, AnythingElseHasNoFormat) {
  EXPECT_FALSE(rasterFormat({'%', 'P', 'D', 'F'}));
  EXPECT_FALSE(rasterFormat({'U', 'N', 'I', 'R'}));
  EXPECT_FALSE(rasterFormat({'R', 'a', 'S', '4'}));
  EXPECT_TRUE(rasterFormat({'R', 'a', 'S', '3'}));
  EXPECT_TRUE(rasterFormat({'3', 'S', 'a', 'R'}));
  EXPECT_TRUE(rasterFormat({'R', 'a', 'S', '2'})->compressed);
  EXPECT_EQ(rasterFormat({'t', 'S', 'a', 'R'})->headerBytes, 420U);
}

TEST(RasterStream, TheOtherByteOrderHasTheSameHeader) {
  const auto pages = twoPages();
  const Bytes stream = inOtherOrder(pages);
  const auto format = rasterFormat({stream[0], stream[1], stream[2], stream[3]});
  ASSERT_TRUE(format);
  const auto header = pageHeader(*format, std::span(stream).subspan(4));
  ASSERT_TRUE(header);
  EXPECT_EQ(header->cupsWidth, 301U);
  EXPECT_EQ(header->HWResolution[1], 180U);
}

TEST(RasterStream, AHeaderThatIsCutIsNone) {
  const Bytes stream = rasterStream(twoPages());
  const auto format = rasterFormat({stream[0], stream[1], stream[2], stream[3]});
  EXPECT_FALSE(pageHeader(*format, std::span(stream).subspan(4, 1795)));
}

// By libcups itself: pages that it reads whole, with lines of any run lengths, truncated and
// damaged streams too.
size_t pagesByCups(const Bytes& stream) {
  struct Source {
    const Bytes& bytes;
    size_t at;
  } source{stream, 0};
  const auto read = [](void* context, unsigned char* buffer, size_t length) -> ssize_t {
    auto& from = *static_cast<Source*>(context);
    const size_t n = std::min(length, from.bytes.size() - from.at);
    std::memcpy(buffer, from.bytes.data() + from.at, n);
    from.at += n;
    return static_cast<ssize_t>(n);
  };
  cups_raster_t* raster = cupsRasterOpenIO(read, &source, CUPS_RASTER_READ);
  if (raster == nullptr) return 0;
  size_t complete = 0;
  cups_page_header2_t header = {};
  while (cupsRasterReadHeader2(raster, &header) != 0) {
    if (header.cupsBytesPerLine > 1U << 20U || header.cupsHeight > 1U << 20U) break;
    Bytes line(header.cupsBytesPerLine);
    const unsigned colours = header.cupsColorOrder == CUPS_ORDER_PLANAR ? header.cupsNumColors : 1;
    const unsigned lines = header.cupsHeight * colours;
    unsigned row = 0;
    while (row < lines &&
           cupsRasterReadPixels(raster, line.data(), static_cast<unsigned>(line.size())) != 0)
      ++row;
    if (row < lines) break;
    ++complete;
  }
  cupsRasterClose(raster);
  return complete;
}

TEST(RasterStream, PagesEndWhereLibcupsHasThemEnd) {
  std::mt19937 random(5);
  size_t damagedSame = 0;
  for (unsigned round = 0; round < 300; ++round) {
    const auto mode = round % 2 == 0 ? CUPS_RASTER_WRITE_COMPRESSED : CUPS_RASTER_WRITE;
    const auto upTo = [&](unsigned most) { return 1 + static_cast<unsigned>(random()) % most; };
    Bytes stream = rasterStream({inkedPage(rgbHeader(upTo(70), upTo(90)), round),
                                 inkedPage(rgbHeader(upTo(70), upTo(9)), round)},
                                mode);
    if (round % 3 == 1) stream.resize(4 + random() % (stream.size() - 4));
    // Run codes and pixels, not what a header says of sizes.
    for (unsigned hit = 0; round % 3 == 2 && hit < 4; ++hit) {
      const size_t at = 1800 + random() % (stream.size() - 1800);
      stream[at] = static_cast<uint8_t>(random());
    }
    const Walk walked = walk(stream, round);
    EXPECT_EQ(walked.completed, pagesByCups(stream)) << round;
    damagedSame += round % 3 == 2 && walked.completed < 2 ? 1 : 0;
  }
  EXPECT_GT(damagedSame, 0U);  // the damage was one
}

}  // namespace
