// Lines and turned pages at every level.
#include <cstdlib>

#include "BmpProcessing.h"
#include "RasterLines.h"
#include "levels/Levels.h"

namespace velka::testing {
namespace {

TEST(Levels, LinesOfEveryLengthAreStoredAlike) {
  std::mt19937 random(6);
  for (size_t length = 0; length <= 200; ++length) {
    const Bytes line = content(random, length, 7);
    expectSame(
        [&] {
          Bytes row(length + 5, 0x77);
          storeLine(line, row, static_cast<uint32_t>(length / 3));
          return row;
        },
        std::to_string(length) + " bytes");
  }
}

TEST(Levels, PagesOfEverySmallShapeAreTurnedAlike) {
  std::mt19937 random(7);
  for (int64_t width = 1; width <= 80; width += width < 20 ? 1 : 7) {
    for (int64_t height = 1; height <= 80; height += height < 20 ? 1 : 9) {
      const auto stride = static_cast<size_t>((width * 24 + 31) / 32 * 4);
      Bytes page(stride * static_cast<size_t>(height));
      for (uint8_t& byte : page) byte = static_cast<uint8_t>(random());
      for (const int rotation : {1, 2, 3}) {
        expectSame(
            [&] {
              unsigned char* turned = nullptr;
              int64_t size = 0;
              int64_t turnedWidth = 0;
              int64_t turnedHeight = 0;
              EXPECT_TRUE(CBmpProcessing().RotateImg(page.data(), width, height, &turned, &size,
                                                     &turnedWidth, &turnedHeight, 24, rotation));
              Bytes bytes(turned, turned + size);
              std::free(turned);
              return bytes;
            },
            std::to_string(width) + "x" + std::to_string(height) + " turned " +
                std::to_string(rotation));
      }
    }
  }
}

TEST(Level, IsNeverAboveTheHighest) {
  const AtLevel forced(CpuLevel::Avx2);
  EXPECT_LE(cpuLevel(), highestCpuLevel());
  forceCpuLevel(CpuLevel::Plain);
  EXPECT_EQ(cpuLevel(), CpuLevel::Plain);
}

}  // namespace
}  // namespace velka::testing
