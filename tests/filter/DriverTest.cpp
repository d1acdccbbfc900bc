// The driver's pieces, one by one.
#include <cups/ppd.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "StandardDescriptors.h"
#include "rastovelka.h"
#include "support/Capture.h"
#include "support/RasterBuilder.h"
#include "support/TestPpd.h"

namespace velka::testing {
namespace {

std::string text(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

struct Arguments {
  std::vector<std::string> texts;
  std::vector<char*> pointers;
  explicit Arguments(std::vector<std::string> all) : texts(std::move(all)) {
    for (std::string& one : texts) pointers.push_back(one.data());
    pointers.push_back(nullptr);
  }
  [[nodiscard]] int count() const { return static_cast<int>(texts.size()); }
};

TEST(OpeningTheStream, NeedsFiveOrSixArguments) {
  Arguments five({"rastovelka", "1", "u", "t", "1"});
  int fd = -7;
  cups_raster_t* raster = nullptr;
  const Capture errors(STDERR_FILENO);
  EXPECT_EQ(OpenPageStream(five.count(), five.pointers.data(), &fd, &raster), 1);
  EXPECT_EQ(OpenPageStream(8, five.pointers.data(), &fd, &raster), 1);
  char* none[] = {nullptr};
  EXPECT_EQ(OpenPageStream(6, none, &fd, &raster), 1);
  EXPECT_EQ(OpenPageStream(6, nullptr, &fd, &raster), 1);
  EXPECT_EQ(fd, -7);
  EXPECT_EQ(text(errors.bytes()), "");
}

TEST(OpeningTheStream, OfAFileThatIsNoRasterSaysSo) {
  TempFile file("this is no raster");
  Arguments arguments({"rastovelka", "1", "u", "t", "1", "", file.path()});
  int fd = -1;
  cups_raster_t* raster = nullptr;
  const Capture errors(STDERR_FILENO);
  EXPECT_EQ(OpenPageStream(7, arguments.pointers.data(), &fd, &raster), 1);
  EXPECT_EQ(text(errors.bytes()), "cupsRasterOpen failed.");
  close(fd);
}

TEST(ShuttingDown, WithoutAStreamDoesNothing) {
  TempFile pdf("x");
  EXPECT_EQ(Shutdown(pdf.path().c_str(), nullptr, nullptr, 0), 1);
  EXPECT_EQ(access(pdf.path().c_str(), F_OK), 0);
}

TEST(ShuttingDown, RemovesThePdfAndClosesTheDescriptor) {
  TempFile pdf("x");
  TempFile ppdFile(ppdText({}));
  const Bytes stream = rasterStream({whitePage(rgbHeader(4, 4))});
  TempFile rasterFile(text(stream));
  const int fd = open(rasterFile.path().c_str(), O_RDONLY | O_CLOEXEC);
  cups_raster_t* raster = cupsRasterOpen(fd, CUPS_RASTER_READ);
  ASSERT_NE(raster, nullptr);
  EXPECT_EQ(Shutdown(pdf.path().c_str(), nullptr, raster, fd), 0);
  EXPECT_EQ(access(pdf.path().c_str(), F_OK), 0);
  EXPECT_EQ(Shutdown(pdf.path().c_str(), ppdOpenFile(ppdFile.path().c_str()), raster, fd), 0);
  EXPECT_NE(access(pdf.path().c_str(), F_OK), 0);
  EXPECT_EQ(fcntl(fd, F_GETFD), -1);
  EXPECT_EQ(errno, EBADF);
}

TEST(ShuttingDown, LeavesWhatAJobIdLeadsTo) {
  const std::string folder = "/tmp/VK_TEMP_CUPS_velka-shutdown";
  const std::string precious = folder + "/x.pdf";
  mkdir(folder.c_str(), 0700);
  close(open(precious.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  TempFile ppdFile(ppdText({}));
  const Bytes stream = rasterStream({whitePage(rgbHeader(4, 4))});
  TempFile rasterFile(text(stream));
  const int fd = open(rasterFile.path().c_str(), O_RDONLY | O_CLOEXEC);
  cups_raster_t* raster = cupsRasterOpen(fd, CUPS_RASTER_READ);
  ASSERT_NE(raster, nullptr);
  EXPECT_EQ(Shutdown(precious.c_str(), ppdOpenFile(ppdFile.path().c_str()), raster, fd), 0);
  EXPECT_EQ(access(precious.c_str(), F_OK), 0);
  unlink(precious.c_str());
  rmdir(folder.c_str());
}

TEST(Cancelling, OnlySetsTheFlag) {
  Canceled = 0;
  CancelJob(SIGTERM);
  EXPECT_EQ(Canceled, 1);
  Canceled = 0;
}

TEST(Settings, AMissingPpdIsReportedWithItsReason) {
  setenv("PPD", "/nonexistent/velka.ppd", 1);
  ppd_file_t* ppd = nullptr;
  const Capture errors(STDERR_FILENO);
  InitializeSetting("", &ppd);
  EXPECT_EQ(ppd, nullptr);
  // CUPS gives its reasons in the user's language.
  EXPECT_EQ(text(errors.bytes()), std::string("The PPD file could not be opened.") +
                                      ppdErrorString(PPD_FILE_OPEN_ERROR) + " on line 0.");
  unsetenv("PPD");
  InitializeSetting("", nullptr);
}

TEST(Settings, MarksTheDefaultsAndTheJobsOptions) {
  TempFile file(ppdText({1, {{"LevelsRed", "5"}, {"LevelsBlack", "6"}}, false}));
  setenv("PPD", file.path().c_str(), 1);
  ppd_file_t* ppd = nullptr;
  InitializeSetting("LevelsRed=Other nonsense=1", &ppd);
  ASSERT_NE(ppd, nullptr);
  EXPECT_EQ(ppdIsMarked(ppd, "LevelsRed", "Other"), 1);
  EXPECT_EQ(ppdIsMarked(ppd, "LevelsBlack", "Chosen"), 1);
  ppdClose(ppd);
  unsetenv("PPD");
}

TEST(StandardDescriptors, AreFilledWhereTheyAreClosed) {
  const pid_t child = fork();
  if (child == 0) {
    close(STDIN_FILENO);
    close(STDERR_FILENO);
    fillStandardDescriptors();
    struct stat in = {};
    struct stat null = {};
    const bool ok = fstat(STDIN_FILENO, &in) == 0 && stat("/dev/null", &null) == 0 &&
                    in.st_rdev == null.st_rdev && fcntl(STDERR_FILENO, F_GETFD) != -1;
    _exit(ok ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace velka::testing
