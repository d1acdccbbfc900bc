// Separation at every level.
#include "Separation.h"
#include "levels/Levels.h"
#include "reference/ReferenceOptions.h"

namespace velka::testing {
namespace {

bool operator==(const RowInk& a, const RowInk& b) {
  return a.black == b.black && a.firstRedColumn == b.firstRedColumn &&
         a.lastRedColumn == b.lastRedColumn && a.firstBlackColumn == b.firstBlackColumn &&
         a.lastBlackColumn == b.lastBlackColumn;
}

struct SeparatedRow {
  Bytes black;
  Bytes red;
  RowInk ink;

  friend bool operator==(const SeparatedRow& a, const SeparatedRow& b) {
    return a.black == b.black && a.red == b.red && velka::testing::operator==(a.ink, b.ink);
  }
};

SeparatedRow separated(const InkRules& rules, const Bytes& pixels) {
  const size_t width = pixels.size() / 3;
  SeparatedRow row = {Bytes(width + 1, 77), Bytes(width + 1, 78), {}};
  row.ink = separateRow(rules, pixels, row.black.data(), row.red.data());
  return row;
}

void expectSameRow(const InkRules& rules, const Bytes& pixels) {
  const auto at = [&](CpuLevel level) {
    const AtLevel forced(level);
    return separated(rules, pixels);
  };
  const SeparatedRow plain = at(CpuLevel::Plain);
  for (const CpuLevel level : fasterLevels())
    ASSERT_TRUE(at(level) == plain) << pixels.size() << " bytes";
}

TEST(Levels, EveryColourGetsTheSameInkAndValue) {
  tagOEMCFG options = reference::defaultOptions();
  for (const int16_t brightness : {int16_t{0}, int16_t{35}}) {
    options.BrightnessBlack = brightness;
    const InkRules rules = compileInkRules(options);
    for (uint32_t first = 0; first < 1U << 24 && !HasFatalFailure(); first += 4096 * kColourStep) {
      Bytes pixels;
      for (uint32_t colour = first; colour < first + 4096; ++colour) {
        pixels.push_back(static_cast<uint8_t>(colour));
        pixels.push_back(static_cast<uint8_t>(colour >> 8U));
        pixels.push_back(static_cast<uint8_t>(colour >> 16U));
      }
      expectSameRow(rules, pixels);
    }
  }
}

tagRGBQUAD anyColour(std::mt19937& random) {
  return {static_cast<uint8_t>(random()), static_cast<uint8_t>(random()),
          static_cast<uint8_t>(random()), 0};
}

InkRules randomRules(std::mt19937& random) {
  const auto small = [&](int range) {
    return static_cast<int>(below(random, static_cast<unsigned>(range)));
  };
  ColourRouting routing = {static_cast<int>(below(random, 5)), static_cast<int>(below(random, 4)),
                           anyColour(random), anyColour(random), anyColour(random)};
  if (below(random, 2) == 0) routing.outputColorType = 3;
  if (below(random, 2) == 0) routing.rangeLow = {0, 0, 130, 0};
  if (below(random, 2) == 0) routing.rangeHigh = {255, 255, 255, 0};
  return {routing, InkTone{small(200), small(200), small(300)},
          InkTone{small(200), small(200), small(300)}};
}

// Runs of any colour, of the solid one, of near greys, of light colours and white.
Bytes randomPixels(std::mt19937& random, size_t pixels) {
  Bytes bytes;
  const unsigned longest = 1 + below(random, 30);
  while (bytes.size() < pixels * 3) {
    const auto grey = static_cast<uint8_t>(random());
    uint8_t colour[3] = {grey, grey, grey};
    const unsigned kind = below(random, 6);
    for (uint8_t& byte : colour) {
      if (kind == 0) byte = static_cast<uint8_t>(random());
      if (kind == 1) byte = static_cast<uint8_t>(byte + below(random, 12));
      if (kind == 2) byte = static_cast<uint8_t>(190 + below(random, 66));
      if (kind == 3) byte = 255;
      if (kind == 4) byte = 0;
    }
    for (unsigned n = 1 + below(random, longest); n > 0; --n)
      bytes.insert(bytes.end(), colour, colour + 3);
  }
  bytes.resize(pixels * 3);
  return bytes;
}

// A surface whose colour wanders, as a camera sees it: each channel with noise of its own,
// so that the ink changes from pixel to pixel near the borders of the rules.
Bytes photographedPixels(std::mt19937& random, size_t pixels) {
  const int noise = 1 + static_cast<int>(below(random, 25));
  int colour[3] = {static_cast<int>(below(random, 256)), static_cast<int>(below(random, 256)),
                   static_cast<int>(below(random, 256))};
  if (below(random, 3) == 0) colour[0] = colour[1] = colour[2];
  Bytes bytes;
  while (bytes.size() < pixels * 3) {
    for (int& level : colour) {
      bytes.push_back(asPhotographed(random, level, noise));
      level = std::clamp(level + static_cast<int>(below(random, 9)) - 4, -20, 275);
    }
  }
  return bytes;
}

TEST(Levels, PhotographedRowsAreSeparatedAlike) {
  std::mt19937 random(10);
  for (unsigned round = 0; round < kRounds / 20 && !HasFatalFailure(); ++round) {
    const InkRules rules =
        round % 2 == 0 ? compileInkRules(reference::defaultOptions()) : randomRules(random);
    for (int row = 0; row < 8; ++row)
      expectSameRow(rules, photographedPixels(random, below(random, 700)));
  }
}

// Several rounds of steps, some with no ink at all.
TEST(Levels, LongRowsWithGapsAreSeparatedAlike) {
  std::mt19937 random(11);
  for (unsigned round = 0; round < kRounds / 20 && !HasFatalFailure(); ++round) {
    const InkRules rules = randomRules(random);
    Bytes pixels;
    for (unsigned part = 1 + below(random, 6); part > 0; --part) {
      pixels.insert(pixels.end(), 3 * size_t{below(random, 400)}, 255);
      const Bytes run = randomPixels(random, below(random, 200));
      pixels.insert(pixels.end(), run.begin(), run.end());
    }
    expectSameRow(rules, pixels);
  }
}

TEST(Levels, RandomRowsAreSeparatedAlike) {
  std::mt19937 random(5);
  for (unsigned round = 0; round < kRounds / 4 && !HasFatalFailure(); ++round) {
    const InkRules rules = randomRules(random);
    for (int row = 0; row < 8; ++row) expectSameRow(rules, randomPixels(random, below(random, 90)));
  }
}

}  // namespace
}  // namespace velka::testing
