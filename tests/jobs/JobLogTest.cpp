// The job log, line by line, and log files that cannot be had.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <regex.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "jobs/JobFixture.h"

namespace velka::testing {
namespace {

constexpr const char* kLog = "/tmp/velka.log";

// Addresses differ from run to run.
std::string withoutAddresses(std::string line) {
  for (size_t at = line.find("0x"); at != std::string::npos; at = line.find("0x", at + 2)) {
    const size_t end = line.find_first_not_of("0123456789abcdef", at + 2);
    line.replace(at + 2, std::min(end, line.size()) - at - 2, "A");
  }
  return line;
}

bool matches(const std::string& line, const char* pattern) {
  regex_t compiled = {};
  if (regcomp(&compiled, pattern, REG_EXTENDED | REG_NOSUB) != 0) return false;
  const bool found = regexec(&compiled, line.c_str(), 0, nullptr, 0) == 0;
  regfree(&compiled);
  return found;
}

std::vector<std::string> pageReport(int page, unsigned width, unsigned height) {
  const std::string w = std::to_string(width);
  const std::string h = std::to_string(height);
  return {"******************************Start Page " + std::to_string(page) +
              " ******************************",
          "Duplex = 0",
          "HWResolution = [ 180 180 ]",
          "ImagingBoundingBox = [ 0 0 0 0 ]",
          "Margins = [ 0 0 ]",
          "ManualFeed = 0",
          "MediaPosition = 0",
          "NumCopies = 1",
          "Orientation = 0",
          "PageSize = [ 595 842 ]",
          "cupsWidth = " + w,
          "cupsHeight = " + h,
          "cupsMediaType = 0",
          "cupsBitsPerColor = 8",
          "cupsBitsPerPixel = 24",
          "cupsBytesPerLine = " + std::to_string(width * 3),
          "cupsColorOrder = 0",
          "cupsColorSpace = 19",
          "cupsCompression = 0"};
}

std::vector<std::string> pagePrinting(int page, unsigned height, size_t bytes) {
  return {"After getting data",
          "curPage is " + std::to_string(page) + ", bufStart is 0xA",
          "pOemPDEV: 0xA, pOemDev: 0xA, pDevMode: 0xA",
          "bmInfoHeader.biHeight: " + std::to_string(height),
          "pOemPDEV->devModeOut: 0xA",
          "RenderEscpData after SendStartDocCmd",
          "RenderEscpData memset pBufStartOut dwBufSizeOut: " + std::to_string(bytes),
          "Free pBufStart",
          "Free pBufStartOut",
          "After set StartPageOemPDEV"};
}

TEST(JobLog, HoldsEveryLineOfATwoPageJobInItsOrder) {
  const TempFile ppd(ppdText({1,
                              {{"HorizontalOffset", "0"},
                               {"HorizontalOffsetValue", "0"},
                               {"VerticalOffset", "0"},
                               {"VerticalOffsetValue", "0"},
                               {"OutputColorType", "3"},
                               {"ColorRangeUseFor", "2"},
                               {"RedMinValue", "120"},
                               {"SplitBlackRed", "0"},
                               {"AnticlockwiseRotate", "0"},
                               {"BrightnessRed", "100"},
                               {"BrightnessBlack", "100"},
                               {"ContrastRed", "100"},
                               {"ContrastBlack", "100"},
                               {"LevelsRed", "17"},
                               {"LevelsBlack", "10"}},
                              false}));
  FilterJob job;
  job.arguments[0] = "velka-log-test";
  job.ppd = ppd.path();
  job.input = rasterStream({inkedPage(rgbHeader(50, 40), 2), inkedPage(rgbHeader(50, 30), 2)});
  ASSERT_EQ(runFilter(kFilter, job).status, 0);

  std::vector<std::string> expected = {
      "-----------------  log4z thread started!   ----------------------------",
      "logger id=0 key=Main name=velka path=/tmp/ level=1 display=true",
      "tempPDF: /tmp/VK_TEMP_CUPS_velka-log-test.pdf"};
  const auto add = [&](const std::vector<std::string>& lines) {
    expected.insert(expected.end(), lines.begin(), lines.end());
  };
  add(pageReport(1, 50, 40));
  add({"Begin to initialize configures", "Init sHrzDir: 0", "Init sHrzOffset: 0", "Init sVtcDir: 0",
       "Init sVtcOffset: 0", "Init OutputColorType: 3", "Init ColorRangeUseFor: 2",
       "Init minColorOffset red: 120, green: 0, blue: 0",
       "Init maxColorOffset red: 255, green: 255, blue: 255", "Init SplitBlackRed: 0",
       "Init sRotation: 0", "Init nBrightness red: 0", "Init nBrightness black: 0",
       "Init Contrast red: 0", "Init Contrast black: 0", "Init sLevels red: 51",
       "Init sLevels black: 30"});
  add({"Init dmPrintQuality: 180, dmYResolution: 180", "Init dmOrientation: 1", "Init dmCollate: 0",
       "Init dmCopies: 1", "Init bmInfoHeader.biWidth: 50", "Init bmInfoHeader.biHeight: 40",
       "Init bmInfoHeader.biBitCount: 24", "Init dwCurPageNum: 0",
       "Init srcGdiInfo.szlPhysSize.cx: 50", "Init srcGdiInfo.szlPhysSize.cy: 40",
       "Init srcGdiInfo.ptlPhysOffset.x: 0", "Init srcGdiInfo.ptlPhysOffset.y: 0",
       "Init srcGdiInfo.ulVertRes: 40", "Initializing configures finish", "Finish StartDoc"});
  add(pagePrinting(1, 40, size_t{152} * 40));
  add(pageReport(2, 50, 30));
  add(pagePrinting(2, 30, size_t{152} * 30));
  add({"EndDoc, bufStart is 0xA", "After SendEndDocCmd function", "EndDocOemPDEV finished"});

  std::vector<std::string> got;
  for (const std::string& line : logMessages()) got.push_back(withoutAddresses(line));
  EXPECT_EQ(got, expected);
}

// Every line: date, time, thread, level, message, file of the statement, CR LF.
TEST(JobLog, LinesHaveTheFixedFormAndNameTheirUnit) {
  ASSERT_EQ(
      runJob({{"OutputColorType", "3"}}, rasterStream({inkedPage(rgbHeader(50, 40), 2)})).status,
      0);
  constexpr const char* kForm =
      "^[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} \\[[0-9]{4,}\\] "
      "(LOG_DEBUG|LOG_ALARM) .* "
      "(rastovelka|InitalizeOemCfg|PreInc|ESCPSML|log4z)\\.cpp:[0-9]+\r$";
  std::istringstream lines(logText());
  size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count)
    EXPECT_TRUE(matches(line, kForm)) << line;
  EXPECT_GT(count, 50U);
  EXPECT_NE(logText().find("Init OutputColorType: 3 InitalizeOemCfg.cpp:"), std::string::npos);
  EXPECT_NE(logText().find("Free pBufStart PreInc.cpp:"), std::string::npos);
  EXPECT_NE(logText().find("after SendStartDocCmd ESCPSML.cpp:"), std::string::npos);
  EXPECT_NE(logText().find("Finish StartDoc rastovelka.cpp:"), std::string::npos);
}

TEST(JobLog, UnsignedHeaderFieldsPrintAsTheirSignedValue) {
  cups_page_header2_t header = rgbHeader(10, 4);
  header.MediaPosition = 4294967295U;
  header.Margins[1] = 2147483648U;
  ASSERT_EQ(runJob({}, rawStream({whitePage(header)})).status, 0);
  EXPECT_NE(logText().find("MediaPosition = -1 "), std::string::npos);
  EXPECT_NE(logText().find("Margins = [ 0 -2147483648 ]"), std::string::npos);
}

TEST(JobLog, IsEmptiedAtEveryStart) {
  std::ofstream(kLog) << "left behind\n";
  FilterJob job;
  job.arguments.clear();  // a start that fails still empties the log
  runFilter(kFilter, job);
  EXPECT_EQ(logText().find("left behind"), std::string::npos);
  EXPECT_EQ(logMessages().size(), 2U);
}

TEST(JobLog, IsReadableByAllAndWritableByItsOwnerOnly) {
  unlink(kLog);
  runJob({}, rasterStream({whitePage(rgbHeader(8, 8))}));
  struct stat status = {};
  ASSERT_EQ(stat(kLog, &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0644U);
}

// A job whose log cannot be written prints all the same.
void expectPrintsWithoutLog(const std::string& warning = "") {
  const RasterPage page = inkedPage(rgbHeader(50, 40), 2);
  const FilterResult result = runJob({}, rasterStream({page, page}));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, warning + finished(2));
  expectSameStream(result.output, expectedStream(reference::defaultOptions(), {page, page}));
}

// The print scheduler is told once, on a line of its own, whatever the texts before and
// behind it.
std::string warningThat(const std::string& reason) {
  return "\nWARNING: The job log /tmp/velka.log cannot be opened: " + reason + ".\n";
}

TEST(JobLog, ALinkIsNotFollowed) {
  const TempFile target("precious");
  unlink(kLog);
  ASSERT_EQ(symlink(target.path().c_str(), kLog), 0);
  expectPrintsWithoutLog();
  unlink(kLog);
  std::ifstream file(target.path());
  std::string text;
  std::getline(file, text);
  EXPECT_EQ(text, "precious");
}

TEST(JobLog, AHardLinkDoesNotEmptyTheFileItNames) {
  const TempFile target("precious");
  unlink(kLog);
  ASSERT_EQ(link(target.path().c_str(), kLog), 0);
  expectPrintsWithoutLog(warningThat("it is not this user's alone"));
  unlink(kLog);
  std::ifstream file(target.path());
  std::string text;
  std::getline(file, text);
  EXPECT_EQ(text, "precious");
}

TEST(JobLog, AFifoDoesNotHoldTheJobUp) {
  unlink(kLog);
  ASSERT_EQ(mkfifo(kLog, 0666), 0);
  expectPrintsWithoutLog();
  unlink(kLog);
}

TEST(JobLog, AFolderInItsPlaceIsNoHindrance) {
  unlink(kLog);
  ASSERT_EQ(mkdir(kLog, 0777), 0);
  expectPrintsWithoutLog();
  rmdir(kLog);
}

TEST(JobLog, AReadOnlyOneIsToldWithTheSystemsReason) {
  if (geteuid() == 0) GTEST_SKIP() << "root may write to any file";
  unlink(kLog);
  close(open(kLog, O_WRONLY | O_CREAT | O_CLOEXEC, 0444));
  expectPrintsWithoutLog(warningThat("Permission denied"));
  unlink(kLog);
}

}  // namespace
}  // namespace velka::testing
