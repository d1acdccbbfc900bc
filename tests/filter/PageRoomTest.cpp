// A page's memory in the device record.
#include <gtest/gtest.h>

#include <algorithm>

#include "RasterPage.h"

namespace velka::testing {
namespace {

constexpr uint64_t kMost = uint64_t{1} << 30U;

TEST(PageRoom, IsOfWholeRowsUntilThePageIsDropped) {
  _OEMPDEV pdev = {};
  ASSERT_EQ(makePage(pdev, {7, 4, 24, kMost}), PageRoom::Had);
  EXPECT_EQ(+pdev.dwBufSize, 24U * 4);
  pdev.dwWhiteRows = 2;
  dropPage(pdev);
  EXPECT_EQ(+pdev.pBufStart, nullptr);
  EXPECT_EQ(+pdev.dwBufSize, 0U);
  EXPECT_EQ(+pdev.dwWhiteRows, 0U);
}

TEST(PageRoom, OfAPageTooLargeIsNone) {
  _OEMPDEV pdev = {};
  pdev.dwBufSize = pdev.dwWhiteRows = 5;
  EXPECT_EQ(makePage(pdev, {20000, 20000, 24, kMost}), PageRoom::TooLarge);
  EXPECT_EQ(+pdev.pBufStart, nullptr);
  EXPECT_EQ(pdev.dwBufSize + pdev.dwWhiteRows, 0U);
}

TEST(PageRoom, IsReplacedByZerosWhereThereIsAny) {
  _OEMPDEV pdev = {};
  EXPECT_EQ(replacePage(pdev, {8, 2, 24, kMost}), PageRoom::Had);
  EXPECT_EQ(+pdev.pBufStart, nullptr);
  ASSERT_EQ(makePage(pdev, {8, 4, 24, kMost}), PageRoom::Had);
  ASSERT_EQ(replacePage(pdev, {8, 2, 24, kMost}), PageRoom::Had);
  EXPECT_EQ(+pdev.dwBufSize, 48U);
  EXPECT_EQ(std::count(pdev.pBufStart, pdev.pBufStart + 48, 0), 48);
  dropPage(pdev);
}

}  // namespace
}  // namespace velka::testing
