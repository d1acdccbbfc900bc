// The command builders of the public surface, and the command at the end of a page.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "escp/PageFixture.h"
#include "reference/ReferenceCommands.h"
#include "support/Capture.h"

namespace velka::testing {
namespace {

// A builder's three pointer arguments over a buffer that is freed at the end.
struct Output {
  unsigned char* buffer = nullptr;
  unsigned int capacity = 0;
  unsigned int length = 99;

  Output() = default;
  explicit Output(unsigned int room) : capacity(room) {
    buffer = static_cast<unsigned char*>(std::calloc(room + 1, 1));
  }
  ~Output() { std::free(buffer); }
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  [[nodiscard]] Bytes bytes() const { return {buffer, buffer + length}; }
};

Bytes relativeMove(short ydpi, int dy) {
  CESCPSML generator;
  Output out;
  EXPECT_TRUE(generator.GetRelativeYMoveCmd(ydpi, dy, &out.buffer, &out.capacity, &out.length));
  EXPECT_EQ(out.capacity, out.length);
  return out.bytes();
}

Bytes horizontal(short kind, float divisor, int x) {
  CESCPSML generator;
  Output out;
  EXPECT_TRUE(generator.GetXMoveCmd(kind, divisor, x, &out.buffer, &out.capacity, &out.length));
  return out.bytes();
}

TEST(Builders, SetUnitSendsTheLowByteOfTheUnit) {
  CESCPSML generator;
  Output out;
  EXPECT_TRUE(generator.GetSetUnitCmd(266, &out.buffer, &out.capacity, &out.length));
  EXPECT_EQ(out.bytes(), (Bytes{0x1B, '(', 'U', 1, 0, 10}));
  EXPECT_EQ(out.capacity, 6U);
}

TEST(Builders, NoVerticalDistanceYieldsNoBytesButSuccess) {
  EXPECT_EQ(relativeMove(360, 0), Bytes{});
}

TEST(Builders, LessThanOneUnitYieldsNoBytes) {
  EXPECT_EQ(relativeMove(720, 1), Bytes{});
}

TEST(Builders, ThreeHundredRowsAt360AreOneCommand) {
  EXPECT_EQ(relativeMove(360, 300), (Bytes{0x0D, 0x1B, '(', 'v', 2, 0, 0x2C, 0x01}));
}

TEST(Builders, ALongMoveOverlapsItsCommands) {
  const Bytes commands = {0x0D, 0x1B, '(', 'v', 0x1B, '(', 'v',  0x1B, '(',
                          'v',  0x1B, '(', 'v', 2,    0,   0xA3, 0x06};
  Bytes expected(29, 0);
  std::ranges::copy(commands, expected.begin());
  EXPECT_EQ(relativeMove(360, 100000), expected);
}

TEST(Builders, ALongBackwardMoveSendsItsWholeRestUnclamped) {
  EXPECT_EQ(relativeMove(360, -40000),
            (Bytes{0x0D, 0x1B, '(', 'v', 0x1B, '(', 'v', 2, 0, 0xBF, 0xE3, 0, 0, 0, 0}));
}

TEST(Builders, AnImpossibleResolutionMovesNothing) {
  EXPECT_EQ(relativeMove(0, 100), Bytes{});
  EXPECT_EQ(relativeMove(-180, 100), Bytes{});
}

TEST(Builders, TheLongestDistancesStayDefined) {
  const Bytes most = relativeMove(1, std::numeric_limits<int>::max());
  EXPECT_EQ(most.size(), 7U * 65539 + 1);
  EXPECT_EQ(relativeMove(1, std::numeric_limits<int>::min()).size(), most.size());
}

TEST(Builders, HorizontalPositionIsTruncatedTo60ths) {
  EXPECT_EQ(horizontal(1, 6.0F, 1000), (Bytes{0x1B, '$', 166, 0}));
  EXPECT_EQ(horizontal(2, 6.0F, -1000), (Bytes{0x1B, '\\', 0x5A, 0xFF}));
}

TEST(Builders, HorizontalDivisionIsSinglePrecision) {
  const float divisor = 80.0F / 60.0F;
  for (int x = 0; x < 3000; ++x)
    EXPECT_EQ(horizontal(1, divisor, x), *reference::xMove(1, divisor, x)) << x;
}

TEST(Builders, ADivisorOfZeroIsSafe) {
  EXPECT_EQ(horizontal(1, 0.0F, 0), (Bytes{0x1B, '$', 0, 0}));
  EXPECT_EQ(horizontal(1, 0.0F, 5).size(), 4U);
}

TEST(Builders, AnUnknownKindOfMoveFailsWithItsBufferAllocated) {
  CESCPSML generator;
  Output out;
  EXPECT_FALSE(generator.GetXMoveCmd(3, 1.0F, 5, &out.buffer, &out.capacity, &out.length));
  EXPECT_NE(out.buffer, nullptr);
}

TEST(Builders, TheCheckingOnesReportTheNeedAndWriteNothing) {
  CESCPSML generator;
  Output unit(5);
  EXPECT_FALSE(generator.GetSetUnitCmd(10, &unit.buffer, &unit.capacity, &unit.length));
  EXPECT_EQ(unit.length, 6U);
  EXPECT_EQ(unit.capacity, 5U);
  EXPECT_EQ(unit.buffer[0], 0);

  Output move(7);
  EXPECT_FALSE(generator.GetRelativeYMoveCmd(360, 300, &move.buffer, &move.capacity, &move.length));
  EXPECT_EQ(move.length, 8U);
  EXPECT_EQ(move.buffer[0], 0);

  Output advance(3);
  EXPECT_FALSE(
      generator.GetAdvancesYMoveCmd(180, 10, &advance.buffer, &advance.capacity, &advance.length));
  EXPECT_EQ(advance.length, 4U);
}

TEST(Builders, AnEmptyMoveStillNeedsOneByteOfRoom) {
  CESCPSML generator;
  Output out(0);
  EXPECT_FALSE(generator.GetRelativeYMoveCmd(360, 0, &out.buffer, &out.capacity, &out.length));
  EXPECT_EQ(out.length, 1U);
}

TEST(Builders, TheFixedOnesDoNotLookAtTheCapacity) {
  CESCPSML generator;
  Output out(8);
  out.capacity = 0;
  EXPECT_TRUE(generator.GetXMoveCmd(1, 1.0F, 5, &out.buffer, &out.capacity, &out.length));
  EXPECT_EQ(out.bytes(), (Bytes{0x1B, '$', 5, 0}));
  out.capacity = 0;
  EXPECT_TRUE(generator.GetEndPageCmd(&out.buffer, &out.capacity, &out.length));
  EXPECT_EQ(out.bytes(), Bytes{0x0C});
  EXPECT_EQ(out.capacity, 1U);
}

TEST(Builders, MissingPointersFail) {
  CESCPSML generator;
  Output out;
  EXPECT_FALSE(generator.GetSetUnitCmd(10, nullptr, &out.capacity, &out.length));
  EXPECT_FALSE(generator.GetSetUnitCmd(10, &out.buffer, nullptr, &out.length));
  EXPECT_FALSE(generator.GetEndPageCmd(&out.buffer, &out.capacity, nullptr));
}

Bytes advance(short ydpi, int dy) {
  CESCPSML generator;
  Output out;
  EXPECT_TRUE(generator.GetAdvancesYMoveCmd(ydpi, dy, &out.buffer, &out.capacity, &out.length));
  return out.bytes();
}

TEST(Builders, AdvanceGoesInStepsOf255) {
  EXPECT_EQ(advance(180, 255), (Bytes{0x0D, 0x1B, 'J', 255}));
  EXPECT_EQ(advance(180, 256), (Bytes{0x0D, 0x1B, 'J', 255, 0x1B, 'J', 1}));
  EXPECT_EQ(advance(180, 510), (Bytes{0x0D, 0x1B, 'J', 255, 0x1B, 'J', 255}));
}

TEST(Builders, AdvanceWritesItsReturnEvenForNoDistance) {
  EXPECT_EQ(advance(180, 0), Bytes{0x0D});
  EXPECT_EQ(advance(0, 7), Bytes{0x0D});
  EXPECT_EQ(advance(180, -1000), Bytes{0x0D});
}

TEST(EjectMode, CyclesOverThePages) {
  Job job(8, 8, 180, 180);
  job.options.sEjectMode = 2;
  Bytes parameters;
  for (uint32_t page = 1; page <= 6; ++page) {
    job.pdev.dwCurPageNum = page;
    Output out;
    EXPECT_TRUE(
        job.pdev.pEscpSml->GetEjectModeCmd(&job.devobj, &out.buffer, &out.capacity, &out.length));
    parameters.push_back(out.bytes().at(3));
  }
  EXPECT_EQ(parameters, (Bytes{'0', '0', '1', '0', '0', '1'}));
}

Bytes ejectModeSent(Job& job) {
  const Capture capture(STDOUT_FILENO);
  EXPECT_TRUE(job.pdev.pEscpSml->SendEjectModeCmd(&job.devobj));
  return capture.bytes();
}

TEST(EjectMode, EqualsTheReferenceForAnyRule) {
  Job job(8, 8, 180, 180);
  for (int mode = -1; mode <= 7; ++mode) {
    for (const auto& [a, b] : std::vector<std::pair<int, int>>{{2, 1},
                                                               {1, 2},
                                                               {0, 3},
                                                               {3, 0},
                                                               {1, -1},
                                                               {-5, 2},
                                                               {-200, 1},
                                                               {1, -200},
                                                               {32767, 32767}}) {
      job.options.sEjectMode = static_cast<int16_t>(mode);
      job.options.sEjectFirstCount = static_cast<int16_t>(a);
      job.options.sEjectSecondCount = static_cast<int16_t>(b);
      for (const uint32_t page : {1U, 2U, 3U, 4U, 40000U, 70000U, 4294967295U}) {
        job.pdev.dwCurPageNum = page;
        EXPECT_EQ(ejectModeSent(job), reference::ejectMode(job.options, page))
            << mode << " " << a << "+" << b << " page " << page;
      }
    }
  }
}

TEST(EjectMode, FourIsSuccessWithoutACommand) {
  Job job(8, 8, 180, 180);
  Output out;
  EXPECT_TRUE(
      job.pdev.pEscpSml->GetEjectModeCmd(&job.devobj, &out.buffer, &out.capacity, &out.length));
  EXPECT_EQ(out.length, 0U);
}

TEST(GrowingMemory, GrowsByExactlyTheExtraAndFillsItWithTheLowByte) {
  CESCPSML generator;
  unsigned char* buffer = nullptr;
  unsigned int size = 0;
  ASSERT_TRUE(generator.GrowBMPMem(&buffer, &size, 3, 0x1FF));
  EXPECT_EQ(size, 3U);
  EXPECT_EQ(buffer[2], 0xFF);
  buffer[0] = 7;
  ASSERT_TRUE(generator.GrowBMPMem(&buffer, &size, 2, 0));
  EXPECT_EQ(Bytes(buffer, buffer + size), (Bytes{7, 0xFF, 0xFF, 0, 0}));
  std::free(buffer);
}

TEST(GrowingMemory, PassingThirtyTwoBitsLeavesEverythingUnchanged) {
  CESCPSML generator;
  auto* buffer = static_cast<unsigned char*>(std::malloc(4));
  unsigned char* const before = buffer;
  unsigned int size = 4;
  EXPECT_FALSE(generator.GrowBMPMem(&buffer, &size, 0xFFFFFFFE, 0));
  EXPECT_EQ(buffer, before);
  EXPECT_EQ(size, 4U);
  EXPECT_FALSE(generator.GrowBMPMem(nullptr, &size, 1, 0));
  std::free(buffer);
}

TEST(Modes, EqualTheReferenceTableForAnyPair) {
  for (const int pins : {8, 24, 48, 72, 0, -1}) {
    for (const int y : {0, 60, 75, 90, 120, 180, 360, 720, -180}) {
      for (const int x : {0, 60, 75, 80, 90, 120, 180, 360, 720}) {
        const auto expected = reference::bitImageMode(pins, y, x);
        const auto got = velka::standardBitImageMode(
            static_cast<int16_t>(pins), static_cast<int16_t>(y), static_cast<int16_t>(x));
        ASSERT_EQ(got.has_value(), expected.has_value()) << pins << " " << y << " " << x;
        if (!expected) continue;
        EXPECT_EQ(got->bytesPerColumn, expected->bytesPerColumn);
        EXPECT_EQ(got->mode, expected->mode);
      }
    }
  }
}

}  // namespace
}  // namespace velka::testing
