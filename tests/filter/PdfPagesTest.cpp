// The page count, the names of a job's files, and what is kept from the shell.
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "FixedText.h"
#include "PageCount.h"
#include "PageFiles.h"
#include "PlainNames.h"
#include "ShellCommand.h"
#include "rastovelka.h"
#include "support/TestPdf.h"

namespace velka::testing {
namespace {

constexpr const char* kCountFile = "/tmp/PdfPages";
const std::vector<std::string> kTextTools = {"grep", "cut", "sh", "sleep", "cat", "kill"};

int digitsOf(const std::string& pdf) {
  return GetPpmFilePagesBits(pdf.c_str());
}

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

TEST(PageCount, OfRealDocuments) {
  const TempFolder folder;
  for (const auto& [pages, digits] :
       std::vector<std::pair<int, int>>{{1, 1}, {9, 1}, {10, 2}, {12, 2}, {100, 3}}) {
    ASSERT_TRUE(makePdf(folder / "a.pdf", postscriptPages(pages)));
    EXPECT_EQ(digitsOf(folder / "a.pdf"), digits) << pages;
    EXPECT_FALSE(TempFile::exists(kCountFile));
  }
}

TEST(PageCount, OfWhatIsNoDocumentCannotBeHad) {
  const TempFolder folder;
  EXPECT_EQ(GetPpmFilePagesBits(nullptr), -1);
  EXPECT_EQ(digitsOf(""), -1);
  EXPECT_EQ(digitsOf(folder / "missing.pdf"), -1);
  writeText(folder / "empty.pdf", "");
  EXPECT_EQ(digitsOf(folder / "empty.pdf"), -1);
  ASSERT_TRUE(makePdf(folder / "locked.pdf", postscriptPages(3),
                      "-sOwnerPassword=a -sUserPassword=b -dEncryptionR=3 -dKeyLength=128"));
  EXPECT_EQ(digitsOf(folder / "locked.pdf"), -1);
  EXPECT_FALSE(TempFile::exists(kCountFile));
}

TEST(PageCount, IsTheFieldThatOlderToolsPutTheValueIn) {
  const ToolFolder tools(kTextTools);
  tools.addScript("pdfinfo", "echo 'Pages:          12'; echo 'Page size: 5'");
  const Environment path("PATH", tools.path());
  EXPECT_EQ(digitsOf("/tmp/any.pdf"), 2);
}

TEST(PageCount, ASecondMatchingLineCountsAsDigits) {
  const ToolFolder tools(kTextTools);
  tools.addScript("pdfinfo", "echo 'Title: Pages'; echo 'Pages:          12'");
  const Environment path("PATH", tools.path());
  EXPECT_EQ(digitsOf("/tmp/any.pdf"), 3);
}

TEST(PageCount, WithoutItsToolCannotBeHad) {
  const ToolFolder tools(kTextTools);
  const Environment path("PATH", tools.path());
  EXPECT_EQ(digitsOf("/tmp/any.pdf"), -1);
}

TEST(PageCount, APathThatAShellWouldActOnDoesNotReachIt) {
  const TempFolder folder;
  const std::string mark = folder / "mark";
  for (const std::string& path :
       {"/tmp/a;touch " + mark + ";", "$(touch " + mark + ")", "/tmp/`touch " + mark + "`",
        "/tmp/a\ntouch " + mark, std::string("-v"), "/tmp/a.pdf >" + mark})
    EXPECT_EQ(digitsOf(path), -1) << path;
  EXPECT_FALSE(TempFile::exists(mark));
}

TEST(PageCount, ACommandThatWouldBeCutIsNotRun) {
  const ToolFolder tools(kTextTools);
  tools.addScript("pdfinfo", "echo 'Pages:          12'");
  const Environment path("PATH", tools.path());
  EXPECT_EQ(digitsOf("/" + std::string(180, 'a')), 2);
  EXPECT_EQ(digitsOf("/" + std::string(181, 'a')), -1);
  EXPECT_EQ(digitsOf("/" + std::string(5000, 'a')), -1);
}

TEST(PageCount, WhatAKilledJobLeftBehindIsNoCount) {
  writeText(kCountFile, "12345\n");
  const ToolFolder tools(kTextTools);
  const Environment path("PATH", tools.path());
  EXPECT_EQ(digitsOf("/tmp/any.pdf"), -1);
  EXPECT_FALSE(TempFile::exists(kCountFile));
}

// Nothing planted at the file's name is written, read or removed.
class PlantedCountFile : public ::testing::Test {
 protected:
  void SetUp() override {
    unlink(kCountFile);
    writeText(target_, "precious");
    tools_.addScript("pdfinfo", "echo 'Pages:          12'");
  }
  void TearDown() override {
    unlink(kCountFile);
    rmdir(kCountFile);
  }
  void expectRefused() {
    {
      const Environment path("PATH", tools_.path());
      EXPECT_EQ(digitsOf("/tmp/any.pdf"), -1);
    }
    struct stat status = {};
    EXPECT_EQ(lstat(kCountFile, &status), 0);
    EXPECT_EQ(textOf(target_), "precious");
  }
  TempFolder folder_;
  std::string target_ = folder_ / "target";
  ToolFolder tools_{kTextTools};
};

TEST_F(PlantedCountFile, ALinkIsNotFollowed) {
  ASSERT_EQ(symlink(target_.c_str(), kCountFile), 0);
  expectRefused();
}

TEST_F(PlantedCountFile, ALinkToNothingMakesNothing) {
  ASSERT_EQ(symlink((folder_ / "new").c_str(), kCountFile), 0);
  expectRefused();
  EXPECT_FALSE(TempFile::exists(folder_ / "new"));
}

TEST_F(PlantedCountFile, ASecondNameOfAFileIsRefused) {
  ASSERT_EQ(link(target_.c_str(), kCountFile), 0);
  expectRefused();
}

TEST_F(PlantedCountFile, AFifoDoesNotHoldTheJobUp) {
  ASSERT_EQ(mkfifo(kCountFile, 0666), 0);
  expectRefused();
}

TEST_F(PlantedCountFile, AFolderIsRefused) {
  ASSERT_EQ(mkdir(kCountFile, 0777), 0);
  expectRefused();
}

TEST_F(PlantedCountFile, AFileOfSomebodyElseIsRefused) {
  writeText(kCountFile, "7\n");
  if (chown(kCountFile, 65534, 65534) != 0) GTEST_SKIP() << "only root can give files away";
  expectRefused();
  EXPECT_EQ(textOf(kCountFile), "7\n");
}

// Both tools are slowed down so that the two counts meet.
TEST(PageCount, OfTwoJobsAtOnceStayApart) {
  const ToolFolder tools(kTextTools);
  tools.addScript("pdfinfo",
                  "sleep 0.1; case $1 in *nine*) echo 'Pages:          9';; "
                  "*) echo 'Pages:          1234';; esac");
  const Environment path("PATH", tools.path());
  const pid_t child = fork();
  if (child == 0) {
    bool right = true;
    for (int i = 0; i < 5; ++i) right = GetPpmFilePagesBits("/tmp/nine.pdf") == 1 && right;
    _exit(right ? 0 : 1);
  }
  for (int i = 0; i < 5; ++i) EXPECT_EQ(digitsOf("/tmp/many.pdf"), 4);
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_FALSE(TempFile::exists(kCountFile));
}

TEST(PlainNames, AreLettersDigitsDotsUnderscoresAndHyphens) {
  for (const char* id : {"7", "job-7", "A.b_C-9", "", "..", "-7"}) EXPECT_TRUE(isPlainName(id));
  for (const char* id : {"7 8", "7/8", "../7", "7;", "$7", "7\n", "7'", "7\"", "7%d", "\xC3\xA4",
                         "7*", "~7", "a\\b", "7&", "7|8", "<7", "7>", "`7`"})
    EXPECT_FALSE(isPlainName(id)) << id;
  EXPECT_FALSE(isPlainName(nullptr));
}

TEST(PlainPaths, MayHaveSlashesAndNoHyphenInFront) {
  EXPECT_TRUE(isPlainPath("/tmp/a-b_c.pdf"));
  EXPECT_TRUE(isPlainPath("a.pdf"));
  for (const char* path : {"", "-", "-upw", "/tmp/a b", "/tmp/a;b", "/tmp/a\n"})
    EXPECT_FALSE(isPlainPath(path)) << path;
  EXPECT_FALSE(isPlainPath(nullptr));
}

TEST(RemovablePaths, AreNotMadeFromAnIdThatLeadsElsewhere) {
  EXPECT_TRUE(isRemovable("/tmp/VK_TEMP_CUPS_7.pdf"));
  EXPECT_TRUE(isRemovable("/some/where else.pdf"));
  EXPECT_FALSE(isRemovable("/tmp/VK_TEMP_CUPS_x/../precious.pdf"));
  EXPECT_FALSE(isRemovable("/tmp/VK_TEMP_CUPS_7 8.pdf"));
  EXPECT_FALSE(isRemovable(nullptr));
}

TEST(FixedTexts, AreCutAt255Characters) {
  EXPECT_STREQ(formatText("%s-%d", "a", 7).text(), "a-7");
  EXPECT_FALSE(formatText("%s", std::string(255, 'x').c_str()).cut);
  const FixedText cut = formatText("%s", std::string(256, 'x').c_str());
  EXPECT_TRUE(cut.cut);
  EXPECT_EQ(std::string(cut.text()), std::string(255, 'x'));
}

TEST(PageFileNames, PadThePageNumberWithZeros) {
  EXPECT_STREQ(pageFileName("7", 3, 2).text(), "/tmp/VK_TEMP_CUPS_7-03.ppm");
  EXPECT_STREQ(pageFileName("7", 3, 1).text(), "/tmp/VK_TEMP_CUPS_7-3.ppm");
  EXPECT_STREQ(pageFileName("7", 123, 2).text(), "/tmp/VK_TEMP_CUPS_7-123.ppm");
}

TEST(PageFiles, AreReservedAtEveryNameAPageMayGet) {
  const JobId job("reserve");
  ASSERT_TRUE(reservePageFiles(job.text().c_str(), 12));
  EXPECT_EQ(filesOf(job.text()).size(), 9U);
  EXPECT_TRUE(TempFile::exists(job.picture("12")));
  EXPECT_TRUE(TempFile::exists(job.picture("0000000012")));
  writeText(job.picture("012"), "x");
  removeEmptyPageFiles(job.text().c_str(), 12);
  EXPECT_EQ(filesOf(job.text()).size(), 1U);
  removePageFiles(job.text().c_str(), 11);
  EXPECT_EQ(filesOf(job.text()).size(), 1U);
  removePageFiles(job.text().c_str(), 12);
  EXPECT_EQ(filesOf(job.text()).size(), 0U);
}

TEST(PageFiles, LeftByAnEarlierJobOfTheSameIdAreEmptied) {
  const JobId job("stale");
  writeText(job.picture("03"), "old");
  ASSERT_TRUE(reservePageFiles(job.text().c_str(), 3));
  EXPECT_EQ(textOf(job.picture("03")), "");
}

TEST(PageFiles, ATakenNameIsLeftAloneAndNothingElseStays) {
  const TempFile target("precious");
  const JobId job("taken");
  ASSERT_EQ(symlink(target.path().c_str(), job.picture("003").c_str()), 0);
  EXPECT_FALSE(reservePageFiles(job.text().c_str(), 3));
  EXPECT_EQ(filesOf(job.text()).size(), 1U);
  removePageFiles(job.text().c_str(), 3);
  EXPECT_EQ(filesOf(job.text()).size(), 1U);
  EXPECT_EQ(textOf(target.path()), "precious");
}

TEST(PageFiles, ThereAreNoneBeforePageOneOrUnderTooLongANameOrABadOne) {
  const JobId job("none");
  EXPECT_FALSE(reservePageFiles(job.text().c_str(), 0));
  EXPECT_FALSE(reservePageFiles(job.text().c_str(), -3));
  EXPECT_EQ(filesOf(job.text()).size(), 0U);
  EXPECT_FALSE(reservePageFiles(std::string(300, '1').c_str(), 1));
  removePageFiles("no/../plain", 3);
}

TEST(Shell, GivesTheCommandNothingOfOurs) {
  const Capture out(STDOUT_FILENO);
  const Capture err(STDERR_FILENO);
  EXPECT_EQ(WEXITSTATUS(runShell("echo out; echo err >&2; read x && exit 1; exit 5")), 5);
  EXPECT_EQ(outputOfShell("echo text; echo err >&2", 100), "text\n");
  EXPECT_EQ(outputOfShell("echo text", 2), "te");
  EXPECT_EQ(out.bytes(), Bytes{});
  EXPECT_EQ(err.bytes(), Bytes{});
  EXPECT_EQ(write(STDOUT_FILENO, "x", 1), 1);
  EXPECT_EQ(out.bytes(), Bytes{'x'});
}

}  // namespace
}  // namespace velka::testing
