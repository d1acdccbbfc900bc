#include <gtest/gtest.h>

#include <algorithm>

#include "Arguments.h"

namespace velka::view {
namespace {

using Result = std::variant<Arguments, Answer, UsageError>;

Result read(std::vector<std::string> words) {
  words.insert(words.begin(), "velkaview");
  std::vector<char*> pointers(words.size() + 1, nullptr);
  std::transform(words.begin(), words.end(), pointers.begin(),
                 [](std::string& word) { return word.data(); });
  return readArguments(static_cast<int>(words.size()), pointers.data());
}

Arguments accepted(const std::vector<std::string>& words) {
  const Result result = read(words);
  const auto* error = std::get_if<UsageError>(&result);
  EXPECT_EQ(error, nullptr) << error->text;
  const auto* arguments = std::get_if<Arguments>(&result);
  return arguments != nullptr ? *arguments : Arguments{};
}

std::string refusal(const std::vector<std::string>& words) {
  const Result result = read(words);
  const auto* error = std::get_if<UsageError>(&result);
  return error != nullptr ? error->text : "accepted";
}

TEST(Arguments, ALoneFileIsDrawn) {
  const Arguments arguments = accepted({"job.prn"});
  EXPECT_EQ(arguments.action, Action::Draw);
  EXPECT_EQ(arguments.files, std::vector<std::string>{"job.prn"});
  EXPECT_EQ(formatOf(arguments), Format::Png);
  EXPECT_FALSE(arguments.model.has_value());
}

TEST(Arguments, TakeOptionsBeforeAndBehindTheFile) {
  const Arguments arguments = accepted({"--page=2-4", "job.prn", "--model", "orlo-back", "--dpi",
                                        "90.5", "--pins", "--width=57", "-o", "x.pdf"});
  ASSERT_TRUE(arguments.pages.has_value());
  EXPECT_EQ(arguments.pages->first, 2U);
  EXPECT_EQ(arguments.pages->last, 4U);
  EXPECT_FALSE(arguments.pages->holds(5));
  EXPECT_EQ(arguments.model, decode::Model::OrloBack);
  EXPECT_EQ(arguments.dpi, 90.5);
  EXPECT_TRUE(arguments.pins);
  EXPECT_EQ(arguments.width, 57);
  EXPECT_EQ(formatOf(arguments), Format::Pdf);
}

TEST(Arguments, TheStatedFormatCountsWhereTheOutputsNameSaysNothing) {
  EXPECT_EQ(formatOf(accepted({"--format=pdf", "-o", "x", "-"})), Format::Pdf);
}

TEST(Arguments, NumbersTakeTheSpeedsOfHeadAndPaper) {
  const Arguments arguments =
      accepted({"--stats", "--head-speed", "250", "--feed-speed", "80", "--width", "57", "a"});
  EXPECT_EQ(arguments.speeds.head, 250);
  EXPECT_EQ(arguments.speeds.feed, 80);
}

TEST(Arguments, PagesMayBeOpenAtEitherEnd) {
  const auto from = accepted({"--page", "3-", "a"}).pages;
  EXPECT_TRUE(from && !from->holds(2) && from->holds(3) && from->holds(1000000));
  const auto to = accepted({"--page", "-3", "a"}).pages;
  EXPECT_TRUE(to && to->holds(1) && to->holds(3) && !to->holds(4));
}

TEST(Arguments, ASheetNamesAnOptionAndItsValues) {
  const Arguments arguments =
      accepted({"--from", "a.pdf", "--ppd", "p.ppd", "--sheet", "RedMinValue=90,130,170"});
  EXPECT_EQ(arguments.action, Action::Sheet);
  EXPECT_EQ(arguments.sheetOption, "RedMinValue");
  EXPECT_EQ(arguments.sheetValues, (std::vector<std::string>{"90", "130", "170"}));
}

TEST(Arguments, HelpAndVersionAnswerWhateverElseIsThere) {
  const Result help = read({"--pins", "--help"});
  ASSERT_TRUE(std::holds_alternative<Answer>(help));
  EXPECT_TRUE(std::get<Answer>(help).text.starts_with("Usage: velkaview "));
  const Result version = read({"-V"});
  ASSERT_TRUE(std::holds_alternative<Answer>(version));
  EXPECT_TRUE(std::get<Answer>(version).text.starts_with("velkaview (Velka) "));
}

TEST(Arguments, WhatIsWrongIsNamed) {
  const std::pair<std::vector<std::string>, std::string> wrong[] = {
      {{}, "no file named"},
      {{"a", "b"}, "unexpected argument 'b'"},
      {{"--diff", "a"}, "--diff needs two files"},
      {{"--diff", "-", "-"}, "standard input can be only one of the two files"},
      {{"--nothing", "a"}, "unknown or unclear option '--nothing'"},
      {{"--f", "a"}, "unknown or unclear option '--f'"},
      {{"-q", "a"}, "unknown option '-q'"},
      {{"a", "--model"}, "option '--model' needs a value"},
      {{"--model", "other", "a"}, "invalid value 'other' for --model"},
      {{"--format", "gif", "a"}, "invalid value 'gif' for --format"},
      {{"--page", "0", "a"}, "invalid value '0' for --page"},
      {{"--page", "3-2", "a"}, "invalid value '3-2' for --page"},
      {{"--page", "-", "a"}, "invalid value '-' for --page"},
      {{"--page", "", "a"}, "invalid value '' for --page"},
      {{"--page", "1--2", "a"}, "invalid value '1--2' for --page"},
      {{"--page", "-0", "a"}, "invalid value '-0' for --page"},
      {{"--page", "1x", "a"}, "invalid value '1x' for --page"},
      {{"--dpi", "nan", "a"}, "invalid value 'nan' for --dpi"},
      {{"--dpi", "-5", "a"}, "invalid value '-5' for --dpi"},
      {{"--scale", "1e9", "a"}, "invalid value '1e9' for --scale"},
      {{"--width", "", "a"}, "invalid value '' for --width"},
      {{"--pins=3", "a"}, "option '--pins' takes no value"},
      {{"--help=3"}, "option '--help' takes no value"},
      {{"--head-speed", "0", "a"}, "invalid value '0' for --head-speed"},
      {{"--dpi", "90", "--scale", "1", "a"}, "--dpi and --scale exclude each other"},
      {{"--list", "--stats", "a"}, "only one of --list, --stats, --diff and --sheet can be given"},
      {{"--list", "-o", "x", "a"}, "--output does nothing with --list"},
      {{"--list", "--pins", "a"}, "--pins does nothing with --list"},
      {{"--list", "--width", "57", "a"}, "--width does nothing with --list"},
      {{"--stats", "--page", "5", "a"}, "--page does nothing with --stats"},
      {{"--stats", "--format", "pdf", "a"}, "--format does nothing with --stats"},
      {{"--diff", "--pins", "a", "b"}, "--pins does nothing with --diff"},
      {{"--head-speed", "100", "a"}, "--head-speed does nothing with a picture"},
      {{"--options", "A=1", "a"}, "--options needs --ppd"},
      {{"--format", "pdf", "-o", "x.png", "a"}, "the name x.png contradicts --format"},
      {{"--format=png", "-o", "x.pdf", "a"}, "the name x.pdf contradicts --format"},
      {{"--from", "a.pdf", "--ppd", "p", "--sheet", "A=1", "--page", "1-5"},
       "--sheet shows one page, so --page takes one number"},
      {{"--from", "a.pdf"}, "--from needs --ppd"},
      {{"--from", "a.pdf", "--ppd", "p", "x"}, "unexpected argument 'x'"},
      {{"--from", "a.pdf", "--ppd", "p", "--diff"},
       "--diff compares two streams and goes without --from"},
      {{"--sheet", "A=1,2", "x"}, "--sheet needs --from"},
      {{"--sheet", "A", "x"}, "invalid value 'A' for --sheet"},
      {{"--sheet", "=1", "x"}, "invalid value '=1' for --sheet"},
      {{"--sheet", "A=1,,2", "x"}, "invalid value 'A=1,,2' for --sheet"},
      {{"-o", "", "x"}, "an option's file has an empty name"},
  };
  for (const auto& [words, text] : wrong) EXPECT_EQ(refusal(words), text);
}

}  // namespace
}  // namespace velka::view
