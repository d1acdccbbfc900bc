// The program as its users call it: pictures, models, wrong use.
#include <gtest/gtest.h>

#include "ViewProgram.h"
#include "reference/ExpectedStream.h"
#include "support/TestPdf.h"

namespace velka::view {
namespace {

using reference::ExpectedStream;
using testing::FilterResult;
using testing::textOf;

TEST_F(Program, WritesTheCalibrationPageUnderItsNameOrTheOneStated) {
  const FilterResult result = run({"--calibration", "placement"});
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
  EXPECT_TRUE(isThere("placement.pdf"));
  EXPECT_EQ(run({"--calibration", "placement", "-o", "page.pdf"}).status, 0);
  EXPECT_EQ(textOf("page.pdf"), textOf("placement.pdf"));
  EXPECT_EQ(outputOf(run({"--calibration", "placement", "-o", "-"})), textOf("placement.pdf"));
  EXPECT_EQ(run({"--calibration", "placement", "-o", "none/page.pdf"}).status, 1);
  EXPECT_EQ(run({"--calibration", "other"}).status, 2);
}

TEST_F(Program, WritesAPictureAPage) {
  put("job.prn", onePage().add(onePage()).end().bytes());
  const FilterResult result = run({"job.prn"});
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.errors,
            "velkaview: job.prn: read as standard: a block names its own ink (offset 10)\n");
  EXPECT_EQ(run({"job.prn", "--model", "standard"}).errors, "");
  EXPECT_TRUE(isThere("job-1.png"));
  EXPECT_TRUE(isThere("job-2.png"));
  EXPECT_FALSE(isThere("job-3.png"));
}

TEST_F(Program, ReadsStandardInputAndWritesStandardOutput) {
  const FilterResult result = run({"-", "-o", "-"}, onePage().end().bytes());
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(outputOf(result).substr(1, 3), "PNG");
}

TEST_F(Program, NamesPicturesAfterTheOutput) {
  put("job.prn", onePage().add(onePage()).end().bytes());
  EXPECT_EQ(run({"job.prn", "-o", "one.png", "--page", "2"}).status, 0);
  EXPECT_TRUE(isThere("one.png"));
  EXPECT_EQ(run({"job.prn", "-o", "all.png"}).status, 0);
  EXPECT_TRUE(isThere("all-1.png"));
  EXPECT_TRUE(isThere("all-2.png"));
  EXPECT_EQ(run({"job.prn", "-o", "all.pdf"}).status, 0);
  EXPECT_TRUE(textOf("all.pdf").starts_with("%PDF"));
}

TEST_F(Program, AStreamCutOffGivesItsOffsetStatusOneAndThePagesSoFar) {
  auto bytes = onePage().add(onePage()).end().bytes();
  bytes.erase(bytes.end() - 5, bytes.end());
  put("job.prn", bytes);
  const FilterResult result = run({"job.prn", "--model", "standard"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "velkaview: job.prn: offset 29: the stream ends inside a block\n");
  EXPECT_TRUE(isThere("job-1.png"));
  EXPECT_FALSE(isThere("job-2.png"));
}

TEST_F(Program, AnUnknownCommandGivesItsOffsetAndThePageItStandsOn) {
  put("job.prn", ExpectedStream().start(6).block(0, 39, 1, {1, 2, 3}).add({'x'}).bytes());
  const FilterResult result = run({"job.prn", "--model", "standard"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "velkaview: job.prn: offset 18: unknown command 78\n");
  EXPECT_TRUE(isThere("job-1.png"));
}

TEST_F(Program, AsksForTheModelThatAStreamDoesNotTell) {
  put("job.prn", {0x1B, '*', 39, 1, 0, 0x80, 0, 0, 0x0C, 0x1B, '@'});
  const FilterResult result = run({"job.prn"});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.errors.find("--model"), std::string::npos) << result.errors;
  EXPECT_EQ(run({"job.prn", "--model", "orlo-front"}).status, 0);
}

TEST_F(Program, WarnsWhereTheStatedModelIsNotTheStreams) {
  put("job.prn", onePage().end().bytes());
  const FilterResult result = run({"job.prn", "--model", "orlo-back"});
  EXPECT_EQ(result.errors,
            "velkaview: job.prn: read as orlo-back, but looks like standard: "
            "a block names its own ink (offset 10)\n");
}

TEST_F(Program, WithoutInkTheModelIsUnknownAndMattersNot) {
  const FilterResult result = run({"--stats", "-"}, {'x'});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "velkaview: standard input: offset 0: unknown command 78\n");
  EXPECT_NE(outputOf(result).find("model        unknown\n"), std::string::npos);
}

TEST_F(Program, AnOrloStreamWithoutInkIsNoModelsUntilItIsStated) {
  put("white.prn", ExpectedStream().start(66).formFeed().end().bytes());
  const auto modelOf = [](const std::vector<std::string>& options) {
    std::vector<std::string> words = {"--stats", "white.prn"};
    words.insert(words.end(), options.begin(), options.end());
    const std::string said = outputOf(run(words));
    return said.substr(said.find("model "));
  };
  EXPECT_EQ(modelOf({}), "model        unknown\n");
  EXPECT_EQ(modelOf({"--model", "orlo-back"}), "model        orlo-back\n");
  EXPECT_EQ(modelOf({"--model", "standard"}), "model        standard\n");
}
TEST_F(Program, RefusesAPictureThatIsTooLargeAndNamesThePage) {
  // A hundred moves of 91 inches down.
  ExpectedStream stream;
  stream.start(6).unit(10);
  for (int i = 0; i < 100; ++i) stream.down(32767);
  put("job.prn", stream.block(0, 39, 1, {0x80, 0, 0}).formFeed().end().bytes());
  const FilterResult result = run({"job.prn"});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.errors.find("job.prn: page 1 (offset 0): a picture of"), std::string::npos)
      << result.errors;
  EXPECT_FALSE(isThere("job-1.png"));
}

TEST_F(Program, WrongUseEndsWithTwoAndAHint) {
  const FilterResult result = run({"--nothing"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.errors,
            "velkaview: unknown or unclear option '--nothing'\n"
            "Try 'velkaview --help' for more.\n");
  EXPECT_EQ(run({}).status, 2);
}

TEST_F(Program, HelpGoesToStandardOutput) {
  const FilterResult result = run({"--help"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_TRUE(outputOf(result).starts_with("Usage: velkaview"));
}

TEST_F(Program, ListsCommandsUpToTheFault) {
  put("job.prn", ExpectedStream().start(6).add({'x'}).bytes());
  const FilterResult result = run({"--list", "job.prn"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(outputOf(result),
            "        0      2  ESC @     initialise\n"
            "        2      2  ESC 2     line spacing 4.233 mm\n"
            "        4      3  ESC C     page length 6 lines, 25.4 mm\n");
}
TEST_F(Program, TellsHowFarItIsOnlyOnRequestWhereNoTerminalIs) {
  put("job.prn", onePage().add(onePage()).end().bytes());
  EXPECT_EQ(run({"job.prn", "--model", "standard"}).errors, "");
  EXPECT_EQ(run({"job.prn", "--model", "standard", "--progress"}).errors,
            "velkaview: 1 of 2: job-1.png\nvelkaview: 2 of 2: job-2.png\n");
}

TEST_F(Program, StandardOutputTakesOnePngOnly) {
  put("job.prn", onePage().add(onePage()).end().bytes());
  const FilterResult result = run({"job.prn", "-o", "-"});
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.output.empty());
  EXPECT_NE(result.errors.find("--page"), std::string::npos);
  EXPECT_EQ(run({"job.prn", "-o", "-", "--format", "pdf"}).status, 0);
}

TEST_F(Program, AFloodOfPagesIsNotDrawnUnlessSomeAreChosen) {
  put("job.prn", ExpectedStream().add(std::vector<uint8_t>(1001, 0x0C)).end().bytes());
  EXPECT_EQ(run({"job.prn"}).status, 1);
  EXPECT_FALSE(isThere("job-1.png"));
  EXPECT_EQ(run({"job.prn", "--page", "1001"}).status, 0);
  EXPECT_TRUE(isThere("job-1001.png"));
}

TEST_F(Program, APageThatIsNotThereIsTold) {
  put("job.prn", onePage().end().bytes());
  const FilterResult result = run({"job.prn", "--page", "3"});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.errors.find("velkaview: job.prn: there is no page 3; the stream has 1 "
                               "(pages without ink may not be sent)\n"),
            std::string::npos)
      << result.errors;
}

}  // namespace
}  // namespace velka::view
