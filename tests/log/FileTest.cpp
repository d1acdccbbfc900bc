// Opening files in shared folders, and the stream behind a logger.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <csignal>

#include "LogFile.h"
#include "LogTestSupport.h"
#include "SafeFile.h"

using logtest::readFile;
using logtest::TempFolder;
using logtest::writeFile;
using velka::openRegularForReading;
using velka::openRegularForWriting;

namespace {

// The calls the close sequence makes, seen through replacements of the C
// library's functions below.
thread_local std::vector<std::string>* seenCalls = nullptr;

void note(const char* call) {
  if (seenCalls != nullptr) {
    seenCalls->emplace_back(call);
  }
}

}  // namespace

extern "C" int fsync(int fd) {
  note("fsync");
  return static_cast<int>(syscall(SYS_fsync, fd));
}

extern "C" int posix_fadvise(int fd, off_t offset, off_t length, int advice) {
  note(offset == 0 && length == 0 && advice == POSIX_FADV_DONTNEED ? "drop cache" : "other advice");
  return static_cast<int>(syscall(SYS_fadvise64, fd, offset, length, advice));
}

extern "C" int fseek(std::FILE* stream, long offset, int whence) {
  return whence == logtest::unseekable ? -1 : fseeko(stream, offset, whence);
}

TEST(SafeFile, AppendingKeepsAndTruncatingEmptiesWhatIsThere) {
  const TempFolder folder;
  const std::string path = folder.file("a.log");
  for (const char* text : {"one", "two"}) {
    const velka::UniqueFile file = openRegularForWriting(path.c_str(), false);
    ASSERT_NE(file, nullptr);
    std::fputs(text, file.get());
  }
  EXPECT_EQ(readFile(path), "onetwo");
  ASSERT_NE(openRegularForWriting(path.c_str(), true), nullptr);
  EXPECT_EQ(readFile(path), "");
}

TEST(SafeFile, NewFileHasTheModeLeftByTheUmask) {
  const TempFolder folder;
  const mode_t former = umask(022);
  ASSERT_NE(openRegularForWriting(folder.file("a").c_str(), true), nullptr);
  umask(former);
  struct stat status {};
  ASSERT_EQ(stat(folder.file("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0644U);
}

TEST(SafeFile, SymbolicLinkIsNeitherFollowedNorEmptied) {
  const TempFolder folder;
  writeFile(folder.file("victim"), "precious");
  ASSERT_EQ(symlink(folder.file("victim").c_str(), folder.file("link").c_str()), 0);
  EXPECT_EQ(openRegularForWriting(folder.file("link").c_str(), true), nullptr);
  EXPECT_EQ(openRegularForWriting(folder.file("link").c_str(), false), nullptr);
  EXPECT_EQ(readFile(folder.file("victim")), "precious");
}

TEST(SafeFile, DanglingLinkMakesNoFile) {
  const TempFolder folder;
  ASSERT_EQ(symlink(folder.file("target").c_str(), folder.file("link").c_str()), 0);
  EXPECT_EQ(openRegularForWriting(folder.file("link").c_str(), true), nullptr);
  EXPECT_FALSE(std::filesystem::exists(folder.file("target")));
}

TEST(SafeFile, FifoIsRefusedWithoutWaiting) {
  const TempFolder folder;
  const std::string fifo = folder.file("fifo");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_EQ(openRegularForWriting(fifo.c_str(), false), nullptr);
  EXPECT_EQ(openRegularForReading(fifo.c_str()), nullptr);
  // With a reader the open itself succeeds and the kind of file decides.
  const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_GE(reader, 0);
  EXPECT_EQ(openRegularForWriting(fifo.c_str(), true), nullptr);
  close(reader);
}

TEST(SafeFile, FolderDeviceAndNothingAreRefused) {
  const TempFolder folder;
  EXPECT_EQ(openRegularForWriting(folder.path().c_str(), false), nullptr);
  EXPECT_EQ(openRegularForWriting("/dev/null", true), nullptr);
  EXPECT_EQ(openRegularForWriting(folder.file("no/such").c_str(), false), nullptr);
  EXPECT_EQ(openRegularForWriting(nullptr, false), nullptr);
  EXPECT_EQ(openRegularForReading(nullptr), nullptr);
  EXPECT_EQ(openRegularForReading(folder.path().c_str()), nullptr);
}

// The second name may be anybody's way to a file that only we may write.
TEST(SafeFile, FileWithASecondNameIsNeitherEmptiedNorWritten) {
  const TempFolder folder;
  writeFile(folder.file("a"), "text");
  ASSERT_EQ(link(folder.file("a").c_str(), folder.file("b").c_str()), 0);
  EXPECT_EQ(openRegularForWriting(folder.file("a").c_str(), true), nullptr);
  EXPECT_EQ(openRegularForWriting(folder.file("a").c_str(), false), nullptr);
  EXPECT_EQ(readFile(folder.file("b")), "text");
}

TEST(SafeFile, FileOfSomebodyElseIsNeitherEmptiedNorWritten) {
  const TempFolder folder;
  writeFile(folder.file("a"), "text");
  if (chown(folder.file("a").c_str(), 65534, 65534) != 0) {
    GTEST_SKIP() << "only root can give files away";
  }
  EXPECT_EQ(openRegularForWriting(folder.file("a").c_str(), true), nullptr);
  EXPECT_EQ(openRegularForWriting(folder.file("a").c_str(), false), nullptr);
  EXPECT_EQ(readFile(folder.file("a")), "text");
}

TEST(SafeFile, ReadingFollowsALink) {
  const TempFolder folder;
  writeFile(folder.file("a"), "x");
  ASSERT_EQ(symlink(folder.file("a").c_str(), folder.file("link").c_str()), 0);
  EXPECT_NE(openRegularForReading(folder.file("link").c_str()), nullptr);
}

TEST(SafeFile, NeverTakesAStandardDescriptor) {
  const TempFolder folder;
  const int keptInput = dup(STDIN_FILENO);
  close(STDIN_FILENO);
  int descriptor = -1;
  int flags = 0;
  {
    const velka::UniqueFile file = openRegularForWriting(folder.file("a").c_str(), false);
    descriptor = file ? fileno(file.get()) : -1;
    flags = fcntl(descriptor, F_GETFD);
  }
  const bool inputStillClosed = fcntl(STDIN_FILENO, F_GETFD) == -1;
  if (keptInput >= 0) {
    dup2(keptInput, STDIN_FILENO);
    close(keptInput);
  }
  EXPECT_GT(descriptor, STDERR_FILENO);
  EXPECT_EQ(flags & FD_CLOEXEC, FD_CLOEXEC);
  EXPECT_TRUE(inputStillClosed);
}

TEST(LogFile, LineHasLeftTheProcessWhenWriteReturns) {
  const TempFolder folder;
  Log4zFileHandler file;
  ASSERT_TRUE(file.openForAppending(folder.file("a").c_str()));
  EXPECT_EQ(file.write("line", 4), 4U);
  EXPECT_EQ(readFile(folder.file("a")), "line");
}

TEST(LogFile, CloseSynchronisesBeforeAndAfterTheCacheAdvice) {
  const TempFolder folder;
  Log4zFileHandler file;
  ASSERT_TRUE(file.openForAppending(folder.file("a").c_str()));
  std::vector<std::string> calls;
  seenCalls = &calls;
  file.close();
  file.close();
  seenCalls = nullptr;
  EXPECT_EQ(calls, (std::vector<std::string>{"fsync", "drop cache", "fsync"}));
  EXPECT_FALSE(file.isOpen());
}

TEST(LogFile, LengthIsThatOfTheWholeFileWhereverItStands) {
  const TempFolder folder;
  writeFile(folder.file("a"), "12345");
  Log4zFileHandler file;
  EXPECT_EQ(file.length(), -1);
  ASSERT_TRUE(file.openForAppending(folder.file("a").c_str()));
  EXPECT_EQ(file.length(), 5);
  EXPECT_EQ(file.write("67", 2), 2U);
  EXPECT_EQ(file.length(), 7);
  EXPECT_EQ(readFile(folder.file("a")), "1234567");
}

TEST(LogFile, HasNoLengthWhereTheStreamCannotGoToItsEndOrBack) {
  const TempFolder folder;
  writeFile(folder.file("a"), "12345");
  Log4zFileHandler file;
  ASSERT_TRUE(file.openForAppending(folder.file("a").c_str()));
  for (const int whence : {SEEK_END, SEEK_SET}) {
    logtest::unseekable = whence;
    const long length = file.length();
    logtest::unseekable = -1;
    EXPECT_EQ(length, -1);
  }
}

TEST(LogFile, FullDiskShowsAsAShortWrite) {
  const TempFolder folder;
  Log4zFileHandler file;
  ASSERT_TRUE(file.openForAppending(folder.file("a").c_str()));
  rlimit former{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
  const auto formerAction = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small = {3, former.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const std::size_t written = file.write("12345", 5);
  setrlimit(RLIMIT_FSIZE, &former);
  std::signal(SIGXFSZ, formerAction);
  EXPECT_EQ(written, 3U);
}

TEST(LogFile, ReadsAWholeFileOfUpToOneMebibyte) {
  const TempFolder folder;
  const std::string text(std::size_t{1} << 20U, 'x');
  Log4zFileHandler file;
  EXPECT_FALSE(file.readContent().has_value());
  writeFile(folder.file("a"), text);
  ASSERT_TRUE(file.openForReading(folder.file("a").c_str()));
  EXPECT_EQ(file.readContent(), text);
  writeFile(folder.file("a"), text + "y");
  ASSERT_TRUE(file.openForReading(folder.file("a").c_str()));
  EXPECT_FALSE(file.readContent().has_value());
}

TEST(LogFile, ClosedHandleWritesNothing) {
  Log4zFileHandler file;
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(file.write("x", 1), 0U);
  file.flush();
  EXPECT_FALSE(file.isOpen());
}

// To the C library, to flush no stream is to flush all of them.
TEST(LogFile, ClosedHandleFlushesNobodyElsesStream) {
  const TempFolder folder;
  const velka::UniqueFile other = openRegularForWriting(folder.file("a").c_str(), true);
  ASSERT_NE(other, nullptr);
  ASSERT_GE(std::fputs("kept back", other.get()), 0);
  Log4zFileHandler().flush();
  EXPECT_EQ(readFile(folder.file("a")), "");
}
