// Page headers that lie.
#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "jobs/JobFixture.h"

namespace velka::testing {
namespace {

using Spoil = std::function<void(cups_page_header2_t&)>;

// A page of ink whose header was spoilt after its lines were made, and a sound
// page behind it.
Bytes spoiltStream(const Spoil& spoil) {
  RasterPage page = inkedPage(rgbHeader(40, 60), 1);
  spoil(page.header);
  return rawStream({page, inkedPage(rgbHeader(40, 60), 2)});
}

FilterResult runSpoilt(const Spoil& spoil) {
  return runJob({}, spoiltStream(spoil));
}

// The job's output, unless libcups itself refuses the first header: then the input holds
// no page.
void expectOutput(const Bytes& stream, const Bytes& expected) {
  const FilterResult result = runJob({}, stream);
  const bool taken = cupsTakes(stream);
  EXPECT_EQ(result.status, taken ? 0 : 1);
  expectSameStream(result.output, taken ? expected : Bytes{});
}

// The job ends by itself, with a status of its own and nothing but the known
// texts on standard error.
void expectSafe(const FilterResult& result, const std::string& what) {
  EXPECT_TRUE(result.status == 0 || result.status == 1) << what << ": " << result.status;
  std::string rest = result.errors;
  const std::string text = "Finish print operation.";
  while (rest.rfind(text, 0) == 0) rest.erase(0, text.size());
  EXPECT_EQ(rest, "") << what;
}

TEST(HostileHeaders, SingleFieldsThatLieAreSafe) {
  constexpr unsigned kValues[] = {0,    1,     3,     7,        39,         41,         255,
                                  4096, 65535, 65536, 1U << 20, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  using Field = unsigned cups_page_header2_t::*;
  const std::vector<std::pair<const char*, Field>> fields = {
      {"width", &cups_page_header2_t::cupsWidth},
      {"height", &cups_page_header2_t::cupsHeight},
      {"bits per pixel", &cups_page_header2_t::cupsBitsPerPixel},
      {"bits per colour", &cups_page_header2_t::cupsBitsPerColor},
      {"bytes per line", &cups_page_header2_t::cupsBytesPerLine},
      {"copies", &cups_page_header2_t::NumCopies}};
  for (const auto& [name, field] : fields) {
    for (const unsigned value : kValues) {
      // Many copies are honest work, only long.
      if (field == &cups_page_header2_t::NumCopies && value > 255 && value < 65536) continue;
      const auto spoil = [&, member = field](cups_page_header2_t& h) { h.*member = value; };
      expectSafe(runSpoilt(spoil), std::string(name) + " = " + std::to_string(value));
    }
  }
}

TEST(HostileHeaders, ResolutionsThatLieAreSafe) {
  for (const unsigned x : {0U, 1U, 59U, 361U, 65535U, 65536U, 0xFFFFFFFFU})
    for (const unsigned y : {0U, 1U, 180U, 360U, 65535U, 0xFFFFFFFFU})
      expectSafe(runSpoilt([&](cups_page_header2_t& h) {
                   h.HWResolution[0] = x;
                   h.HWResolution[1] = y;
                 }),
                 std::to_string(x) + " x " + std::to_string(y));
}

TEST(HostileHeaders, ProductsBeyondThirtyTwoBitsPrintNothingOfThatPage) {
  // 65536 x 24 bits x 65536 rows wrap to a small number of bytes.
  const Spoil spoil = [](cups_page_header2_t& h) {
    h.cupsWidth = 65536;
    h.cupsHeight = 65536;
  };
  expectSafe(runSpoilt(spoil), "wrapping size");
  expectOutput(spoiltStream(spoil), Bytes{0x1B, '@'});
}

TEST(HostileHeaders, AWidthWhoseBitsWrapIsNotASmallPage) {
  const Spoil spoil = [](cups_page_header2_t& h) {
    h.cupsWidth = 178956971;  // x 24 = 2^32 + 8 bits
    h.cupsHeight = 60;
  };
  expectSafe(runSpoilt(spoil), "wrapping width");
  // Its rows need 32 GiB, and so do those of the sound page behind it, which keeps
  // the first page's width: that one ends after its start.
  expectOutput(spoiltStream(spoil), Bytes{0x1B, '@', 0x1B, '2', 0x1B, 'C', 2, 0x1B, '@'});
}

// Pages whose depth is not 24 are read as far as their bytes go, like the
// reference reads them.
TEST(HostileHeaders, OtherDepthsEqualTheReference) {
  for (const unsigned bits : {1U, 8U, 16U, 23U, 25U, 32U, 48U}) {
    RasterPage page = inkedPage(rgbHeader(40, 60), 1);
    page.header.cupsBitsPerPixel = bits;
    expectOutput(rawStream({page}), expectedStream(reference::defaultOptions(), {page}));
  }
}

// With fewer bits a row's pixels reach into rows that no line came for.
TEST(HostileHeaders, OtherDepthsCutOffEqualTheReference) {
  for (const unsigned bits : {1U, 8U, 16U, 23U, 25U, 32U, 48U})
    for (const size_t lines : {size_t{0}, size_t{50}, size_t{75}, size_t{90}, size_t{99}}) {
      RasterPage page = inkedPage(rgbHeader(40, 100), 2);
      page.header.cupsBitsPerPixel = bits;
      page.lines.resize(lines);
      const FilterResult result = runJob({}, rawStream({page}));
      EXPECT_EQ(result.status, 0);
      expectSameStream(result.output, expectedStream(reference::defaultOptions(), {page}));
    }
}

TEST(HostileHeaders, LinesThatDisagreeWithTheWidthEqualTheReference) {
  // libcups takes lines of whole pixels at most and refuses the others as no header.
  for (const unsigned bytes : {1U, 2U, 3U, 60U, 117U, 119U, 120U, 121U, 123U, 240U, 999U}) {
    cups_page_header2_t header = rgbHeader(40, 60);
    header.cupsBytesPerLine = bytes;
    RasterPage page = inkedPage(header, 5);
    const Bytes stream = rawStream({page});
    EXPECT_FALSE(bytes % 3 != 0 && cupsTakes(stream)) << bytes;
    EXPECT_TRUE(bytes != 120 || cupsTakes(stream));
    expectOutput(stream, expectedStream(reference::defaultOptions(), {page}));
  }
}

// The log tells of inputs that fail; these only end, or say what libcups does not take.
TEST(HostileHeaders, AStreamThatEndsOrLiesIsNoReadThatFailed) {
  const RasterPage page = inkedPage(rgbHeader(40, 60), 5);
  RasterPage refused = page;
  refused.header.cupsBytesPerLine = 1;
  std::vector<Bytes> streams = {rawStream({page, refused})};
  for (const cups_mode_t mode :
       {CUPS_RASTER_WRITE, CUPS_RASTER_WRITE_COMPRESSED, CUPS_RASTER_WRITE_PWG}) {
    const Bytes whole = rasterStream({page, page}, mode);
    for (const size_t cut : {size_t{3}, size_t{700}, whole.size() / 2, whole.size() - 1900}) {
      streams.emplace_back(whole.begin(), whole.end() - static_cast<ptrdiff_t>(cut));
      Bytes damaged = whole;
      for (size_t i = damaged.size() - cut; i < damaged.size(); i += 5) damaged[i] ^= 0xA5U;
      streams.push_back(damaged);
    }
  }
  for (size_t i = 0; i < streams.size(); ++i) {
    EXPECT_EQ(runJob({}, streams[i]).status, 0) << i;
    EXPECT_EQ(logMessages().back(), "EndDocOemPDEV finished") << i;
  }
}

TEST(HostileHeaders, RandomHeadersAndDataAreSafe) {
  std::mt19937 random(11);
  for (int round = 0; round < 60; ++round) {
    RasterPage page = inkedPage(rgbHeader(20, 30), 1);
    auto* words = reinterpret_cast<unsigned*>(&page.header.AdvanceDistance);
    const size_t count = (sizeof page.header - offsetof(cups_page_header2_t, AdvanceDistance)) / 4;
    for (int i = 0; i < 5; ++i) {
      const size_t at = random() % (i % 2 == 0 ? 32 : 60);
      if (at < count)
        words[at] = static_cast<unsigned>(random() % 2 == 0 ? random() : random() % 300);
    }
    page.header.NumCopies = 1;
    page.header.cupsHeight %= 5000;
    page.header.cupsWidth %= 5000;
    expectSafe(runJob({}, rawStream({page, page})), "round " + std::to_string(round));
  }
}

}  // namespace
}  // namespace velka::testing
