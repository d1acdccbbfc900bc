#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "Files.h"
#include "support/TestPdf.h"

namespace velka::view {
namespace {

using testing::TempFolder;
using testing::textOf;
using testing::writeText;

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
