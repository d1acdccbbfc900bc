// The program as its users call it.
#include <gtest/gtest.h>

#include <filesystem>

#include "reference/ExpectedStream.h"
#include "support/FilterRun.h"
#include "support/TestPdf.h"

namespace velka::view {
namespace {

using reference::ExpectedStream;
using testing::FilterResult;
using testing::TempFolder;
using testing::textOf;

// Runs in a folder of its own.
class Program : public ::testing::Test {
 protected:
  void SetUp() override {
    before_ = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
  }
  void TearDown() override { std::filesystem::current_path(before_); }

  static FilterResult run(const std::vector<std::string>& arguments,
                          const testing::Bytes& input = {}) {
    testing::FilterJob job;
    job.arguments = arguments;
    job.input = input;
    return testing::runFilter(VELKA_VIEW, job);
  }

  static void put(const std::string& name, const std::vector<uint8_t>& bytes) {
    testing::writeText(name, std::string(bytes.begin(), bytes.end()));
  }

  static bool isThere(const std::string& name) { return std::filesystem::exists(name); }

  static std::string outputOf(const FilterResult& result) {
    return {result.output.begin(), result.output.end()};
  }

 private:
  TempFolder folder_;
  std::filesystem::path before_;
};

ExpectedStream page() {
  return ExpectedStream().start(6).block(0, 39, 1, {0x80, 0, 0}).formFeed();
}

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
  put("job.prn", page().add(page()).end().bytes());
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
  const FilterResult result = run({"-", "-o", "-"}, page().end().bytes());
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(outputOf(result).substr(1, 3), "PNG");
}

TEST_F(Program, NamesPicturesAfterTheOutput) {
  put("job.prn", page().add(page()).end().bytes());
  EXPECT_EQ(run({"job.prn", "-o", "one.png", "--page", "2"}).status, 0);
  EXPECT_TRUE(isThere("one.png"));
  EXPECT_EQ(run({"job.prn", "-o", "all.png"}).status, 0);
  EXPECT_TRUE(isThere("all-1.png"));
  EXPECT_TRUE(isThere("all-2.png"));
  EXPECT_EQ(run({"job.prn", "-o", "all.pdf"}).status, 0);
  EXPECT_TRUE(textOf("all.pdf").starts_with("%PDF"));
}

TEST_F(Program, AStreamCutOffGivesItsOffsetStatusOneAndThePagesSoFar) {
  auto bytes = page().add(page()).end().bytes();
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
  put("job.prn", page().end().bytes());
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
  const auto job = page().add(bad).block(0, 39, 1, {0x80, 0, 0}).formFeed().add(page()).end();
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
  put("good.prn", page().end().bytes());
  EXPECT_EQ(run({"good.prn", "--width", "25.4"}).status, 0);
  EXPECT_EQ(textOf("good-1.png"), alone);
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

TEST_F(Program, TellsTheDifferenceOfTwoStreams) {
  put("a.prn", page().end().bytes());
  put("b.prn", page().add(page()).end().bytes());
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
  put("a.prn", page().end().bytes());
  put("b.prn", page().end().bytes());
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
  put("a.prn", page().end().bytes());
  put("b.prn", page().add({'x'}).bytes());
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

TEST_F(Program, TellsHowFarItIsOnlyOnRequestWhereNoTerminalIs) {
  put("job.prn", page().add(page()).end().bytes());
  EXPECT_EQ(run({"job.prn", "--model", "standard"}).errors, "");
  EXPECT_EQ(run({"job.prn", "--model", "standard", "--progress"}).errors,
            "velkaview: 1 of 2: job-1.png\nvelkaview: 2 of 2: job-2.png\n");
}

TEST_F(Program, StandardOutputTakesOnePngOnly) {
  put("job.prn", page().add(page()).end().bytes());
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
  put("job.prn", page().end().bytes());
  const FilterResult result = run({"job.prn", "--page", "3"});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.errors.find("velkaview: job.prn: there is no page 3; the stream has 1 "
                               "(pages without ink may not be sent)\n"),
            std::string::npos)
      << result.errors;
}

}  // namespace
}  // namespace velka::view
