#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "Files.h"
#include "support/TestPdf.h"

namespace velka::view {
namespace {

using testing::TempFolder;
using testing::textOf;
using testing::writeText;

bool signalsAreHeld() {
  sigset_t blocked;
  pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
  return sigismember(&blocked, SIGINT) == 1 && sigismember(&blocked, SIGQUIT) == 1;
}

size_t entriesOf(const TempFolder& folder) {
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    ++count;
  }
  return count;
}

TEST(NewFile, GetsItsNameWhenItIsKept) {
  const TempFolder folder;
  writeText(folder / "out", "old");
  {
    NewFile file(folder / "out");
    ASSERT_FALSE(file.open().has_value());
    std::fputs("new", file.file());
    EXPECT_EQ(textOf(folder / "out"), "old");
    EXPECT_FALSE(file.keep().has_value());
  }
  EXPECT_EQ(textOf(folder / "out"), "new");
  EXPECT_EQ(entriesOf(folder), 1U);
}

TEST(NewFile, LeavesNothingWhenItIsNotKept) {
  const TempFolder folder;
  {
    NewFile file(folder / "out");
    ASSERT_FALSE(file.open().has_value());
    std::fputs("half", file.file());
  }
  EXPECT_EQ(entriesOf(folder), 0U);
}

TEST(NewFile, IsReadableLikeAnyNewFile) {
  const TempFolder folder;
  const mode_t before = umask(022);
  {
    NewFile file(folder / "out");
    ASSERT_FALSE(file.open().has_value());
    EXPECT_FALSE(file.keep().has_value());
  }
  umask(before);
  struct stat found {};
  ASSERT_EQ(stat((folder / "out").c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777U, 0644U);
}

TEST(NewFile, TellsWhatIsInTheWay) {
  const TempFolder folder;
  NewFile file(folder / "missing/out");
  const Problem problem = file.open();
  ASSERT_TRUE(problem.has_value());
  EXPECT_EQ(*problem, folder / "missing/out: No such file or directory");
}

TEST(NewFile, ReplacesWhatALinkLeadsToAndKeepsTheLink) {
  const TempFolder folder;
  std::filesystem::create_directory(folder / "other");
  std::filesystem::create_symlink("other/second", folder / "first");
  std::filesystem::create_symlink("file", folder / "other/second");
  for (const std::string text : {"made", "replaced"}) {
    NewFile file(folder / "first");
    ASSERT_FALSE(file.open().has_value());
    std::fputs(text.c_str(), file.file());
    ASSERT_FALSE(file.keep().has_value());
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "first"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "other/second"));
    EXPECT_EQ(textOf(folder / "other/file"), text);
  }
}

TEST(NewFile, LinksInACircleAreTold) {
  const TempFolder folder;
  std::filesystem::create_symlink("b", folder / "a");
  std::filesystem::create_symlink("a", folder / "b");
  NewFile file(folder / "a");
  EXPECT_EQ(file.open(), folder / "a: Too many levels of symbolic links");
}

// The number of a file's inode tells whether it was written to or replaced.
ino_t inodeOf(const std::string& name) {
  struct stat found {};
  return stat(name.c_str(), &found) == 0 ? found.st_ino : 0;
}

TEST(NewFile, WritesThroughTheNamesOfOpenFiles) {
  const TempFolder folder;
  writeText(folder / "out", "");
  const ino_t before = inodeOf(folder / "out");
  const int open = ::open((folder / "out").c_str(), O_WRONLY);
  ASSERT_GE(open, 0);
  std::filesystem::create_symlink("/dev/fd/" + std::to_string(open), folder / "link");
  {
    NewFile file(folder / "link");
    ASSERT_FALSE(file.open().has_value());
    EXPECT_FALSE(signalsAreHeld());
    std::fputs("text", file.file());
    EXPECT_FALSE(file.keep().has_value());
  }
  ::close(open);
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
  EXPECT_EQ(textOf(folder / "out"), "text");
  EXPECT_EQ(inodeOf(folder / "out"), before);
}

TEST(NewFile, HoldsSignalsOnlyWhileThereIsSomethingToRemove) {
  const TempFolder folder;
  NewFile file(folder / "out");
  EXPECT_FALSE(signalsAreHeld());
  ASSERT_FALSE(file.open().has_value());
  EXPECT_TRUE(signalsAreHeld());
  EXPECT_FALSE(file.keep().has_value());
  EXPECT_FALSE(signalsAreHeld());
}

TEST(NewFile, AFullDeviceIsTold) {
  NewFile file("/dev/full");
  ASSERT_FALSE(file.open().has_value());
  std::fputs("anything", file.file());
  EXPECT_TRUE(file.keep().has_value());
}

TEST(ReadFile, TellsAFolderFromAFile) {
  const TempFolder folder;
  std::vector<uint8_t> bytes;
  EXPECT_EQ(readFile(folder.path(), bytes), folder.path() + ": Is a directory");
  writeText(folder / "in", "abc");
  EXPECT_FALSE(readFile(folder / "in", bytes).has_value());
  EXPECT_EQ(bytes.size(), 3U);
}

TEST(ReadFile, AnEndlessFileIsToldAtALimit) {
  std::vector<uint8_t> bytes;
  EXPECT_EQ(readFile("/dev/zero", bytes, 3 << 20), "/dev/zero: more than 3 MiB, too much to read");
}

TEST(SignalsHeld, AnIgnoredSignalIsNotPending) {
  struct sigaction before {};
  struct sigaction ignore {};
  ignore.sa_handler = SIG_IGN;
  ASSERT_EQ(sigaction(SIGHUP, &ignore, &before), 0);
  {
    const SignalsHeld held;
    ASSERT_EQ(raise(SIGHUP), 0);
    EXPECT_FALSE(SignalsHeld::pending());
  }
  ASSERT_EQ(sigaction(SIGHUP, &before, nullptr), 0);
}

TEST(SignalsHeld, TakeEffectWhenTheyAreReleased) {
  static volatile std::sig_atomic_t came = 0;
  struct sigaction before {};
  struct sigaction action {};
  action.sa_handler = [](int) { came = 1; };
  ASSERT_EQ(sigaction(SIGTERM, &action, &before), 0);
  {
    const SignalsHeld held;
    EXPECT_FALSE(SignalsHeld::pending());
    ASSERT_EQ(raise(SIGTERM), 0);
    EXPECT_EQ(came, 0);
    EXPECT_TRUE(SignalsHeld::pending());
  }
  EXPECT_EQ(came, 1);
  ASSERT_EQ(sigaction(SIGTERM, &before, nullptr), 0);
}

}  // namespace
}  // namespace velka::view
