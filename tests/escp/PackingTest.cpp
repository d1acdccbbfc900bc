// Blocks of single bands, against the literal reference and by hand.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <random>

#include "ESCPSML.h"
#include "escp/LoadedPlanes.h"
#include "reference/ReferenceEncoder.h"
#include "support/Capture.h"

namespace velka::testing {
namespace {

reference::Separation randomPlanes(std::mt19937& random, int width, int height, unsigned oneIn) {
  reference::Separation planes;
  planes.width = width;
  planes.height = height;
  for (Bytes* plane : {&planes.black, &planes.red}) {
    plane->resize(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (uint8_t& byte : *plane) byte = random() % oneIn == 0 ? 0 : 255;
  }
  return planes;
}

struct BlockCall {
  Bytes command;
  unsigned int skip = 0;
  bool succeeded = false;
};

BlockCall blockOf(CESCPSML& generator, _RECTL area, short colour, unsigned short bytesPerColumn,
                  float divisor, int pass) {
  BlockCall call;
  unsigned char* command = nullptr;
  unsigned int length = 0;
  call.succeeded = generator.GetBlockDataCmd(0x27, bytesPerColumn, area, colour, command, &length,
                                             &call.skip, divisor, pass);
  call.command.assign(command, command + length);
  std::free(command);
  return call;
}

TEST(BlockPacking, DropsOneColumnAndOnlyTheFirstLeadingBlankOne) {
  // Ten columns: two blank, five with dots, three blank.
  reference::Separation planes;
  planes.width = 10;
  planes.height = 24;
  planes.black.assign(240, 255);
  planes.red.assign(240, 255);
  for (size_t x = 2; x < 7; ++x) planes.black[x] = 0;
  CESCPSML generator;
  load(generator, planes);
  const BlockCall call = blockOf(generator, {0, 0, 9, 23}, 1, 3, 3.0F, 0);
  ASSERT_TRUE(call.succeeded);
  EXPECT_EQ(call.skip, 0U);
  Bytes expected = {0x1B, 'r', 0, 0x1B, '*', 0x27, 6, 0};
  for (const uint8_t top : Bytes{0x00, 0x00, 0x80, 0x80, 0x80, 0x80})
    expected.insert(expected.end(), {top, 0, 0});
  EXPECT_EQ(call.command, expected);
}

TEST(BlockPacking, TopmostDotIsTheMostSignificantBit) {
  reference::Separation planes;
  planes.width = 2;
  planes.height = 24;
  planes.black.assign(48, 255);
  planes.red.assign(48, 255);
  for (const size_t row : {size_t{0}, size_t{7}, size_t{8}, size_t{23}}) planes.red[row * 2] = 0;
  CESCPSML generator;
  load(generator, planes);
  const BlockCall call = blockOf(generator, {0, 0, 1, 23}, 2, 3, 3.0F, 0);
  EXPECT_EQ(call.command, (Bytes{0x1B, 'r', 1, 0x1B, '*', 0x27, 0, 0}));
  const BlockCall wider = blockOf(generator, {0, 0, 2, 23}, 2, 3, 3.0F, 0);
  EXPECT_EQ(wider.command.size(), 8U + 3U);
  EXPECT_EQ(Bytes(wider.command.begin() + 8, wider.command.end()), (Bytes{0x81, 0x80, 0x01}));
}

TEST(BlockPacking, ABandPastTheLastRowLosesAllItsColumns) {
  std::mt19937 random(5);
  CESCPSML generator;
  load(generator, randomPlanes(random, 30, 23, 2));
  EXPECT_EQ(blockOf(generator, {0, 0, 29, 23}, 1, 3, 3.0F, 0).command, Bytes{});
}

TEST(BlockPacking, AnUnknownColourFails) {
  CESCPSML generator;
  EXPECT_FALSE(blockOf(generator, {0, 0, 9, 23}, 3, 3, 3.0F, 0).succeeded);
  EXPECT_FALSE(blockOf(generator, {0, 0, 9, 23}, 0, 3, 3.0F, 0).succeeded);
}

TEST(BlockPacking, WithoutPlanesThereIsNoData) {
  CESCPSML generator;
  const BlockCall call = blockOf(generator, {0, 0, 9, 23}, 1, 3, 3.0F, 0);
  EXPECT_TRUE(call.succeeded);
  EXPECT_EQ(call.command, Bytes{});
}

TEST(BlockPacking, HostileRectanglesStayInsideThePlane) {
  std::mt19937 random(6);
  const reference::Separation planes = randomPlanes(random, 20, 30, 2);
  CESCPSML generator;
  load(generator, planes);
  constexpr int kMost = 2147483647;
  for (const _RECTL area : {_RECTL{5, 0, 2, 23}, _RECTL{0, -10, 19, 13}, _RECTL{0, kMost, 9, kMost},
                            _RECTL{0, 20, 9, -5}, _RECTL{kMost - 3, 0, kMost, 23}})
    EXPECT_TRUE(blockOf(generator, area, 1, 3, 3.0F, 1).succeeded);
}

TEST(BlockPacking, EqualsTheReferenceOnRandomBands) {
  std::mt19937 random(7);
  for (int round = 0; round < 4000; ++round) {
    const int width = 1 + static_cast<int>(random() % 40);
    const int height = 1 + static_cast<int>(random() % 120);
    const auto planes = randomPlanes(random, width, height, random() % 3 == 0 ? 2 : 300);
    CESCPSML generator;
    load(generator, planes);
    const int top = static_cast<int>(random() % static_cast<unsigned>(height));
    const int left = static_cast<int>(random() % 5);
    const int rows = random() % 2 == 0 ? 24 : (random() % 2 == 0 ? 48 : 30);
    // Some rectangles pass the plane's right edge.
    const int right = width - 1 + static_cast<int>(random() % 4 == 0 ? random() % 5 : 0);
    const _RECTL area = {left, top, right, top + rows - 1};
    if (right < left) continue;
    const auto bytes =
        static_cast<unsigned short>(rows == 48 ? 3 : std::array{0, 1, 3, 9}[random() % 4]);
    const float divisor = std::array{0.5F, 1.0F, 4.0F / 3.0F, 3.0F, 6.0F}[random() % 5];
    const int pass = static_cast<int>(random() % 3);
    for (const short colour : {short{1}, short{2}}) {
      const auto expected =
          reference::packBlock(planes, area, colour, {bytes, 0x27}, divisor, pass);
      const BlockCall call = blockOf(generator, area, colour, bytes, divisor, pass);
      ASSERT_TRUE(call.succeeded);
      ASSERT_EQ(call.command, expected.command) << "round " << round;
      ASSERT_EQ(call.skip, expected.leadingSkip) << "round " << round;
    }
  }
}

TEST(BlockPacking, WritesIntoAGivenBuffer) {
  std::mt19937 random(8);
  CESCPSML generator;
  load(generator, randomPlanes(random, 12, 24, 2));
  _RECTL area = {0, 0, 11, 23};
  Bytes room(8 + 36, 0xEE);
  unsigned char* command = room.data();
  unsigned int length = 0;
  unsigned int skip = 0;
  ASSERT_TRUE(generator.GetBlockDataCmd(0x27, 3, area, 1, command, &length, &skip, 3.0F, 0));
  EXPECT_EQ(command, room.data());
  EXPECT_EQ(Bytes(room.begin(), room.begin() + length),
            blockOf(generator, area, 1, 3, 3.0F, 0).command);
}

}  // namespace
}  // namespace velka::testing
