// Names of a job's files, and what is kept from the shell.
#include <gtest/gtest.h>
#include <unistd.h>

#include "FixedText.h"
#include "PageFiles.h"
#include "PlainNames.h"
#include "support/TestPdf.h"

namespace velka::testing {
namespace {

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

}  // namespace
}  // namespace velka::testing
