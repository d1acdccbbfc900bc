#include <gtest/gtest.h>

#include "ModelGuess.h"
#include "orlo/LiteralEncoder.h"
#include "reference/ExpectedStream.h"

namespace velka::decode {
namespace {

using reference::ExpectedStream;
using Stream = std::vector<uint8_t>;
const Stream kColumn = {0x80, 0, 0};

Stream orloBlock() {
  return {0x1B, '*', 39, 1, 0, 0x80, 0, 0};
}

TEST(ModelGuess, ABlockThatNamesItsInkIsTheStandardModels) {
  const Stream stream = ExpectedStream().start(66).block(1, 39, 1, kColumn).formFeed().bytes();
  EXPECT_EQ(guessModel(stream).model, Model::Standard);
}

TEST(ModelGuess, BothInksAtOnceAreBackFeed) {
  const Stream stream =
      ExpectedStream().start(66).add({0x1B, 'r', 2}).toX(3).add(orloBlock()).bytes();
  EXPECT_EQ(guessModel(stream).model, Model::OrloBack);
}

TEST(ModelGuess, BothInksAtOnceTellWithoutABlock) {
  const ModelGuess guess = guessModel(ExpectedStream().start(66).add({0x1B, 'r', 2}).bytes());
  EXPECT_EQ(guess.model, Model::OrloBack);
  EXPECT_TRUE(guess.proved);
  EXPECT_NE(guess.why.find("offset 7"), std::string::npos) << guess.why;
}

TEST(ModelGuess, NoInkOnAPageSeenFromItsStartProvesNothing) {
  const Stream stream = ExpectedStream().start(66).toX(3).add(orloBlock()).formFeed().end().bytes();
  const ModelGuess guess = guessModel(stream);
  EXPECT_FALSE(guess.model.has_value());
  EXPECT_NE(guess.why.find("offset 17"), std::string::npos) << guess.why;
}

TEST(ModelGuess, FrontFeedIsProvedByItsCommandOrByColumnsThatOnlyItsHeadHas) {
  const Stream chosen =
      ExpectedStream().start(66).add(orloBlock()).add({0x1B, 25, 'F'}).formFeed().end().bytes();
  EXPECT_EQ(guessModel(chosen).model, Model::OrloFront);
  // Of an eight-dot mode, whose columns have one byte on the other head.
  const Stream columns =
      ExpectedStream().start(66).add({0x1B, '*', 0, 1, 0, 0x80, 1, 2}).formFeed().end().bytes();
  const ModelGuess guess = guessModel(columns);
  EXPECT_EQ(guess.model, Model::OrloFront);
  EXPECT_TRUE(guess.proved);
}

TEST(ModelGuess, AFaultBeforeAnyClueLeavesItOpen) {
  const ModelGuess guess = guessModel(ExpectedStream().start(66).add({'x'}).bytes());
  EXPECT_FALSE(guess.model.has_value());
  EXPECT_FALSE(guess.matters);
  EXPECT_EQ(guess.why, "nothing is struck before a fault (offset 7)");
}

TEST(ModelGuess, WithoutThePagesStartNothingIsSaid) {
  const ModelGuess guess = guessModel(orloBlock());
  EXPECT_FALSE(guess.model.has_value());
  EXPECT_NE(guess.why.find("offset 0"), std::string::npos) << guess.why;
}

TEST(ModelGuess, CluesThatContradictEachOtherAreToldWithTheirOffsets) {
  const Stream stream =
      ExpectedStream().start(66).block(0, 39, 1, kColumn).start(66).add(orloBlock()).bytes();
  const ModelGuess guess = guessModel(stream);
  EXPECT_FALSE(guess.model.has_value());
  EXPECT_NE(guess.why.find("offset 10"), std::string::npos) << guess.why;
  EXPECT_NE(guess.why.find("offset 25"), std::string::npos) << guess.why;
}

TEST(ModelGuess, AnInkNamedForAnEarlierBlockOnlyIsUnclear) {
  const Stream stream =
      ExpectedStream().start(66).add({0x1B, 'r', 0}).toX(3).add(orloBlock()).bytes();
  EXPECT_FALSE(guessModel(stream).model.has_value());
}

TEST(ModelGuess, AChosenFeedOrEjectModeTellsWithoutABlock) {
  EXPECT_EQ(guessModel(Stream{0x1B, 25, 'F', 0x0C}).model, Model::OrloFront);
  EXPECT_EQ(guessModel(Stream{0x1B, 25, 'B', 0x0C}).model, Model::OrloBack);
  EXPECT_EQ(guessModel(Stream{0x1D, 4, 'T', '0', 0x0C}).model, Model::Standard);
}

TEST(ModelGuess, AStreamWithoutInkIsTheSameOnEveryModel) {
  const Stream stream = ExpectedStream().start(66).formFeed().end().bytes();
  EXPECT_EQ(guessModel(stream).model, Model::Standard);
  EXPECT_EQ(guessModel({}).model, Model::Standard);
  EXPECT_FALSE(guessModel(stream).proved);
}

TEST(ModelGuess, KnowsTheOrloEncodersOwnPages) {
  orlotest::DotPage page(40, 200);
  page.putBlack(3, 60);
  page.putRed(5, 90);
  for (const orlotest::ModeRow& mode : orlotest::allModes())
    for (const bool split : {false, true})
      for (const auto feed : {orlotest::Feed::Front, orlotest::Feed::Back}) {
        const Stream stream = ExpectedStream()
                                  .start(66)
                                  .add(orlotest::encode(page, feed, split, mode.dpi))
                                  .formFeed()
                                  .end()
                                  .bytes();
        const auto guess = guessModel(stream).model;
        const bool eightDots = mode.dpi.vertical == 60;
        if (feed == orlotest::Feed::Back) {
          EXPECT_EQ(guess, Model::OrloBack);
        } else {
          EXPECT_EQ(guess, eightDots ? std::optional(Model::OrloFront) : std::nullopt);
        }
      }
}

}  // namespace
}  // namespace velka::decode
