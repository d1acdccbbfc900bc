// What the program tells in words: numbers, flaws, differences.
#include <gtest/gtest.h>

#include "ViewProgram.h"
#include "reference/ExpectedStream.h"
#include "support/TestPdf.h"

namespace velka::view {
namespace {

using reference::ExpectedStream;
using testing::FilterResult;
using testing::textOf;

// One line of the numbers, by its key.
std::string numberOf(const std::string& text, const std::string& key) {
  const size_t at = ("\n" + text).find("\n" + key + " ");
  if (at == std::string::npos) return "no line " + key;
  const std::string line = text.substr(at, text.find('\n', at) - at);
  return line.substr(line.find_first_not_of(' ', key.size()));
}

TEST_F(Program, TheNumbersTellMovesAndInkOfThePaper) {
  // 60 x 8 black dots of 1/60 inch and a third as many red ones, on a form of one
  // inch squared; 25.4 mm on and 12.7 mm back.
  const auto job = ExpectedStream()
                       .start(6)
                       .block(0, 0, 60, testing::Bytes(60, 0xFF))
                       .unit(10)
                       .down(360)
                       .down(-180)
                       .toX(0)
                       .block(1, 0, 20, testing::Bytes(20, 0xFF))
                       .formFeed()
                       .end();
  put("job.prn", job.bytes());
  const FilterResult result = run({"--stats", "--width", "25.4", "job.prn"});
  EXPECT_EQ(result.status, 0) << result.errors;
  const std::string said = outputOf(result);
  EXPECT_EQ(numberOf(said, "pages"), "1");
  EXPECT_EQ(numberOf(said, "bands"), "2");
  EXPECT_EQ(numberOf(said, "black dots"), "480");
  EXPECT_EQ(numberOf(said, "red dots"), "160");
  EXPECT_EQ(numberOf(said, "black places"), "480");
  EXPECT_EQ(numberOf(said, "red places"), "160");
  EXPECT_EQ(numberOf(said, "blocks"), "2");
  EXPECT_EQ(numberOf(said, "head passes"), "2");
  EXPECT_EQ(numberOf(said, "paper moves"), "2");
  EXPECT_EQ(numberOf(said, "moved on"), "25.4 mm");
  EXPECT_EQ(numberOf(said, "moved back"), "12.7 mm");
  EXPECT_EQ(numberOf(said, "black ink"), "13.33 % of the paper");
  EXPECT_EQ(numberOf(said, "red ink"), "4.44 % of the paper");
}

TEST_F(Program, APageThatWillNotComeOutAsItWasMeantIsToldInOneLine) {
  // Two bands that share two rows, left of the paper, on a form too short for them.
  const std::vector<uint8_t> column = {0xFF, 0xFF, 0xFF};
  const auto job = ExpectedStream()
                       .start(1)
                       .unit(10)
                       .down(-2)
                       .block(0, 39, 1, column)
                       .unit(10)
                       .down(44)
                       .toX(0)
                       .block(0, 39, 1, column)
                       .unit(10)
                       .down(360)
                       .toX(0)
                       .block(0, 39, 1, column)
                       .formFeed()
                       .end();
  put("job.prn", job.bytes());
  const std::string told =
      "velkaview: job.prn: page 1 (offset 0): 2 rows are printed over others; prints 27.5 mm "
      "beyond its form of 4.2 mm; 1 dot misses the paper\n";
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"job.prn", "--model", "standard"},
        {"--stats", "job.prn", "--model", "standard"}}) {
    const FilterResult result = run(words);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, told);
  }
}

TEST_F(Program, OneBadPageSpoilsNoOther) {
  // Far to the right, in an odd unit: 255/3600 inch.
  const auto bad = ExpectedStream().start(6).unit(255).add({0x1B, '$', 0xFF, 0xFF});
  const auto job = onePage().add(bad).block(0, 39, 1, {0x80, 0, 0}).formFeed().add(onePage()).end();
  put("job.prn", job.bytes());
  const FilterResult result = run({"job.prn", "--width", "25.4", "--page", "1"});
  EXPECT_EQ(result.status, 0) << result.errors;
  const std::string alone = textOf("job-1.png");
  const FilterResult all = run({"job.prn"});
  EXPECT_EQ(all.status, 1);
  EXPECT_NE(all.errors.find("page 2 (offset"), std::string::npos) << all.errors;
  EXPECT_TRUE(isThere("job-1.png"));
  EXPECT_FALSE(isThere("job-2.png"));
  EXPECT_TRUE(isThere("job-3.png"));
  put("good.prn", onePage().end().bytes());
  EXPECT_EQ(run({"good.prn", "--width", "25.4"}).status, 0);
  EXPECT_EQ(textOf("good-1.png"), alone);
}

TEST_F(Program, TellsTheDifferenceOfTwoStreams) {
  put("a.prn", onePage().end().bytes());
  put("b.prn", onePage().add(onePage()).end().bytes());
  const FilterResult result = run({"--diff", "a.prn", "b.prn"});
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(outputOf(result),
            "pages: 1 in the first, 2 in the second\n"
            "page 1: black dots: 1 the same, 0 only in the first, 0 only in the second\n"
            "page 1: red dots: 0 the same, 0 only in the first, 0 only in the second\n"
            "page 1: places in the other ink: 0\n"
            "page 2: black dots: 0 the same, 0 only in the first, 1 only in the second\n"
            "page 2: red dots: 0 the same, 0 only in the first, 0 only in the second\n"
            "page 2: places in the other ink: 0\n"
            "all: black dots: 1 the same, 0 only in the first, 1 only in the second\n"
            "all: red dots: 0 the same, 0 only in the first, 0 only in the second\n"
            "all: places in the other ink: 0\n");
  EXPECT_TRUE(isThere("a-b-diff-2.png"));
}

TEST_F(Program, TellsTheDifferenceInToneOnRequest) {
  put("a.prn", onePage().end().bytes());
  put("b.prn", onePage().end().bytes());
  const FilterResult result = run({"--diff", "--tone", "a.prn", "b.prn", "-o", "x.png"});
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(outputOf(result),
            "pages: 1 in the first, 1 in the second\n"
            "page 1: black tone: 0.00 % and 0.00 % of the paper, fields differ by 0.00 % on "
            "average, 0.00 % at most\n"
            "page 1: red tone: 0.00 % and 0.00 % of the paper, fields differ by 0.00 % on "
            "average, 0.00 % at most\n"
            "all: black tone: 0.00 % and 0.00 % of the paper, fields differ by 0.00 % on "
            "average, 0.00 % at most\n"
            "all: red tone: 0.00 % and 0.00 % of the paper, fields differ by 0.00 % on "
            "average, 0.00 % at most\n");
  EXPECT_TRUE(isThere("x.png"));
}

TEST_F(Program, AfterAnErrorADifferenceHasNoTotals) {
  put("a.prn", onePage().end().bytes());
  put("b.prn", onePage().add({'x'}).bytes());
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"--diff", "a.prn", "b.prn"},
        {"--diff", "--tone", "a.prn", "b.prn"},
        {"--diff", "a.prn", "a.prn", "-o", "/nowhere/x.png"}}) {
    const FilterResult result = run(words);
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(outputOf(result).find("page 1: "), std::string::npos);
    EXPECT_EQ(outputOf(result).find("all: "), std::string::npos) << outputOf(result);
  }
}

}  // namespace
}  // namespace velka::view
