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
  ASSERT_EQ(arguments.sheet.size(), 1U);
  EXPECT_EQ(arguments.sheet[0].name, "RedMinValue");
  EXPECT_EQ(arguments.sheet[0].values, (std::vector<std::string>{"90", "130", "170"}));
}

TEST(Arguments, TwoSheetsMakeAGrid) {
  const Arguments arguments = accepted(
      {"--from", "a", "--ppd", "p", "--sheet", "A=1..3/1", "--sheet", "B=x,y", "--page", "2"});
  ASSERT_EQ(arguments.sheet.size(), 2U);
  EXPECT_EQ(arguments.sheet[0].values.size(), 3U);
  EXPECT_EQ(arguments.sheet[1].name, "B");
}

TEST(Arguments, TheSecondOptionOfASheetHasAWordOfItsOwn) {
  const Arguments arguments =
      accepted({"--from", "a", "--ppd", "p", "--by", "B=x,y", "--sheet", "A=1..3/1"});
  ASSERT_EQ(arguments.sheet.size(), 2U);
  EXPECT_EQ(arguments.sheet[0].name, "A");
  EXPECT_EQ(arguments.sheet[1].name, "B");
  EXPECT_NE(refusal({"--from", "a", "--ppd", "p", "--by", "B=x"}), "accepted");
  EXPECT_EQ(refusal({"--from", "a", "--ppd", "p", "--sheet", "A=1", "--by", "B=1", "--by", "C=1"}),
            "--by can be given once");
  EXPECT_EQ(
      refusal({"--from", "a", "--ppd", "p", "--sheet", "A=1", "--sheet", "B=1", "--by", "C=1"}),
      "--sheet can be given once, or with --by (or twice) for a grid");
}

TEST(Arguments, APageIsServedWithADocumentOrNone) {
  EXPECT_EQ(accepted({"--serve", "--ppd", "p"}).action, Action::Serve);
  const Arguments arguments = accepted({"--serve", "a.pdf", "--ppd", "p", "--port", "8080",
                                        "--open", "--options-file", "kept", "--page", "3"});
  EXPECT_EQ(arguments.files, std::vector<std::string>{"a.pdf"});
  EXPECT_EQ(arguments.port, 8080);
  EXPECT_TRUE(arguments.open);
  EXPECT_EQ(arguments.optionsFile, "kept");
  EXPECT_EQ(refusal({"--serve", "a.pdf"}), "--serve needs --ppd");
  EXPECT_NE(refusal({"--serve", "a", "b", "--ppd", "p"}), "accepted");
  EXPECT_NE(refusal({"--serve", "--from", "a", "--ppd", "p"}), "accepted");
  EXPECT_NE(refusal({"--serve", "--ppd", "p", "--page", "2-3"}), "accepted");
  EXPECT_NE(refusal({"--serve", "--ppd", "p", "--dpi", "90"}), "accepted");
  EXPECT_EQ(refusal({"--port", "8080", "a.prn"}), "--port does nothing with a picture");
  for (const char* port : {"0", "80", "65536", "-1", "x", ""})
    EXPECT_NE(refusal({"--serve", "--ppd", "p", "--port", port}), "accepted") << port;
}

TEST(Arguments, ADocumentsPagesAreChosenWhateverIsShown) {
  EXPECT_TRUE(accepted({"--from", "a", "--ppd", "p", "--list", "--page", "2"}).pages.has_value());
  EXPECT_TRUE(accepted({"--from", "a", "--ppd", "p", "--stats", "--page", "2"}).pages.has_value());
}

TEST(Arguments, TheOutputsNameDecidesTheFormatInAnyCase) {
  EXPECT_EQ(formatOf(accepted({"-o", "x.PDF", "a"})), Format::Pdf);
  EXPECT_EQ(formatOf(accepted({"-o", "x.Png", "a"})), Format::Png);
  EXPECT_EQ(formatOf(accepted({"-o", "-", "a"})), Format::Png);
  EXPECT_EQ(formatOf(accepted({"--format", "png", "-o", "page.out", "a"})), Format::Png);
}

TEST(Arguments, SwitchesAndFilesAreTaken) {
  const Arguments arguments =
      accepted({"--from", "a", "--ppd", "p", "--any-ppd", "--progress", "--save", "a.prn"});
  EXPECT_TRUE(arguments.anyPpd && arguments.progress && !arguments.tone);
  EXPECT_EQ(arguments.save, "a.prn");
  EXPECT_TRUE(accepted({"--diff", "--tone", "a", "b"}).tone);
}

TEST(Arguments, ACalibrationPageNeedsNothingElse) {
  const Arguments arguments = accepted({"--calibration", "placement"});
  EXPECT_EQ(arguments.action, Action::Calibration);
  EXPECT_EQ(arguments.calibration, "placement");
  EXPECT_EQ(accepted({"--calibration=placement", "--format=pdf", "-o", "page"}).output, "page");
  for (const char* name : {"registration", "position", "tones", "colours"}) {
    const Arguments made =
        accepted({"--calibration", name, "--ppd", "p", "--any-ppd", "--options", "PageSize=A4"});
    EXPECT_EQ(made.calibration, name);
    EXPECT_EQ(made.options, "PageSize=A4");
  }
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
      {{"--model", "other", "a"},
       "invalid value 'other' for --model: it takes standard, orlo-front or orlo-back"},
      {{"--format", "gif", "a"}, "invalid value 'gif' for --format: it takes png or pdf"},
      {{"--page", "0", "a"},
       "invalid value '0' for --page: it takes N, N-M, N- or -M, pages from 1"},
      {{"--page", "3-2", "a"},
       "invalid value '3-2' for --page: it takes N, N-M, N- or -M, pages from 1"},
      {{"--page", "-", "a"},
       "invalid value '-' for --page: it takes N, N-M, N- or -M, pages from 1"},
      {{"--page", "", "a"}, "invalid value '' for --page: it takes N, N-M, N- or -M, pages from 1"},
      {{"--page", "1--2", "a"},
       "invalid value '1--2' for --page: it takes N, N-M, N- or -M, pages from 1"},
      {{"--page", "-0", "a"},
       "invalid value '-0' for --page: it takes N, N-M, N- or -M, pages from 1"},
      {{"--page", "1x", "a"},
       "invalid value '1x' for --page: it takes N, N-M, N- or -M, pages from 1"},
      {{"--dpi", "nan", "a"}, "invalid value 'nan' for --dpi: it takes a number from 1 to 7200"},
      {{"--dpi", "-5", "a"}, "invalid value '-5' for --dpi: it takes a number from 1 to 7200"},
      {{"--scale", "1e9", "a"},
       "invalid value '1e9' for --scale: it takes a number from 0.001 to 100"},
      {{"--width", "", "a"}, "invalid value '' for --width: it takes millimetres from 1 to 5000"},
      {{"--pins=3", "a"}, "option '--pins' takes no value"},
      {{"--help=3"}, "option '--help' takes no value"},
      {{"--head-speed", "0", "a"},
       "invalid value '0' for --head-speed: it takes millimetres a second from 0.001 to 1000000"},
      {{"--dpi", "90", "--scale", "1", "a"}, "--dpi and --scale exclude each other"},
      {{"--list", "--stats", "a"},
       "only one of --list, --stats, --diff, --sheet, --calibration and --serve can be given"},
      {{"--calibration", "nothing"},
       "invalid value 'nothing' for --calibration: it takes placement, registration, position, "
       "tones, colours"},
      {{"--calibration", "placement", "a"}, "unexpected argument 'a'"},
      {{"--calibration", "placement", "--from", "a"},
       "--calibration writes a page of its own, without --from"},
      {{"--calibration", "placement", "--ppd", "p"}, "--ppd does nothing with --calibration"},
      {{"--calibration", "colours", "--model", "standard"},
       "--model does nothing with --calibration"},
      {{"--calibration", "colours", "--options", "RedMinValue=90"}, "--options needs --ppd"},
      {{"--calibration", "placement", "--page", "1"}, "--page does nothing with --calibration"},
      {{"--calibration", "placement", "--save", "a"}, "--save needs --from"},
      {{"--calibration", "placement", "-o", "x.png"}, "--calibration writes a PDF"},
      {{"--calibration", "placement", "--format", "png"}, "--calibration writes a PDF"},
      {{"--calibration", "placement", "--list"},
       "only one of --list, --stats, --diff, --sheet, --calibration and --serve can be given"},
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
      {{"--sheet", "A", "x"},
       "invalid value 'A' for --sheet: it takes NAME=A,B,... or NAME=FROM..TO/STEP"},
      {{"--sheet", "=1", "x"},
       "invalid value '=1' for --sheet: it takes NAME=A,B,... or NAME=FROM..TO/STEP"},
      {{"--sheet", "A=1,,2", "x"},
       "invalid value 'A=1,,2' for --sheet: it takes NAME=A,B,... or NAME=FROM..TO/STEP"},
      {{"-o", "", "x"}, "an option's file has an empty name"},
      {{"--modle", "standard", "x"}, "unknown or unclear option '--modle'; did you mean --model?"},
      {{"--formt=png", "x"}, "unknown or unclear option '--formt=png'; did you mean --format?"},
      {{"-o", "x.gif", "a"},
       "the name x.gif decides no format: end it in .png or .pdf, or state --format"},
      {{"-o", ".png", "a"},
       "the name .png decides no format: end it in .png or .pdf, or state --format"},
      {{"--format=png", "-o", "x.PDF", "a"}, "the name x.PDF contradicts --format"},
      {{"--tone", "a"}, "--tone does nothing with a picture"},
      {{"--any-ppd", "a"}, "--any-ppd needs --ppd"},
      {{"--save", "x", "a"}, "--save needs --from"},
      {{"--save", "x", "--from", "a", "--ppd", "p", "--sheet", "A=1"},
       "--save keeps one stream; --sheet makes several"},
      {{"--save", "-", "--from", "a", "--ppd", "p", "--stats"},
       "standard output can be only one of the two outputs"},
      {{"--save", "-", "--from", "a", "--ppd", "p", "-o", "-"},
       "standard output can be only one of the two outputs"},
      {{"--from", "a", "--ppd", "p", "--sheet", "A=1", "--sheet", "B=1", "--sheet", "C=1"},
       "--sheet can be given once, or with --by (or twice) for a grid"},
      {{"--from", "a", "--ppd", "p", "--sheet", "A=1", "--sheet", "A=2"},
       "the two options of --sheet must differ"},
      {{"--from", "a", "--ppd", "p", "--sheet", "A=1..200/1", "--sheet", "B=1..200/1"},
       "40000 variants are more than one sheet shows (1024)"},
  };
  for (const auto& [words, text] : wrong) EXPECT_EQ(refusal(words), text);
}

}  // namespace
}  // namespace velka::view
