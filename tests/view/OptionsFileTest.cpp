#include <gtest/gtest.h>

#include "OptionsFile.h"
#include "support/TestPpd.h"

namespace velka::view {
namespace {

std::string optionsOf(std::string_view text) {
  const auto read = readOptionsText(text);
  const auto* wrong = std::get_if<WrongFile>(&read);
  return wrong == nullptr ? std::get<std::string>(read) : "wrong: " + wrong->why;
}

TEST(OptionsFile, HoldsWordsBehindTheirSwitch) {
  EXPECT_EQ(optionsOf("-o RedMinValue=90\n-o PageSize=A5\n"), "RedMinValue=90 PageSize=A5");
  EXPECT_EQ(optionsOf("  -oA=1 -o  B=2"), "A=1 B=2");
  EXPECT_EQ(optionsOf("-o 'job-name=a\\ b' -o \"x=1\" -o y=\\'"), "job-name=a\\ b x=1 y='");
  EXPECT_EQ(optionsOf(""), "");
}

TEST(OptionsFile, OfAnotherKindIsRefused) {
  EXPECT_EQ(optionsOf("RedMinValue=90"), "wrong: 'RedMinValue=90' does not stand behind -o");
  EXPECT_EQ(optionsOf("-o A=1 -d queue"), "wrong: '-d' does not stand behind -o");
  EXPECT_EQ(optionsOf("-o A=1 -o"), "wrong: nothing stands behind the last -o");
  EXPECT_EQ(optionsOf("-o 'A=1"), "wrong: a quote does not end");
}

TEST(OptionsFile, ReadsWhatIsWritten) {
  const Settings settings = {{"RedMinValue", "90"}, {"job-name", "it's \"a\" \\ b"}, {"x", ""}};
  std::string wanted;
  for (const auto& [name, value] : settings)
    wanted += (wanted.empty() ? "" : " ") + optionText(name, value);
  EXPECT_EQ(optionsOf(asArguments(settings, "\n")), wanted);
  EXPECT_EQ(asArguments({{"A", "1"}, {"B", "2"}}, " "), "-o A=1 -o B=2");
}

TEST(OptionsFile, StandsInFrontOfTheCommandLinesOptions) {
  const testing::TempFile file("-o RedMinValue=90\n");
  Arguments arguments;
  arguments.options = "RedMinValue=95";
  arguments.optionsFile = file.path();
  EXPECT_EQ(takeOptionsFile(arguments), std::nullopt);
  EXPECT_EQ(arguments.options, "RedMinValue=90 RedMinValue=95");
  arguments.optionsFile = "/nowhere/at/all";
  EXPECT_NE(takeOptionsFile(arguments), std::nullopt);
}

TEST(Words, AreQuotedForAShellOnlyWhereTheyMustBe) {
  EXPECT_EQ(quoted("letter-1.pdf"), "letter-1.pdf");
  EXPECT_EQ(quoted("a b"), "'a b'");
  EXPECT_EQ(quoted("it's"), "'it'\\''s'");
  EXPECT_EQ(quoted("$(x)"), "'$(x)'");
  EXPECT_EQ(quoted(""), "''");
}

}  // namespace
}  // namespace velka::view
