#include <gtest/gtest.h>

#include "decode/Dots.h"
#include "decode/Flaws.h"
#include "reference/ExpectedStream.h"

namespace velka::decodetest {
namespace {

using decode::Model;
using reference::ExpectedStream;
using Stream = std::vector<uint8_t>;

const Stream kFull = {0xFF, 0xFF, 0xFF};

TEST(PageCheck, WhiteBetweenTwoLinesOfTextIsNoGap) {
  ExpectedStream stream;
  stream.start(66);
  for (const int down : {0, 48, 48, 49, 100, 50, 1000, 48})
    stream.unit(10).down(down).toX(9).block(down % 2, 39, 1, kFull);
  EXPECT_EQ(saidOf(stream.formFeed().bytes()), "");
}

TEST(PageCheck, PrintBeyondTheFormIsToldUnlessItIsLessThanTheLengthIsRoundedBy) {
  // The form is told as 6 lines; a page of 6.9 lines is, too.
  const auto ending = [](int end, int lines) {
    return ExpectedStream()
        .start(lines)
        .unit(10)
        .down(end - 48)
        .block(0, 39, 1, kFull)
        .formFeed()
        .bytes();
  };
  EXPECT_EQ(saidOf(ending(360, 6)), "");
  EXPECT_EQ(saidOf(ending(420, 6)), "");
  EXPECT_EQ(saidOf(ending(422, 6)), "prints 4.4 mm beyond its form of 25.4 mm");
  EXPECT_EQ(saidOf(ending(422, 6), Model::OrloBack), "prints 5.8 mm beyond its form of 25.4 mm");
  EXPECT_EQ(saidOf(ending(422, 0)), "");
  // A form of 300 lines is told as 44.
  EXPECT_EQ(saidOf(ending(299 * 60, 44)), "");
}

TEST(PageCheck, ThePaperThatRanPastItsFormIsToldToo) {
  const Stream stream =
      ExpectedStream().start(6).block(0, 39, 1, kFull).unit(10).down(720).formFeed().bytes();
  EXPECT_EQ(saidOf(stream), "prints 25.4 mm beyond its form of 25.4 mm");
}

ExpectedStream twoBands(int apart, const Stream& second, int colour = 0) {
  return ExpectedStream()
      .start(66)
      .block(0, 39, 1, kFull)
      .unit(10)
      .down(apart)
      .toX(0)
      .block(colour, 39, 1, second)
      .formFeed();
}

TEST(PageCheck, RowsOfOneInkThatFallOnOthersAreTold) {
  EXPECT_EQ(saidOf(twoBands(44, kFull).bytes()), "2 rows are printed over others");
  EXPECT_EQ(saidOf(twoBands(46, kFull).bytes()), "a row is printed over another");
  EXPECT_EQ(saidOf(twoBands(44, {0x3F, 0xFF, 0xFF}).bytes()), "");
  EXPECT_EQ(saidOf(twoBands(44, kFull, 1).bytes()), "");
  EXPECT_EQ(saidOf(twoBands(44, kFull).bytes(), Model::OrloBack), "");
  // The same place struck twice is bold print, no lost row.
  EXPECT_EQ(saidOf(twoBands(0, kFull).bytes()), "");
}

// Bands of two passes a row apart; what the paper moves from the second to the next.
Stream passes(const std::vector<int>& moves, const Stream& first, const Stream& other) {
  ExpectedStream stream;
  stream.start(66);
  for (size_t band = 0; band <= moves.size(); ++band) {
    if (band > 0) stream.unit(10).down(moves[band - 1]);
    const Stream& column = band % 2 == 0 ? first : other;
    stream.toX(1).block(0, 40, 1, column).unit(10).down(1).toX(1).block(0, 40, 1, column);
  }
  return stream.formFeed().bytes();
}

TEST(PageCheck, AWhiteRowBetweenBandsThatStrokesCrossIsAGap) {
  EXPECT_EQ(saidOf(passes({48, 48, 48}, kFull, kFull)),
            "3 gaps in the print, up to 0.07 mm, the first at 3.4 mm");
  EXPECT_EQ(flawsOf(passes({48, 48, 48, 300, 48}, kFull, kFull)).gaps, 4U);
  EXPECT_EQ(saidOf(passes({47, 47}, kFull, kFull)), "");
}

TEST(PageCheck, OneWhiteRowIsAGapWhereWhiteIsSentThatNobodyNeeds) {
  Stream columns(size_t{60}, 0);
  columns.insert(columns.end(), kFull.begin(), kFull.end());
  ExpectedStream stream;
  stream.start(66).toX(0).block(0, 40, 21, columns).unit(10).down(1);
  stream.toX(0).block(0, 40, 21, columns).unit(10).down(48).toX(0).block(0, 40, 21, columns);
  EXPECT_EQ(saidOf(stream.formFeed().bytes()), "a gap in the print, 0.07 mm at 3.4 mm");
}

TEST(PageCheck, AWhiteRowThatNoStrokeCrossesOrThatIsTheExceptionIsNone) {
  EXPECT_EQ(saidOf(passes({48, 48}, kFull, kFull)), "");
  EXPECT_EQ(saidOf(passes({48, 48, 48}, {0xFF, 0xFF, 0xF0}, {0x0F, 0xFF, 0xFF})), "");
  EXPECT_EQ(saidOf(passes({48, 47, 47}, kFull, kFull)), "");
  EXPECT_EQ(saidOf(passes({51, 60}, kFull, kFull)), "");
}

Stream slices(const std::vector<int>& rows) {
  ExpectedStream stream;
  stream.start(66).block(0, 0, 1, {0xFF});
  for (const int down : rows) stream.unit(10).down(6 * down).toX(0).block(0, 0, 1, {0xFF});
  return stream.formFeed().bytes();
}

TEST(PageCheck, SlicesOfABandThatEightDotsNeverPrintAreGaps) {
  EXPECT_EQ(saidOf(slices({24, 24, 30, 24})),
            "3 gaps in the print, up to 6.77 mm, the first at 3.4 mm");
  // Twenty-three where red went a row up.
  EXPECT_EQ(saidOf(slices({24, 23})), "2 gaps in the print, up to 6.77 mm, the first at 3.4 mm");
  EXPECT_EQ(saidOf(slices({24, 24, 22})), "");
  EXPECT_EQ(saidOf(slices({24, 24, 8, 24})), "");
  EXPECT_EQ(saidOf(slices({24, 30, 31})), "");
}

// Bands 'b' and 'r' at rows of 1/180 inch, the way the original counts them: each ink
// by itself, red from where black went.
Stream countedByInk(const std::vector<std::pair<char, int>>& bands, size_t white) {
  ExpectedStream stream;
  stream.start(66);
  Stream columns(3 * white, 0);
  columns.insert(columns.end(), kFull.begin(), kFull.end());
  int black = 0;
  int red = 0;
  for (const auto& [ink, row] : bands) {
    int& reached = ink == 'b' ? black : red;
    if (row > reached) stream.unit(10).down(2 * (row - reached));
    reached = row;
    if (ink == 'b') red = black;
    stream.toX(0).block(ink == 'b' ? 0 : 1, 39, static_cast<int>(columns.size() / 3), columns);
  }
  return stream.formFeed().bytes();
}

TEST(PageCheck, BlackThatForgotTheWayOfRedLeavesGapsWhereThePageShowsItsWayOfCounting) {
  const std::vector<std::pair<char, int>> bands = {
      {'r', 100}, {'b', 200}, {'r', 300}, {'r', 324}, {'b', 400}};
  // Black lies 100 rows too low, and 124 more from its third band on.
  EXPECT_EQ(saidOf(countedByInk(bands, 20)),
            "2 gaps in the print, up to 17.50 mm, the first at 17.5 mm");
  // The same ways of the paper without white in front of the ink may be meant.
  EXPECT_EQ(saidOf(countedByInk(bands, 2)), "");
}

// Red three rows up may still belong to the black above it; a row lower it does not, and
// black comes as much later again.
TEST(PageCheck, BlackThatForgotAWayAsShortAsItCanBeToldIsBlamed) {
  const std::vector<std::pair<char, int>> shortest = {{'b', 100}, {'r', 121}, {'b', 142}};
  EXPECT_EQ(saidOf(countedByInk(shortest, 20)), "a gap in the print, 2.96 mm at 20.5 mm");
  const std::vector<std::pair<char, int>> shorter = {{'b', 100}, {'r', 120}, {'b', 142}};
  EXPECT_EQ(saidOf(countedByInk(shorter, 20)), "");
}

TEST(PageCheck, BlackBelowBlackThatStandsNearerThanRedWentForgotNothing) {
  Stream columns(size_t{60}, 0);
  columns.insert(columns.end(), kFull.begin(), kFull.end());
  ExpectedStream stream;
  stream.start(66).unit(10).down(200).toX(0).block(0, 39, 21, columns);
  stream.unit(10).down(60).toX(0).block(1, 39, 21, columns);
  stream.unit(10).down(100).toX(0).block(0, 39, 21, columns);
  EXPECT_EQ(saidOf(stream.formFeed().bytes()), "");
}

TEST(PageCheck, BlackThatStandsNearerThanRedWentForgotNothing) {
  const Stream white(size_t{60}, 0);
  Stream columns = white;
  columns.insert(columns.end(), kFull.begin(), kFull.end());
  const Stream stream = ExpectedStream()
                            .start(66)
                            .unit(10)
                            .down(600)
                            .block(1, 39, 21, columns)
                            .unit(10)
                            .down(48)
                            .toX(0)
                            .block(0, 39, 21, columns)
                            .formFeed()
                            .bytes();
  EXPECT_EQ(saidOf(stream), "");
}
}  // namespace
}  // namespace velka::decodetest
