// The digits of a page count, from what the tools leave.
#include <gtest/gtest.h>

#include "PageCount.h"
#include "support/TestPdf.h"

namespace velka::testing {
namespace {

TEST(PageCountFile, HoldsTheDigitsAndALineEnd) {
  EXPECT_EQ(digitsOfPageCountFile("9\n"), 1);
  EXPECT_EQ(digitsOfPageCountFile("12\n"), 2);
  EXPECT_EQ(digitsOfPageCountFile("100\n"), 3);
  EXPECT_EQ(digitsOfPageCountFile(""), -1);
}

TEST(PageCountFile, ALoneLineEndIsNoAnswer) {
  EXPECT_EQ(digitsOfPageCountFile("\n"), std::nullopt);
}

TEST(PageCountFile, DigitsStayWithinOneAndTen) {
  EXPECT_EQ(digitsOfPageCountFile("x"), 1);
  EXPECT_EQ(digitsOfPageCountFile(std::string(256, '1')), 10);
  EXPECT_EQ(digitsOfPagesLine("Pages: 12345678901234567890\n"), 10);
  EXPECT_EQ(digitsOfPagesLine("Pages:\n"), 1);
  EXPECT_EQ(digitsOfPagesLine("Pages:"), 1);
  EXPECT_EQ(digitsOfPagesLine(""), 1);
}

TEST(PagesLine, IsTheLastThatStartsSo) {
  EXPECT_EQ(digitsOfPagesLine("Pages:          12\n"), 2);
  EXPECT_EQ(digitsOfPagesLine("Title: Pages: 1234\nPages:           12\nPage size: 1 x 1\n"), 2);
  EXPECT_EQ(digitsOfPagesLine("Title: a\nPages: 1\nPages:           100\n"), 3);
  EXPECT_EQ(digitsOfPagesLine("Pages:           123"), 3);
}

TEST(PagesLine, GivesTheNumberItself) {
  EXPECT_EQ(pagesOfReport("Title: a\nPages: 1\nPages:           120\n"), 120);
  EXPECT_EQ(pagesOfReport("Pages: 999999999"), 999999999);
  EXPECT_EQ(pagesOfReport("Pages: 1234567890"), std::nullopt);
  EXPECT_EQ(pagesOfReport("Pages: none\n"), std::nullopt);
  EXPECT_EQ(pagesOfReport("Pages:"), std::nullopt);
  EXPECT_EQ(pagesOfReport(""), std::nullopt);
}

}  // namespace
}  // namespace velka::testing
