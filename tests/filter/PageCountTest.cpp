// The page count by the tools, and who else is at its file.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "rastovelka.h"
#include "support/TestPdf.h"

namespace velka::testing {
namespace {

constexpr const char* kCountFile = "/tmp/PdfPages";
const std::vector<std::string> kTextTools = {"grep", "cut", "sh", "sleep", "cat", "kill"};

int digitsOf(const std::string& pdf) {
  return GetPpmFilePagesBits(pdf.c_str());
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

// Nothing planted at the file's name is written, read or removed; the pages are counted
// without it.
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
      EXPECT_EQ(digitsOf("/tmp/any.pdf"), 2);
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

// Another job's pdfinfo hangs, for ever as far as this job can see.
TEST(PageCount, DoesNotWaitLongForAJobThatDoesNotComeToItsEnd) {
  unlink(kCountFile);
  const int held = open(kCountFile, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_EQ(flock(held, LOCK_EX | LOCK_NB), 0);
  const ToolFolder tools(kTextTools);
  tools.addScript("pdfinfo", "echo 'Pages:          123'; echo 'Page size: 5'");
  const Environment path("PATH", tools.path());
  EXPECT_EQ(digitsOf("/tmp/any.pdf"), 3);
  EXPECT_EQ(textOf(kCountFile), "");
  EXPECT_TRUE(TempFile::exists(kCountFile));
  close(held);
  unlink(kCountFile);
}

// With the tools of this system as they are, whatever column they use.
TEST(PageCount, IsTheSameWithAndWithoutItsFile) {
  const TempFolder folder;
  for (const int pages : {1, 9, 10, 100}) {
    for (const char* title : {"none", "Pages"}) {
      ASSERT_TRUE(makePdf(folder / "a.pdf", "[/Title (" + std::string(title) +
                                                ") /DOCINFO pdfmark\n" + postscriptPages(pages)));
      const int digits = digitsOf(folder / "a.pdf");
      ASSERT_EQ(mkdir(kCountFile, 0700), 0);
      EXPECT_EQ(digitsOf(folder / "a.pdf"), digits) << pages << title;
      rmdir(kCountFile);
    }
  }
  ASSERT_EQ(mkdir(kCountFile, 0700), 0);
  EXPECT_EQ(digitsOf(folder / "missing.pdf"), -1);
  rmdir(kCountFile);
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

}  // namespace
}  // namespace velka::testing
