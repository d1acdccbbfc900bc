// What comes in goes out, and a job that wants one finds its copy.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "FilterMessages.h"
#include "pdfcopy/CopyFixture.h"

namespace velka::testing {
namespace {

using Status = struct stat;

TEST(PdfCopy, LeavesACopyThatOnlyItsOwnerReadsAndPassesTheJobOn) {
  CopyJob copy("whole");
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, copy.job.input);
  EXPECT_EQ(textOf(copy.id.pdf()), asText(copy.job.input));
  Status status = {};
  ASSERT_EQ(lstat(copy.id.pdf().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode, mode_t{S_IFREG | 0600});
  EXPECT_EQ(status.st_uid, geteuid());
  EXPECT_EQ(status.st_nlink, nlink_t{1});
  EXPECT_EQ(filesOf(copy.id.text()).size(), 1U) << "a file besides the copy is left";
}

TEST(PdfCopy, IsReadableByItsOwnerWhateverTheMask) {
  CopyJob copy("mask");
  const mode_t before = umask(0777);
  const FilterResult result = copy.run();
  umask(before);
  EXPECT_EQ(result.status, 0) << result.errors;
  Status status = {};
  ASSERT_EQ(lstat(copy.id.pdf().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST(PdfCopy, ReadsTheFileThatTheSchedulerNames) {
  CopyJob copy("file");
  const TempFile file(asText(copy.job.input), ".pdf");
  copy.job.arguments.push_back(file.path());
  copy.job.input = {};
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, somePdf());
  EXPECT_EQ(textOf(copy.id.pdf()), asText(somePdf()));
}

TEST(PdfCopy, IsLeftOnlyWhereTheQueueOrTheJobAsksForIt) {
  for (const bool queue : {false, true})
    for (const char* option : {"", "PdfPreprocess=yes", "PdfPreprocess=no"}) {
      CopyJob copy("asked", queue);
      copy.job.arguments[4] = option;
      const FilterResult result = copy.run();
      const bool wanted = *option == '\0' ? queue : std::string(option) == "PdfPreprocess=yes";
      EXPECT_EQ(result.status, 0) << result.errors;
      EXPECT_EQ(result.output, copy.job.input);
      EXPECT_EQ(filesOf(copy.id.text()).size(), wanted ? 1U : 0U) << queue << ' ' << option;
    }
}

TEST(PdfCopy, IsNotLeftWithoutAPpdAsThePagesComeFromTheRasterThen) {
  CopyJob copy("noppd");
  for (const bool named : {false, true}) {
    copy.job.ppd = named ? std::optional<std::string>("/nonexistent.ppd") : std::nullopt;
    const FilterResult result = copy.run();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, copy.job.input);
    EXPECT_TRUE(filesOf(copy.id.text()).empty());
  }
}

TEST(PdfCopy, OfAnEmptyJobIsNone) {
  CopyJob copy("empty");
  copy.job.input = {};
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(result.output.empty());
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

TEST(PdfCopy, OfOneByteIsAPictureThatNoPdfComesOf) {
  CopyJob copy("byte");
  const Environment folder("CUPS_SERVERBIN", "/nonexistent");
  copy.job.input = {'%'};
  EXPECT_EQ(copy.run().status, 1);
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

// A failure that leaves nothing: no output, no file, a message and status 1.
void expectStopped(const CopyJob& copy, const FilterResult& result, const std::string& message,
                   size_t filesLeft = 0) {
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.output.empty());
  EXPECT_NE(result.errors.find("\nERROR: "), std::string::npos) << result.errors;
  EXPECT_NE(result.errors.find(message), std::string::npos) << result.errors;
  EXPECT_EQ(filesOf(copy.id.text()).size(), filesLeft);
}

TEST(PdfCopy, StopsAJobWhosePpdIsThereAndCannotBeRead) {
  CopyJob copy("brokenppd");
  const TempFile broken("no PPD");
  copy.job.ppd = broken.path();
  expectStopped(copy, copy.run(), "The PPD of this queue cannot be read");
}

TEST(PdfCopy, StopsTheJobWhereItsNameIsTaken) {
  CopyJob copy("taken");
  writeText(copy.id.pdf(), "somebody's");
  expectStopped(copy, copy.run(), "is there already", 1);
  EXPECT_EQ(textOf(copy.id.pdf()), "somebody's");
}

// What an earlier run of the job left, if the file system lets a copy be told from
// other files; a file that lost its mark counts as anybody's.
TEST(PdfCopy, ReplacesACopyThatAnEarlierRunOfTheJobLeft) {
  CopyJob copy("again");
  ASSERT_EQ(copy.run().status, 0);
  copy.job.input.push_back('2');
  const FilterResult result = copy.run();
  const bool marked = getxattr(copy.id.pdf().c_str(), "user.velka.pdfcopy", nullptr, 0) >= 0;
  EXPECT_EQ(result.status, marked ? 0 : 1) << result.errors;
  EXPECT_EQ(textOf(copy.id.pdf()), asText(marked ? copy.job.input : somePdf()));
  EXPECT_EQ(filesOf(copy.id.text()).size(), 1U);
  if (!marked) return;
  ASSERT_EQ(removexattr(copy.id.pdf().c_str(), "user.velka.pdfcopy"), 0);
  expectStopped(copy, copy.run(), "is there already", 1);
}

TEST(PdfCopy, DoesNotReplaceACopyWithASecondName) {
  CopyJob copy("linked");
  ASSERT_EQ(copy.run().status, 0);
  ASSERT_EQ(link(copy.id.pdf().c_str(), (copy.id.pdf() + ".second").c_str()), 0);
  expectStopped(copy, copy.run(), "is there already", 2);
}

TEST(PdfCopy, FollowsNoLinkAtItsName) {
  for (const bool dangling : {false, true}) {
    CopyJob copy("link");
    const TempFolder folder;
    if (!dangling) writeText(folder / "target", "untouched");
    ASSERT_EQ(symlink((folder / "target").c_str(), copy.id.pdf().c_str()), 0);
    expectStopped(copy, copy.run(), "is there already", 1);
    EXPECT_EQ(textOf(folder / "target"), dangling ? "" : "untouched");
    EXPECT_EQ(TempFile::exists(folder / "target"), !dangling);
  }
}

TEST(PdfCopy, StopsAJobWhoseIdWouldLeadElsewhere) {
  for (const char* id : {"../../tmp/x", "a b", "7;true", "$(id)", "a/b"}) {
    CopyJob copy("hostile");
    copy.job.arguments[0] = id;
    expectStopped(copy, copy.run(), "job id");
    EXPECT_TRUE(filesOf(id).empty()) << id;
  }
}

TEST(PdfCopy, StopsAJobWhoseIdIsTooLongForAFileName) {
  CopyJob copy("long");
  copy.job.arguments[0] = std::string(240, '7');
  expectStopped(copy, copy.run(), "Cannot make the PDF copy");
}

TEST(PdfCopy, StopsTheJobWhenTheDiskTakesNoMore) {
  CopyJob copy("full");
  copy.job.arguments.insert(copy.job.arguments.begin(),
                            {"-c", "ulimit -f 8; exec \"$0\" \"$@\"", VELKA_PDFCOPY});
  expectStopped(copy, runFilter("/bin/sh", copy.job), "Cannot write the PDF copy");
}

TEST(PdfCopy, StopsAJobThatCannotBeRead) {
  CopyJob copy("unreadable");
  copy.job.arguments.emplace_back("/nonexistent\nfile");
  const FilterResult result = copy.run();
  expectStopped(copy, result, "Cannot open /nonexistent?file: No such file");
  copy.job.arguments.back() = "/";
  expectStopped(copy, copy.run(), "Cannot read the job: Is a directory");
  copy.job.arguments[4] = "PdfPreprocess=no";
  expectStopped(copy, copy.run(), "Cannot read the job: Is a directory");
}

TEST(PdfCopy, SaysHowItIsCalled) {
  CopyJob copy("usage");
  copy.job.arguments.pop_back();
  expectStopped(copy, copy.run(), "Usage: velkapdfcopy job-id");
  copy.job.arguments.assign(7, "1");
  expectStopped(copy, copy.run(), "Usage: velkapdfcopy job-id");
}

TEST(PdfCopy, GoesWhenTheNextFilterIsGone) {
  for (const char* option : {"PdfPreprocess=yes", "PdfPreprocess=no"}) {
    CopyJob copy("broken");
    copy.job.arguments[4] = option;
    copy.job.outputBroken = true;
    expectStopped(copy, copy.run(), "Cannot pass the job on: Broken pipe");
  }
}

TEST(PdfCopy, TellsEachMessageOnALineOfItsOwnBehindALineEnd) {
  CopyJob copy("message");
  EXPECT_EQ(copy.run().errors,
            kVersionTold + "\nDEBUG: The PDF copy of the job is " + copy.id.pdf() + "\n");
}

TEST(FilterMessages, KeepTheirTextOnOneLine) {
  ::testing::internal::CaptureStderr();
  tellScheduler(MessageLevel::Error, "a\nERROR: b\r");
  tellScheduler(MessageLevel::Info, "c");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "\nERROR: a?ERROR: b?\n\nINFO: c\n");
}

}  // namespace
}  // namespace velka::testing
