// A third plane, which no page fills but whoever calls may: halftoned by itself and merged
// into the black one.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "CommandBuffer.h"
#include "escp/PageFixture.h"
#include "reference/ReferenceHalftone.h"

namespace velka::testing {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kColumns = 24;
constexpr uint32_t kRows = 40;

Bytes randomGreys() {
  std::mt19937 random(7);
  Bytes greys(size_t{kColumns} * kRows);
  std::generate(greys.begin(), greys.end(), [&] { return static_cast<uint8_t>(random()); });
  return greys;
}

// One black row on white paper.
reference::SourceBitmap oneBlackRow() {
  reference::SourceBitmap page;
  page.height = kRows;
  page.bytes.assign(size_t{kColumns} * 3 * kRows, 0xFF);
  std::fill_n(page.bytes.begin() + ptrdiff_t{5} * kColumns * 3, kColumns * 3, uint8_t{0});
  return page;
}

// Records as the dispatcher leaves them for an upright page, and a third plane.
struct ThreePlanes {
  ThreePlanes(uint32_t dpi, const Bytes& greys) : job(kColumns, kRows, dpi, dpi) {
    job.setPage(oneBlackRow(), 1);
    job.pdev.bmInfoHeaderOut = job.pdev.bmInfoHeader;
    job.pdev.dwBytesPerLineOut = kColumns * 3;
    job.pdev.devModeOut = job.mode;
    job.pdev.pBufStartOut = job.pdev.pBufStart;
    job.pdev.pBufStart = nullptr;
    job.pdev.dwBufSizeOut = job.pdev.dwBufSize;
    generator.m_pImgBuf = static_cast<unsigned char*>(std::malloc(greys.size()));
    std::copy(greys.begin(), greys.end(), generator.m_pImgBuf);
    generator.m_dwImgSize = static_cast<unsigned int>(greys.size());
    generator.m_nImgFlag = 1;
  }
  Bytes black() {
    EXPECT_TRUE(generator.MakePlanes(&job.devobj, false));
    Bytes plane(generator.m_pBlackBuf, generator.m_pBlackBuf + generator.m_dwBlackSize);
    generator.ReleasePlanes();
    EXPECT_EQ(generator.m_pImgBuf, nullptr);
    EXPECT_EQ(generator.m_dwImgSize, 0U);
    return plane;
  }

  Job job;
  CESCPSML& generator = *job.pdev.pEscpSml;
};

// The plane as it is merged, below the page's own row.
Bytes withTheRow(Bytes plane) {
  std::fill_n(plane.begin() + ptrdiff_t{5} * kColumns, kColumns, uint8_t{0});
  return plane;
}

void expectMerged(uint32_t dpi, int screen) {
  Bytes greys = randomGreys();
  const Bytes merged = ThreePlanes(dpi, greys).black();
  EXPECT_EQ(merged, withTheRow(reference::dither(screen, greys, kRows, kColumns, kColumns, 0, 0)));
}

TEST(ImagePlane, IsMergedByTheSmallestScreenAt180Dpi) {
  expectMerged(180, 3);
}

TEST(ImagePlane, IsMergedByTheThirdScreenElsewhere) {
  expectMerged(360, 5);
}

TEST(ImagePlane, ThatIsSmallerThanThePageIsLeftOut) {
  const Bytes black = ThreePlanes(180, Bytes(10)).black();
  EXPECT_EQ(black, withTheRow(Bytes(size_t{kColumns} * kRows, 0xFF)));
}

TEST(IncompleteRecords, SendNothing) {
  CESCPSML generator;
  _DEVOBJ empty = {};
  CommandBuffer commands;
  unsigned char* buffer = nullptr;
  unsigned int capacity = 0;
  unsigned int length = 0;
  EXPECT_TRUE(generator.SendCollatedCopies(nullptr));
  EXPECT_FALSE(generator.GetEjectModeCmd(&empty, &buffer, &capacity, &length));
  EXPECT_FALSE(generator.SendPageCommands(&empty, commands));
  EXPECT_FALSE(generator.MakePlanes(&empty, false));
  EXPECT_EQ(buffer, nullptr);
}

TEST(IncompleteRecords, HaveNoEjectModeWithoutAPlaceForIt) {
  Job job(8, 8, 180, 180);
  unsigned int capacity = 0;
  unsigned int length = 0;
  EXPECT_FALSE(job.pdev.pEscpSml->GetEjectModeCmd(&job.devobj, nullptr, &capacity, &length));
}

}  // namespace
}  // namespace velka::testing
